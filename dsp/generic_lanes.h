// Vectors of floats by the generic vectors of the compiler; part of dsp/lanes.h.
#pragma once

#if defined(__aarch64__)
#include <arm_neon.h>
#elif defined(__x86_64__)
#include <immintrin.h>
#endif

namespace android::ZOQ_LEVEL {

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

}  // namespace android::ZOQ_LEVEL
