// Complex arithmetic for the fast kernels: kPairs values of creal32_T in one vector, re and im side by side.
#pragma once

#include "dsp/frame.h"
#include "dsp/lanes.h"

namespace android::ZOQ_LEVEL {

constexpr int kPairs = kLanes / 2;

ZOQ_INLINE Lanes load(const creal32_T* x) {
    return load(&x->re);
}
ZOQ_INLINE void store(creal32_T* y, Lanes a) {
    store(&y->re, a);
}

// The bin that is left behind whole vectors: zeros behind it on the way in, nothing but it on the way out.
ZOQ_INLINE Lanes load_one(const creal32_T* x) {
    float padded[kLanes] = {x->re, x->im};
    return load(padded);
}
ZOQ_INLINE void store_one(creal32_T* y, Lanes a) {
    *y = {vector_of(a)[0], vector_of(a)[1]};
}

template <int... I>
ZOQ_INLINE Lanes real_parts_twice(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<(I & ~1)...>(a, a);
}
template <int... I>
ZOQ_INLINE Lanes imaginary_parts_twice(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<(I | 1)...>(a, a);
}
template <int... I>
ZOQ_INLINE Lanes swap_parts(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<(I ^ 1)...>(a, a);
}
template <int... I>
ZOQ_INLINE IntLanes signs_of_real_parts(std::integer_sequence<int, I...>) {
    return IntLanes{(I % 2 == 0 ? INT32_MIN : 0)...};
}

// The second factor of products, made ready once for all of them.
struct Factor {
    Lanes re;  // every real part twice
    Lanes im;  // every imaginary part twice, first negated, then as it is
};

ZOQ_INLINE Factor factor_of(Lanes x) {
    const IntLanes im = IntLanes(vector_of(imaginary_parts_twice(x, LaneIndices())));
    return {real_parts_twice(x, LaneIndices()),
            lanes_of(FloatVector(im ^ signs_of_real_parts(LaneIndices())))};
}

// h.re * x.re - h.im * x.im beside h.im * x.re + h.re * x.im: adding the negated product is subtracting it.
ZOQ_INLINE Lanes product(Lanes h, Factor x) {
    return h * x.re + swap_parts(h, LaneIndices()) * x.im;
}

// Two vectors of complex values as a vector of their real parts and one of their imaginary parts. The order within
// them is that of shuffles inside groups of four; zip_first and zip_second lead back to the two vectors.
template <int... I>
ZOQ_INLINE ComplexLanes parts_of(Lanes first, Lanes second, std::integer_sequence<int, I...>) {
    return {shuffle<((I & ~3) + I % 2 * 2 + I / 2 % 2 * kLanes)...>(first, second),
            shuffle<((I & ~3) + I % 2 * 2 + I / 2 % 2 * kLanes + 1)...>(first, second)};
}
ZOQ_INLINE ComplexLanes parts_of(Lanes first, Lanes second) {
    return parts_of(first, second, LaneIndices());
}
template <int... I>
ZOQ_INLINE Lanes zip_first(ComplexLanes x, std::integer_sequence<int, I...>) {
    return shuffle<((I & ~3) + I / 2 % 2 + I % 2 * kLanes)...>(x.re, x.im);
}
ZOQ_INLINE Lanes zip_first(ComplexLanes x) {
    return zip_first(x, LaneIndices());
}
template <int... I>
ZOQ_INLINE Lanes zip_second(ComplexLanes x, std::integer_sequence<int, I...>) {
    return shuffle<((I & ~3) + I / 2 % 2 + 2 + I % 2 * kLanes)...>(x.re, x.im);
}
ZOQ_INLINE Lanes zip_second(ComplexLanes x) {
    return zip_second(x, LaneIndices());
}

}  // namespace android::ZOQ_LEVEL
