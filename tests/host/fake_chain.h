// A frame chain whose output is known, linked in place of the real one: left comes back as -1/2 of the frame's
// first hop, right as 1/4, so that the driver is tested alone. One header per executable: it defines the
// chain's functions.
#pragma once

#include <functional>
#include <vector>

#include "zoq2processing.h"

namespace fake_chain {

struct Call {
    float channelCount;
    uint8_t headphone;
    std::vector<float> left, right;  // frameIn's first two blocks
};

inline std::vector<Call> calls;
inline int resets = 0;
inline std::function<void(float* frameOut)> inside;  // runs at the end of every call

}  // namespace fake_chain

namespace android {

void stereoWidening_frame(float* frameIn, float channelCount, uint8_t headphone, parameterDEN*, parameterTWS*,
                          const parameterEQ*, const parameterDRC*, const parameterVB*, const parameterX2B*,
                          const parameterGEQ*, float* frameOut) {
    const float *left = frameIn, *right = frameIn + kFrameSamples;
    fake_chain::calls.push_back(
        {channelCount, headphone, {left, left + kFrameSamples}, {right, right + kFrameSamples}});
    for (int i = 0; i < kHopSamples; ++i) {
        frameOut[i] = -0.5f * left[i];
        frameOut[kHopSamples + i] = 0.25f * right[i];
    }
    if (fake_chain::inside) {
        fake_chain::inside(frameOut);
    }
}

void stereoWidening_frame_init() {}

void stereoWidening_frame_initialize() {
    ++fake_chain::resets;
}

}  // namespace android
