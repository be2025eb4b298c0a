// Vectors of ZOQ_LANES floats for the fast kernels. This header and those that it leads to are the only place that
// knows how compilers and processors do them; what few kernels need is in dsp/memory_lanes.h and dsp/double_lanes.h.
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
#define ZOQ_NEON32
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

}  // namespace android::ZOQ_LEVEL

#ifdef ZOQ_NEON32
#include "dsp/neon32_lanes.h"
#else
#include "dsp/generic_lanes.h"
#endif

namespace android::ZOQ_LEVEL {

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

// Lane i receives lane i + 2; what the two highest lanes hold is not specified.
template <int... I>
ZOQ_INLINE Lanes down_by_two(Lanes a, std::integer_sequence<int, I...>) {
    return shuffle<(I + 2) % kLanes...>(a, a);
}
ZOQ_INLINE Lanes down_by_two(Lanes a) {
    return down_by_two(a, LaneIndices());
}

}  // namespace android::ZOQ_LEVEL
