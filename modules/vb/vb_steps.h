// The steps of the virtual bass on the control grid, each in a scalar form (vb_steps.cpp) and in lanes
// (vb_steps_lanes.cpp).
//
// A curve has one value per grid point. What lies behind its 171 points is read and written, but of no meaning.
#pragma once

#include "modules/vb/vb.h"

namespace android {

inline constexpr int kBassCurveFloats = 176;  // whole vectors
static_assert(kBassCurveFloats >= kGridPoints && kBassCurveFloats % 16 == 0);

struct VbMemory {
    float fast, slow;  // envelopes
    float gain;        // smoothed
};

// Every third sample of the bass as x + c x^2, and its magnitude.
//        bass                      512 samples     in
//        harmonics, magnitude      curves          out
void vb_harmonics(const float* bass, float c, float* harmonics, float* magnitude);

// The two envelopes of the magnitude, made fit for a logarithm.
void vb_follow(const float* magnitude, const parameterVB& p, VbMemory* memory, float* fast, float* slow);

// Powers of ten by which the gain falls, from the logarithms of the envelopes: where the fast one leaves the slow one
// behind, less compOffsetDb.
void vb_exponents(const float* fast, const float* slow, const parameterVB& p, float* exponent);

// Smooths the gain and applies it, outputGain and the boost to the harmonics, in place.
void vb_boost(const float* gain, const parameterVB& p, float boostLin, VbMemory* memory, float* harmonics);

}  // namespace android
