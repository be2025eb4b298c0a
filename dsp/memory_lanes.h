// Ways of lanes from and to memory other than side by side: pairs, thirds, and the parts of complex values.
#pragma once

#include "dsp/lanes.h"

namespace android::ZOQ_LEVEL {

// Lanes kFirst and kFirst + 1, kFirst even, become *x and *y.
#ifdef ZOQ_NEON32
template <int kFirst>
ZOQ_INLINE Lanes with_pair(Lanes a, const float* x, const float* y) {
    return {vld1q_lane_f32(y, vld1q_lane_f32(x, a.v, kFirst), kFirst + 1)};
}
#else
template <int kFirst, int... I>
ZOQ_INLINE Lanes with_pair(Lanes a, const float* x, const float* y, std::integer_sequence<int, I...>) {
    if constexpr (kLanes == 4) {  // one shuffle after x and y have met
        return shuffle<(I / 2 == kFirst / 2 ? I % 2 + kLanes : I)...>(a, Lanes{*x, *y});
    } else {
        const Lanes first = shuffle<(I == kFirst ? I + kLanes : I)...>(a, broadcast(*x));
        return shuffle<(I == kFirst + 1 ? I + kLanes : I)...>(first, broadcast(*y));
    }
}
template <int kFirst>
ZOQ_INLINE Lanes with_pair(Lanes a, const float* x, const float* y) {
    return with_pair<kFirst>(a, x, y, LaneIndices());
}
#endif

// Lane 0 to x, lane 1 to y.
ZOQ_INLINE void store_pair(float* x, float* y, Lanes a) {
    *x = vector_of(a)[0];
    *y = vector_of(a)[1];
}

// Every third of 3 kLanes values next to one another, beginning with the first, the second and the third.
struct Thirds {
    Lanes v[3];
};
#ifdef ZOQ_NEON32
ZOQ_INLINE Thirds load_three(const float* x) {
    const float32x4x3_t t = vld3q_f32(x);
    return {{{t.val[0]}, {t.val[1]}, {t.val[2]}}};
}
#else
template <int kFirst, int... I>  // value 3 I + kFirst of a, b and c in a row
ZOQ_INLINE Lanes every_third(Lanes a, Lanes b, Lanes c, std::integer_sequence<int, I...>) {
    const Lanes ab = shuffle<(3 * I + kFirst < 2 * kLanes ? 3 * I + kFirst : 0)...>(a, b);
    return shuffle<(3 * I + kFirst < 2 * kLanes ? I : 3 * I + kFirst - kLanes)...>(ab, c);
}
ZOQ_INLINE Thirds load_three(const float* x) {
    const Lanes a = load(x), b = load(x + kLanes), c = load(x + 2 * kLanes);
    return {{every_third<0>(a, b, c, LaneIndices()), every_third<1>(a, b, c, LaneIndices()),
             every_third<2>(a, b, c, LaneIndices())}};
}
#endif

// Lanes in quarters of four, between which shuffles are cheap: of each quarter the even or the odd lanes of a and
// then b; the lower or the upper lanes of a and b in turn.
template <int... I>
ZOQ_INLINE Lanes even_in_quarters(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return shuffle<(I / 4 * 4 + I % 4 / 2 * kLanes + I % 2 * 2)...>(a, b);
}
template <int... I>
ZOQ_INLINE Lanes odd_in_quarters(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return shuffle<(I / 4 * 4 + I % 4 / 2 * kLanes + I % 2 * 2 + 1)...>(a, b);
}
template <int... I>
ZOQ_INLINE Lanes zip_lower(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return shuffle<(I / 4 * 4 + I % 2 * kLanes + I % 4 / 2)...>(a, b);
}
template <int... I>
ZOQ_INLINE Lanes zip_upper(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return shuffle<(I / 4 * 4 + I % 2 * kLanes + I % 4 / 2 + 2)...>(a, b);
}

// Real and imaginary parts of kLanes complex values.
struct ComplexLanes {
    Lanes re, im;
};

// load_complex and store_complex: from and to interleaved re, im.
#if ZOQ_LANES == 4
ZOQ_INLINE ComplexLanes load_complex(const float* x) {
    const Lanes a = load(x), b = load(x + 4);
    return {even_in_quarters(a, b, LaneIndices()), odd_in_quarters(a, b, LaneIndices())};
}
ZOQ_INLINE void store_complex(float* y, ComplexLanes z) {
    store(y, zip_lower(z.re, z.im, LaneIndices()));
    store(y + 4, zip_upper(z.re, z.im, LaneIndices()));
}
#elif ZOQ_LANES == 8
// A half at a time goes from and to memory without a shuffle.
typedef float FourFloats __attribute__((vector_size(16), may_alias));
typedef float UnalignedFourFloats __attribute__((vector_size(16), aligned(4), may_alias));

ZOQ_INLINE Lanes join_halves(FourFloats lower, FourFloats upper) {
    return __builtin_shufflevector(lower, upper, 0, 1, 2, 3, 4, 5, 6, 7);
}
ZOQ_INLINE Lanes load_halves(const float* lower, const float* upper) {
    return join_halves(*reinterpret_cast<const UnalignedFourFloats*>(lower),
                       *reinterpret_cast<const UnalignedFourFloats*>(upper));
}
ZOQ_INLINE void store_halves(float* lower, float* upper, Lanes a) {
    *reinterpret_cast<UnalignedFourFloats*>(lower) = __builtin_shufflevector(a, a, 0, 1, 2, 3);
    *reinterpret_cast<UnalignedFourFloats*>(upper) = __builtin_shufflevector(a, a, 4, 5, 6, 7);
}
ZOQ_INLINE ComplexLanes load_complex(const float* x) {
    const Lanes a = load_halves(x, x + 8), b = load_halves(x + 4, x + 12);
    return {even_in_quarters(a, b, LaneIndices()), odd_in_quarters(a, b, LaneIndices())};
}
ZOQ_INLINE void store_complex(float* y, ComplexLanes z) {
    store_halves(y, y + 8, zip_lower(z.re, z.im, LaneIndices()));
    store_halves(y + 4, y + 12, zip_upper(z.re, z.im, LaneIndices()));
}
#else
ZOQ_INLINE ComplexLanes load_complex(const float* x) {
    const Lanes a = load(x), b = load(x + 16);
    return {shuffle<0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30>(a, b),
            shuffle<1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31>(a, b)};
}
ZOQ_INLINE void store_complex(float* y, ComplexLanes z) {
    store(y, shuffle<0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23>(z.re, z.im));
    store(y + 16, shuffle<8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31>(z.re, z.im));
}
#endif

// Complex values from and to memory with their parts apart, in the order in which they lie there. Where that takes no
// shuffle, kernels keep the parts apart; elsewhere side by side (dsp/complex_lanes.h).
#ifdef ZOQ_NEON32
constexpr bool kLoadsApart = true;
ZOQ_INLINE ComplexLanes load_apart(const float* x) {
    const float32x4x2_t parts = vld2q_f32(x);
    return {{parts.val[0]}, {parts.val[1]}};
}
ZOQ_INLINE void store_apart(float* y, ComplexLanes z) {
    const float32x4x2_t parts = {{z.re.v, z.im.v}};
    vst2q_f32(y, parts);
}
#else
constexpr bool kLoadsApart = false;
template <int... I>
ZOQ_INLINE ComplexLanes apart(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return {shuffle<(2 * I)...>(a, b), shuffle<(2 * I + 1)...>(a, b)};
}
ZOQ_INLINE ComplexLanes load_apart(const float* x) {
    return apart(load(x), load(x + kLanes), LaneIndices());
}
template <int... I>
ZOQ_INLINE void store_apart(float* y, ComplexLanes z, std::integer_sequence<int, I...>) {
    store(y, shuffle<(I % 2 * kLanes + I / 2)...>(z.re, z.im));
    store(y + kLanes, shuffle<(I % 2 * kLanes + I / 2 + kLanes / 2)...>(z.re, z.im));
}
ZOQ_INLINE void store_apart(float* y, ComplexLanes z) {
    store_apart(y, z, LaneIndices());
}
#endif

// a[0] b[0] c[0] a[1] b[1] c[1] ...
#ifdef ZOQ_NEON32
ZOQ_INLINE void store_three(float* y, Lanes a, Lanes b, Lanes c) {
    const float32x4x3_t thirds = {{a.v, b.v, c.v}};
    vst3q_f32(y, thirds);
}
#else
template <int J, int... I>  // vector J: one shuffle brings a and b to their places, another one c
ZOQ_INLINE Lanes zip_three(Lanes a, Lanes b, Lanes c, std::integer_sequence<int, I...>) {
    const Lanes ab = shuffle<((J * kLanes + I) / 3 + ((J * kLanes + I) % 3 == 1 ? kLanes : 0))...>(a, b);
    return shuffle<((J * kLanes + I) % 3 == 2 ? kLanes + (J * kLanes + I) / 3 : I)...>(ab, c);
}
ZOQ_INLINE void store_three(float* y, Lanes a, Lanes b, Lanes c) {
    store(y, zip_three<0>(a, b, c, LaneIndices()));
    store(y + kLanes, zip_three<1>(a, b, c, LaneIndices()));
    store(y + 2 * kLanes, zip_three<2>(a, b, c, LaneIndices()));
}
#endif

}  // namespace android::ZOQ_LEVEL
