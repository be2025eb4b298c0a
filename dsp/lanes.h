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

#if defined(__ARM_NEON) && !defined(__aarch64__)
#include <arm_neon.h>
#define ZOQ_NEON32
#endif

namespace android::ZOQ_LEVEL {

constexpr int kLanes = ZOQ_LANES;

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
ZOQ_INLINE Lanes operator-(Lanes a) {
    return {vnegq_f32(a.v)};
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
ZOQ_INLINE IntLanes less(Lanes a, Lanes b) {
    return IntLanes(vcltq_f32(a.v, b.v));
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
ZOQ_INLINE Lanes add_product(Lanes a, Lanes b, Lanes c) {
    return a + b * c;
}
ZOQ_INLINE Lanes subtract_product(Lanes a, Lanes b, Lanes c) {
    return a - b * c;
}
ZOQ_INLINE FloatVector vector_of(Lanes a) {
    return a;
}
ZOQ_INLINE Lanes lanes_of(FloatVector v) {
    return v;
}
#endif

ZOQ_INLINE Lanes select(IntLanes mask, Lanes a, Lanes b) {
    return lanes_of(mask ? vector_of(a) : vector_of(b));
}

// Lane i of the result is lane I[i] of a, or from kLanes on lane I[i] - kLanes of b.
template <int... I>
ZOQ_INLINE Lanes shuffle(Lanes a, Lanes b) {
    return lanes_of(__builtin_shufflevector(vector_of(a), vector_of(b), I...));
}

ZOQ_INLINE IntLanes load_ints(const int32_t* x) {
    IntLanes v;
    __builtin_memcpy(&v, x, sizeof v);
    return v;
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

// load_complex and store_complex: from and to interleaved re, im. Lane i holds value kLaneOrder[i]; for eight lanes
// this order saves the exchange between the halves.
#if ZOQ_LANES == 8
typedef float FourFloats __attribute__((vector_size(16), may_alias));
constexpr int kLaneOrder[kLanes] = {0, 1, 4, 5, 2, 3, 6, 7};

ZOQ_INLINE Lanes in_lane_order(Lanes a) {
    return shuffle<0, 1, 4, 5, 2, 3, 6, 7>(a, a);
}
#else
constexpr int kLaneOrder[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

ZOQ_INLINE Lanes in_lane_order(Lanes a) {
    return a;
}
#endif

#if ZOQ_LANES == 16
ZOQ_INLINE ComplexLanes load_complex(const float* x) {
    const Lanes a = load(x), b = load(x + 16);
    return {shuffle<0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30>(a, b),
            shuffle<1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31>(a, b)};
}
ZOQ_INLINE void store_complex(float* y, ComplexLanes z) {
    store(y, shuffle<0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23>(z.re, z.im));
    store(y + 16, shuffle<8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31>(z.re, z.im));
}
#else
ZOQ_INLINE ComplexLanes load_complex(const float* x) {
    const Lanes a = load(x), b = load(x + kLanes);
    return {even_in_quarters(a, b, LaneIndices()), odd_in_quarters(a, b, LaneIndices())};
}
ZOQ_INLINE void store_complex(float* y, ComplexLanes z) {
    store(y, zip_lower(z.re, z.im, LaneIndices()));
    store(y + kLanes, zip_upper(z.re, z.im, LaneIndices()));
}
#endif

}  // namespace android::ZOQ_LEVEL
