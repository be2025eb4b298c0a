// Peaking equalizer: ready-made sections on the signal, a treble booster in parallel, one repeated section.
//
// Where it runs: loudspeaker route, after the virtual bass.
//   hop -> peak sections -> + trebleGain x (treble sections) -> final section, finalPassCount times
// Latency: none. Cost: one section per channel with the factory contents.
// Thread: audio thread only; the filter memories are process-wide.
#pragma once

#include "dsp/section.h"

namespace android {

inline constexpr int kEqMaxFinalPasses = 1024;  // so that no record can stall a hop

// Section counts are truncated and kept within 0..3. Section matrices as in dsp/section.h.
struct parameterEQ {
    float peakSectionCount;                 // factory fill (0)
    float peakSos[kSectionMatrixFloats];    // factory fill (zeros)
    float trebleSectionCount;               // factory fill (1)
    float trebleSos[kSectionMatrixFloats];  // factory fill: first-order high-pass at 10 kHz
    float trebleGain;                       // linear; above 0 the booster runs; host, from "EQ_trebleBoost"
    float finalSos[6];                      // b0 b1 b2 a0 a1 a2; factory fill (identity)
    float finalPassCount;                   // factory fill (0)
};
static_assert(sizeof(parameterEQ) == 46 * sizeof(float));

// Factory contents.
void factory_contents(parameterEQ* record);

// Filters one hop in place.
//        argument            shape        direction
//        io                  2 x 512      in/out   channel 1 is touched only when channels is exactly 2.0
//        channels            1.0 or 2.0   in
//        peakSectionCount    0..3         in
//        peakSos             18           in
//        trebleSectionCount  0..3         in
//        trebleSos           18           in
//        trebleGain          linear       in       0 or less: the booster and its memories stand still
//        finalSos            6            in
//        finalPassCount      0..1024      in       every pass uses the same memories
// Counts are truncated toward zero and kept within the ranges given.
// Memories that a hostile setting has poisoned are reset at the end of the hop (dsp/poison.h).
void equalization_peak(float* io, float channels, float peakSectionCount, const float* peakSos,
                       float trebleSectionCount, const float* trebleSos, float trebleGain,
                       const float* finalSos, float finalPassCount);

// All filter memories go to zero.
void equalization_peak_init();

}  // namespace android
