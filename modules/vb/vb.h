// Virtual bass: replaces the band below the loudspeaker's cutoff by its harmonics.
//
// Where it runs: loudspeaker route, after the graphic equalizer, while boostLin is above -1.
//   hop -> mono -> low-pass -> every third sample: x + c x^2 -> fast against slow envelope -> gain -> boost
//       -> 512 samples -> + each channel -> high-pass at the cutoff
// Latency: none. Cost: two sections on the mono mix, two per channel, 342 logarithms, 171 powers.
// Thread: audio thread only; filter memories and envelopes are process-wide.
#pragma once

#include "dsp/section.h"

namespace android {

// Section counts are truncated and kept within 0..3; a count of 0 switches that stage off. Section matrices
// as in dsp/section.h.
struct parameterVB {
    float harmonicGain;     // c of x + c x^2; factory fill (6 dB)
    float boostLin;         // linear gain of the generated bass, -1: off; host, from "VB_boostlin"
    float compSlope;        // dB of reduction per dB of excess; factory fill (0.2)
    float compOffsetDb;     // dB added to the fast-minus-slow difference; factory fill (12)
    float outputGain;       // linear gain applied with the boost; factory fill (2.4 dB)
    float lowpassSections;  // sections in use: bass extraction
    float lowpassSos[kSectionMatrixFloats];
    float inputHighpassSections;  // sections in use: each channel before the bass is added
    float inputHighpassSos[kSectionMatrixFloats];
    float bandHighpassSections;  // sections in use: the extracted bass band
    float bandHighpassSos[kSectionMatrixFloats];
    float harmonicLowpassSections;  // sections in use: the generated harmonics
    float harmonicLowpassSos[kSectionMatrixFloats];
    float fastAttack;  // follower coefficients per grid point
    float fastRelease;
    float slowAttack;
    float slowRelease;
    float gainSmoothing;           // one-pole coefficient of the gain
    float outputHighpassSections;  // sections in use: each output channel
    float outputHighpassSos[kSectionMatrixFloats];
};
static_assert(sizeof(parameterVB) == 105 * sizeof(float));

// Factory contents. cutoffHz, truncated toward zero, selects one of the prepared section sets: 60, 70, 80,
// 100, 120, 150, 180, 200, 220 or 250 Hz; any other value takes the 120 Hz set.
void factory_contents(float cutoffHz, parameterVB* record);

// Processes one hop in place.
//        argument    shape           direction
//        io          2 x 512         in/out   channel 1 is touched only when channels is 2 or more
//        channels    1.0 or 2.0      in
//        parameters  record          in
// Memories that a hostile setting has poisoned are reset at the end of the hop (dsp/poison.h).
void virtualbassFunction_monoLC(float* io, float channels, const parameterVB* parameters);

// The same with a boost of the caller's in place of the record's, which other threads may change.
void virtualbassFunction_monoLC(float* io, float channels, const parameterVB* parameters, float boostLin);

// Filter memories and envelopes go to zero, the smoothed gain to 1.
void virtualbassFunction_monoLC_init();

}  // namespace android
