#include "modules/vb/vb_steps.h"

#include "dsp/grid.h"
#include "dsp/kernel_level.h"

namespace android {

namespace {

constexpr float kLogFloor = 1e-10f;  // keeps the logarithm of silence finite: -200 dB

// Each point's coefficient depends on the follower's value before that point.
void follow(const float* envelope, float attack, float release, float& last, float* followed) {
    float value = last;
    for (int k = 0; k < kGridPoints; ++k) {
        const float c = envelope[k] > value ? attack : release;
        value = (1.0f - c) * envelope[k] + c * value;
        followed[k] = value + kLogFloor;
    }
    last = value;
}

}  // namespace

namespace scalar {

void vb_harmonics(const float* bass, float c, float* harmonics, float* magnitude) {
    for (int k = 0; k < kGridPoints; ++k) {
        const float x = bass[kGridStep * k];
        harmonics[k] = x + (c * x) * x;
    }
    b_abs(harmonics, magnitude);
}

void vb_follow(const float* magnitude, const parameterVB& p, VbMemory* memory, float* fast, float* slow) {
    follow(magnitude, p.fastAttack, p.fastRelease, memory->fast, fast);
    follow(magnitude, p.slowAttack, p.slowRelease, memory->slow, slow);
}

void vb_exponents(const float* fast, const float* slow, const parameterVB& p, float* exponent) {
    for (int k = 0; k < kGridPoints; ++k) {
        const float excessDb = 20.0f * fast[k] - (20.0f * slow[k] - p.compOffsetDb);
        const float gate = excessDb > 0.0f ? 1.0f : 0.0f;
        exponent[k] = -(gate * (p.compSlope * excessDb)) * 0.05f;
    }
}

void vb_boost(const float* gain, const parameterVB& p, float boostLin, VbMemory* memory, float* harmonics) {
    float smoothed = memory->gain;
    for (int k = 0; k < kGridPoints; ++k) {
        smoothed = (1.0f - p.gainSmoothing) * gain[k] + p.gainSmoothing * smoothed;
        harmonics[k] = boostLin * ((smoothed * p.outputGain) * harmonics[k]);
    }
    memory->gain = smoothed;
}

}  // namespace scalar

ZOQ_KERNEL(vb_harmonics, const float* bass, float c, float* harmonics, float* magnitude);
ZOQ_KERNEL(vb_follow, const float* magnitude, const parameterVB& p, VbMemory* memory, float* fast,
           float* slow);
ZOQ_KERNEL(vb_exponents, const float* fast, const float* slow, const parameterVB& p, float* exponent);
ZOQ_KERNEL(vb_boost, const float* gain, const parameterVB& p, float boostLin, VbMemory* memory,
           float* harmonics);

namespace {

constexpr size_t kCurveBytes = kGridPoints * sizeof(float);

}  // namespace

void vb_harmonics(const float* bass, float c, float* harmonics, float* magnitude) {
    vb_harmonics_kernel.run({{harmonics, kCurveBytes}, {magnitude, kCurveBytes}}, bass, c, harmonics,
                            magnitude);
}

void vb_follow(const float* magnitude, const parameterVB& p, VbMemory* memory, float* fast, float* slow) {
    vb_follow_kernel.run({{memory, sizeof *memory}, {fast, kCurveBytes}, {slow, kCurveBytes}}, magnitude, p,
                         memory, fast, slow);
}

void vb_exponents(const float* fast, const float* slow, const parameterVB& p, float* exponent) {
    vb_exponents_kernel.run({{exponent, kCurveBytes}}, fast, slow, p, exponent);
}

void vb_boost(const float* gain, const parameterVB& p, float boostLin, VbMemory* memory, float* harmonics) {
    vb_boost_kernel.run({{memory, sizeof *memory}, {harmonics, kCurveBytes}}, gain, p, boostLin, memory,
                        harmonics);
}

}  // namespace android
