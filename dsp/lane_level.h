// The level that a kernel's file is compiled for: its namespace, its number of lanes, and what all of dsp/lanes.h and the
// kernels are written with.
#pragma once

#include <cstdint>

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

// One integer per lane; as a mask all bits of a lane are set or none.
typedef int32_t IntLanes __attribute__((vector_size(4 * kLanes)));
typedef float FloatVector __attribute__((vector_size(4 * kLanes)));

}  // namespace android::ZOQ_LEVEL
