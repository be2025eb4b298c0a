// Refuses builds in which the same source would give other bits.
//
// The order of operations is part of the design and every target is to produce the same output, so fused
// multiply-adds, reassociation and excess precision are errors, not options. The build puts this
// header in front of every source of the engine; hosts are free in how they compile their own.
#pragma once

#include <cfloat>

#if defined(__FAST_MATH__) || defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__
#error "build the engine without -ffast-math: its output must be the same bit for bit on every target"
#endif

// GCC 12 fuses interleaved complex products into vfmaddsub whenever the target has FMA, whatever
// -ffp-contract says, so x86 engine code is compiled without it. Clang keeps to the letter, and its AVX-512 cannot
// be had without FMA.
#if defined(__x86_64__) && defined(__FMA__) && !(defined(__clang__) && defined(__AVX512F__))
#error "build the engine without FMA (-mno-fma): GCC fuses complex products even under -ffp-contract=off"
#endif

#if FLT_EVAL_METHOD != 0
#error "build the engine with float arithmetic in single precision (on 32-bit x86: -msse2 -mfpmath=sse)"
#endif
