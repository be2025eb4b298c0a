// Vectors of ZOQ_LANES floats for the fast kernels; the only place that knows how compilers and processors do them.
//
// A <name>_lanes.cpp is built once for each of 4, 8 and 16 lanes, into the namespace ZOQ_LEVEL (lanes4, ...). Nothing
// here contracts, reorders or approximates: every operation is the scalar one in each lane. A kernel object must not
// define a function that the linker could hand to other code, because a lesser processor could not run it: everything
// here and in the kernels is inlined or local to its file.
#pragma once

#include <cstdint>
#include <utility>

#ifndef ZOQ_LANES
#define ZOQ_LANES 4  // for a look at this header alone
#endif

#define ZOQ_PASTE_(a, b) a##b
#define ZOQ_PASTE(a, b)  ZOQ_PASTE_(a, b)
#define ZOQ_LEVEL        ZOQ_PASTE(lanes, ZOQ_LANES)
#define ZOQ_INLINE       [[gnu::always_inline]] static inline
#define ZOQ_MEMBER       [[gnu::always_inline]] inline

// In front of a loop over an array that is meant to stay in registers.
#ifdef __clang__
#define ZOQ_UNROLL _Pragma("unroll")
#else
#define ZOQ_UNROLL _Pragma("GCC unroll 16")
#endif

#if defined(__ARM_NEON)
#include <arm_neon.h>
#ifndef __aarch64__
#define ZOQ_NEON32
#endif
#elif defined(__x86_64__)
#include <immintrin.h>
#endif

namespace android::ZOQ_LEVEL {

constexpr int kLanes = ZOQ_LANES;

// How many vectors of second-order sections run at once: on x86 operands come from memory for free, elsewhere seven
// registers each are to be had.
#if defined(__x86_64__)
constexpr int kSectionVectors = 5;
#elif defined(ZOQ_NEON32)
constexpr int kSectionVectors = 2;
#else
constexpr int kSectionVectors = 3;
#endif

// One integer per lane; as a mask all bits of a lane are set or none.
typedef int32_t IntLanes __attribute__((vector_size(4 * kLanes)));
typedef float FloatVector __attribute__((vector_size(4 * kLanes)));

#ifdef ZOQ_NEON32
// GCC computes its generic vectors lane by lane here, because this unit always flushes subnormals; so does the engine.
struct Lanes {
    float32x4_t v;
};
ZOQ_INLINE Lanes operator+(Lanes a, Lanes b) {
    return {vaddq_f32(a.v, b.v)};
}
ZOQ_INLINE Lanes operator-(Lanes a, Lanes b) {
    return {vsubq_f32(a.v, b.v)};
}
ZOQ_INLINE Lanes operator*(Lanes a, Lanes b) {
    return {vmulq_f32(a.v, b.v)};
}
ZOQ_INLINE Lanes operator-(Lanes a) {  // the intrinsic for it comes out lane by lane
    return {float32x4_t(IntLanes(a.v) ^ INT32_MIN)};
}
ZOQ_INLINE Lanes load(const float* x) {
    return {vld1q_f32(x)};
}
ZOQ_INLINE void store(float* y, Lanes a) {
    vst1q_f32(y, a.v);
}
ZOQ_INLINE Lanes broadcast(float x) {
    return {vdupq_n_f32(x)};
}
// This unit has neither division nor square root; the scalar one has both.
ZOQ_INLINE Lanes operator/(Lanes a, Lanes b) {
    return {float32x4_t{a.v[0] / b.v[0], a.v[1] / b.v[1], a.v[2] / b.v[2], a.v[3] / b.v[3]}};
}
ZOQ_INLINE Lanes square_root(Lanes a) {
    return {float32x4_t{__builtin_sqrtf(a.v[0]), __builtin_sqrtf(a.v[1]), __builtin_sqrtf(a.v[2]),
                        __builtin_sqrtf(a.v[3])}};
}
// GCC 12 has no intrinsic that stays a vector comparison without fast maths.
ZOQ_INLINE IntLanes less(Lanes a, Lanes b) {
    IntLanes mask;
    asm("vcgt.f32 %q0, %q1, %q2" : "=w"(mask) : "w"(b.v), "w"(a.v));
    return mask;
}
ZOQ_INLINE IntLanes at_most(Lanes a, Lanes b) {
    IntLanes mask;
    asm("vcge.f32 %q0, %q1, %q2" : "=w"(mask) : "w"(b.v), "w"(a.v));
    return mask;
}
ZOQ_INLINE Lanes select(IntLanes mask, Lanes a, Lanes b) {
    return {vbslq_f32(uint32x4_t(mask), a.v, b.v)};
}
ZOQ_INLINE Lanes floats_of(IntLanes a) {
    return {vcvtq_f32_s32(int32x4_t(a))};
}
ZOQ_INLINE IntLanes truncated(Lanes a) {
    return IntLanes(vcvtq_s32_f32(a.v));
}
// Lanes kFirst and kFirst + 1, kFirst even, become *x and *y.
template <int kFirst>
ZOQ_INLINE Lanes with_pair(Lanes a, const float* x, const float* y) {
    return {vld1q_lane_f32(y, vld1q_lane_f32(x, a.v, kFirst), kFirst + 1)};
}
// a + b * c and a - b * c, the product rounded before the sum.
ZOQ_INLINE Lanes add_product(Lanes a, Lanes b, Lanes c) {
    return {vmlaq_f32(a.v, b.v, c.v)};
}
ZOQ_INLINE Lanes subtract_product(Lanes a, Lanes b, Lanes c) {
    return {vmlsq_f32(a.v, b.v, c.v)};
}
ZOQ_INLINE FloatVector vector_of(Lanes a) {
    return FloatVector(a.v);
}
ZOQ_INLINE Lanes lanes_of(FloatVector v) {
    return {float32x4_t(v)};
}
#else
using Lanes = FloatVector;

namespace unaligned {
typedef float Floats __attribute__((vector_size(4 * kLanes), aligned(4), may_alias));
}
ZOQ_INLINE Lanes load(const float* x) {
    return *reinterpret_cast<const unaligned::Floats*>(x);
}
ZOQ_INLINE void store(float* y, Lanes a) {
    *reinterpret_cast<unaligned::Floats*>(y) = a;
}
ZOQ_INLINE Lanes broadcast(float x) {
    return x - Lanes{};  // of either zero, too
}
ZOQ_INLINE IntLanes less(Lanes a, Lanes b) {
    return a < b;
}
ZOQ_INLINE IntLanes at_most(Lanes a, Lanes b) {
    return a <= b;
}
ZOQ_INLINE Lanes add_product(Lanes a, Lanes b, Lanes c) {
    return a + b * c;
}
ZOQ_INLINE Lanes subtract_product(Lanes a, Lanes b, Lanes c) {
    return a - b * c;
}
ZOQ_INLINE Lanes square_root(Lanes a) {
#if ZOQ_LANES == 16
    return Lanes(_mm512_maskz_sqrt_ps(0xFFFF, __m512(a)));
#elif ZOQ_LANES == 8
    return Lanes(_mm256_sqrt_ps(__m256(a)));
#elif defined(__aarch64__)
    return Lanes(vsqrtq_f32(float32x4_t(a)));
#else
    return Lanes(_mm_sqrt_ps(__m128(a)));
#endif
}
ZOQ_INLINE FloatVector vector_of(Lanes a) {
    return a;
}
ZOQ_INLINE Lanes lanes_of(FloatVector v) {
    return v;
}
ZOQ_INLINE Lanes select(IntLanes mask, Lanes a, Lanes b) {
    return mask ? a : b;
}
ZOQ_INLINE Lanes floats_of(IntLanes a) {
    return __builtin_convertvector(a, Lanes);
}
// Toward zero; for magnitudes below 2^31.
ZOQ_INLINE IntLanes truncated(Lanes a) {
    return __builtin_convertvector(a, IntLanes);
}
#endif

ZOQ_INLINE Lanes absolute(Lanes a) {
    return lanes_of(FloatVector(IntLanes(vector_of(a)) & 0x7FFFFFFF));
}

// Lane i of the result is lane I[i] of a, or from kLanes on lane I[i] - kLanes of b.
template <int... I>
ZOQ_INLINE Lanes shuffle(Lanes a, Lanes b) {
    return lanes_of(__builtin_shufflevector(vector_of(a), vector_of(b), I...));
}

ZOQ_INLINE IntLanes load_bits(const void* x) {
    IntLanes v;
    __builtin_memcpy(&v, x, sizeof v);
    return v;
}
ZOQ_INLINE IntLanes load_ints(const int32_t* x) {
    return load_bits(x);
}
ZOQ_INLINE void store_bits(void* y, IntLanes a) {
    __builtin_memcpy(y, &a, sizeof a);
}

using LaneIndices = std::make_integer_sequence<int, kLanes>;

// 0, 1, 2, ...
template <int... I>
ZOQ_INLINE IntLanes lane_numbers(std::integer_sequence<int, I...>) {
    return IntLanes{I...};
}
ZOQ_INLINE IntLanes lane_numbers() {
    return lane_numbers(LaneIndices());
}

template <int... I>
ZOQ_INLINE Lanes reverse(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<(kLanes - 1 - I)...>(a, a);
}
ZOQ_INLINE Lanes reverse(Lanes a) {
    return reverse(a, LaneIndices());
}

// Rotates upward by one lane: lane i + 1 receives lane i, lane 0 what the last one held.
template <int... I>
ZOQ_INLINE Lanes rotate_up(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<((I + kLanes - 1) % kLanes)...>(a, a);
}
ZOQ_INLINE Lanes rotate_up(Lanes a) {
    return rotate_up(a, LaneIndices());
}

// Lane i receives lane i + 2; what the two highest lanes hold is not specified.
template <int... I>
ZOQ_INLINE Lanes down_by_two(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<(I + 2) % kLanes...>(a, a);
}
ZOQ_INLINE Lanes down_by_two(Lanes a) {
    return down_by_two(a, LaneIndices());
}

#ifndef ZOQ_NEON32
// Lanes kFirst and kFirst + 1, kFirst even, become *x and *y.
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

// Doubles: half as many in a register. The conversions are the rounding ones of the language.
constexpr int kDoubles = kLanes / 2;
typedef double Doubles __attribute__((vector_size(8 * kDoubles)));
typedef float HalfFloats __attribute__((vector_size(4 * kDoubles)));
typedef int32_t HalfInts __attribute__((vector_size(4 * kDoubles)));

// Compilers convert generic vectors piece by piece; masks of ones keep GCC 12 from warning of its own headers.
#if ZOQ_LANES == 16
ZOQ_INLINE Doubles doubles_of(HalfFloats x) {
    return Doubles(_mm512_maskz_cvtps_pd(0xFF, __m256(x)));
}
ZOQ_INLINE Doubles doubles_of(HalfInts x) {
    return Doubles(_mm512_maskz_cvtepi32_pd(0xFF, __m256i(x)));
}
ZOQ_INLINE HalfFloats floats_of(Doubles x) {
    return HalfFloats(_mm512_maskz_cvtpd_ps(0xFF, __m512d(x)));
}
ZOQ_INLINE bool any(HalfInts mask) {
    return _mm256_movemask_ps(__m256(mask)) != 0;
}
#elif ZOQ_LANES == 8
ZOQ_INLINE Doubles doubles_of(HalfFloats x) {
    return Doubles(_mm256_cvtps_pd(__m128(x)));
}
ZOQ_INLINE Doubles doubles_of(HalfInts x) {
    return Doubles(_mm256_cvtepi32_pd(__m128i(x)));
}
ZOQ_INLINE HalfFloats floats_of(Doubles x) {
    return HalfFloats(_mm256_cvtpd_ps(__m256d(x)));
}
ZOQ_INLINE bool any(HalfInts mask) {
    return _mm_movemask_ps(__m128(mask)) != 0;
}
#else
ZOQ_INLINE Doubles doubles_of(HalfFloats x) {
    return __builtin_convertvector(x, Doubles);
}
ZOQ_INLINE Doubles doubles_of(HalfInts x) {
    return __builtin_convertvector(x, Doubles);
}
ZOQ_INLINE HalfFloats floats_of(Doubles x) {
    return __builtin_convertvector(x, HalfFloats);
}
ZOQ_INLINE bool any(HalfInts mask) {
    return (mask[0] | mask[1]) != 0;
}
#endif

}  // namespace android::ZOQ_LEVEL
