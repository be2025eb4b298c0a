// Vectors of doubles, half as many as lanes.
#pragma once

#include "dsp/lanes.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace android::ZOQ_LEVEL {

// The conversions are the rounding ones of the language.
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
