// The fast forms of the steps in vb_steps.cpp.
#include "dsp/memory_lanes.h"
#include "dsp/quads.h"
#include "modules/vb/vb_steps.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr float kLogFloor = 1e-10f;

}  // namespace

void vb_harmonics(const float* bass, float c, float* harmonics, float* magnitude) {
    harmonics[0] = bass[0] + (c * bass[0]) * bass[0];
    magnitude[0] = __builtin_fabsf(harmonics[0]);
    for (int i = 1; i < kGridPoints; i += kLanes) {
        const int k = i < kGridPoints - kLanes ? i : kGridPoints - kLanes;  // the last ones once more
        const Lanes x = load_three(bass + kGridStep * k - 1).v[1];
        const Lanes y = add_product(x, broadcast(c) * x, x);
        store(harmonics + k, y);
        store(magnitude + k, absolute(y));
    }
}

// The fast envelope runs in lane 0, the slow one in lane 1.
void vb_follow(const float* magnitude, const parameterVB& p, VbMemory* memory, float* fast, float* slow) {
    Smoothers envelopes = {.attackInput = quad(1.0f - p.fastAttack, 1.0f - p.slowAttack, 0.0f, 0.0f),
                           .attack = quad(p.fastAttack, p.slowAttack, 0.0f, 0.0f),
                           .releaseInput = quad(1.0f - p.fastRelease, 1.0f - p.slowRelease, 0.0f, 0.0f),
                           .release = quad(p.fastRelease, p.slowRelease, 0.0f, 0.0f),
                           .floor = broadcast_quad(0.0f),
                           .noFloor = IntQuad{-1, -1, -1, -1},
                           .s = quad(memory->fast, memory->slow, 0.0f, 0.0f)};
    const Quad logFloor = broadcast_quad(kLogFloor);
    Quad last = envelopes.s;
    for (int k = 0; k < kGridPoints; k += 4) {
        Quad x[4] = {broadcast_quad(magnitude[k]), broadcast_quad(magnitude[k + 1]),
                     broadcast_quad(magnitude[k + 2]), broadcast_quad(magnitude[k + 3])};
        smooth(envelopes, x);
        last = x[(kGridPoints - 1) % 4];
        transpose(x);
        store(fast + k, x[0] + logFloor);
        store(slow + k, x[1] + logFloor);
    }
    memory->fast = vector_of(last)[0];
    memory->slow = vector_of(last)[1];
}

void vb_exponents(const float* fast, const float* slow, const parameterVB& p, float* exponent) {
    const Lanes twenty = broadcast(20.0f), zero = broadcast(0.0f), one = broadcast(1.0f);
    for (int k = 0; k < kBassCurveFloats; k += kLanes) {
        const Lanes excessDb =
            twenty * load(fast + k) - (twenty * load(slow + k) - broadcast(p.compOffsetDb));
        const Lanes gate = select(less(zero, excessDb), one, zero);
        store(exponent + k, -(gate * (broadcast(p.compSlope) * excessDb)) * broadcast(0.05f));
    }
}

void vb_boost(const float* gain, const parameterVB& p, float boostLin, VbMemory* memory, float* harmonics) {
    alignas(64) float smoothed[kBassCurveFloats] = {};
    const float smoothing = p.gainSmoothing, input = 1.0f - smoothing;
    float s = memory->gain;
    for (int k = 0; k < kGridPoints; ++k) {
        s = input * gain[k] + smoothing * s;
        smoothed[k] = s;
    }
    memory->gain = s;
    const Lanes outputGain = broadcast(p.outputGain), boost = broadcast(boostLin);
    for (int k = 0; k < kBassCurveFloats; k += kLanes) {
        store(harmonics + k, boost * ((load(smoothed + k) * outputGain) * load(harmonics + k)));
    }
}

}  // namespace android::ZOQ_LEVEL
