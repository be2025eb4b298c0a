// Vectors of four floats by the NEON unit of 32-bit ARM; part of dsp/lanes.h.
#pragma once

#include <arm_neon.h>

namespace android::ZOQ_LEVEL {

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

}  // namespace android::ZOQ_LEVEL
