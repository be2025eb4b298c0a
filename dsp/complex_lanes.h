// Complex arithmetic for the fast kernels.
#pragma once

#include <type_traits>

#include "dsp/frame.h"
#include "dsp/memory_lanes.h"

namespace android::ZOQ_LEVEL {

constexpr int kPairs = kLanes / 2;

ZOQ_INLINE Lanes load(const creal32_T* x) {
    return load(&x->re);
}
ZOQ_INLINE void store(creal32_T* y, Lanes a) {
    store(&y->re, a);
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

// kPairs bins, re and im of each side by side.
struct Pairs {
    Lanes v;
    static constexpr int kCount = kPairs;
};

ZOQ_INLINE Pairs operator+(Pairs a, Pairs b) {
    return {a.v + b.v};
}
ZOQ_INLINE Pairs operator*(Pairs a, Lanes gain) {
    return {a.v * gain};
}
ZOQ_INLINE Pairs add_product(Pairs a, Pairs b, Lanes gain) {
    return {add_product(a.v, b.v, gain)};
}
ZOQ_INLINE void read(const creal32_T* x, Pairs& a) {
    a.v = load(x);
}
ZOQ_INLINE void write(creal32_T* y, Pairs a) {
    store(y, a.v);
}
ZOQ_INLINE void read_one(const creal32_T* x, Pairs& a) {
    float padded[kLanes] = {x->re, x->im};
    a.v = load(padded);
}
ZOQ_INLINE void write_one(creal32_T* y, Pairs a) {
    *y = {vector_of(a.v)[0], vector_of(a.v)[1]};
}

// The second factor of products, made ready once for all of them: every real part twice; every imaginary part twice,
// first negated, then as it is.
struct PairsFactor {
    Lanes re, im;
};

ZOQ_INLINE PairsFactor factor_of(Pairs x) {
    const IntLanes im = IntLanes(vector_of(imaginary_parts_twice(x.v, LaneIndices())));
    return {real_parts_twice(x.v, LaneIndices()),
            lanes_of(FloatVector(im ^ signs_of_real_parts(LaneIndices())))};
}

// h.re * x.re - h.im * x.im beside h.im * x.re + h.re * x.im: adding the negated product is subtracting it.
ZOQ_INLINE Pairs product(Pairs h, PairsFactor x) {
    return {add_product(h.v * x.re, swap_parts(h.v, LaneIndices()), x.im)};
}

// kLanes bins, their real and their imaginary parts.
struct Split {
    Lanes re, im;
    static constexpr int kCount = kLanes;
};

ZOQ_INLINE Split operator+(Split a, Split b) {
    return {a.re + b.re, a.im + b.im};
}
ZOQ_INLINE Split operator*(Split a, Lanes gain) {
    return {a.re * gain, a.im * gain};
}
ZOQ_INLINE Split add_product(Split a, Split b, Lanes gain) {
    return {add_product(a.re, b.re, gain), add_product(a.im, b.im, gain)};
}
ZOQ_INLINE void read(const creal32_T* x, Split& a) {
    const ComplexLanes z = load_apart(&x->re);
    a = {z.re, z.im};
}
ZOQ_INLINE void write(creal32_T* y, Split a) {
    store_apart(&y->re, {a.re, a.im});
}
ZOQ_INLINE void read_one(const creal32_T* x, Split& a) {
    a = {broadcast(x->re), broadcast(x->im)};
}
ZOQ_INLINE void write_one(creal32_T* y, Split a) {
    *y = {vector_of(a.re)[0], vector_of(a.im)[0]};
}
ZOQ_INLINE Split factor_of(Split x) {
    return x;
}
ZOQ_INLINE Split product(Split h, Split x) {
    return {subtract_product(h.re * x.re, h.im, x.im), add_product(h.im * x.re, h.re, x.im)};
}

// The bins of a vector or two, in the arrangement that costs least.
using Bins = std::conditional_t<kLoadsApart, Split, Pairs>;

using Factor = decltype(factor_of(Bins()));

// How bins are read and written: as many as a vector holds, or the one that is left behind whole vectors.
struct Whole {
    ZOQ_INLINE Bins bins(const creal32_T* x) {
        Bins a;
        read(x, a);
        return a;
    }
    ZOQ_INLINE void put(creal32_T* y, Bins a) { write(y, a); }
};
struct Single {
    ZOQ_INLINE Bins bins(const creal32_T* x) {
        Bins a;
        read_one(x, a);
        return a;
    }
    ZOQ_INLINE void put(creal32_T* y, Bins a) { write_one(y, a); }
};

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
