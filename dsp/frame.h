// Sizes of the framing, and the glossary of short names used in every room.
//
//   frame    1024 consecutive samples of one channel; each frame begins 512 samples after the one before
//   hop      the 512 new samples of a frame; what one call of the chain returns
//   bin      one of the 513 values of a real frame's half spectrum; bin k lies at k x 46.875 Hz
//   grid     171 points per hop, one per third sample, on which envelopes and gains are computed
//   section  one second-order filter: numerator b0 b1 b2, denominator a0 a1 a2, two delays
//   den  dialogue enhancement      tws  two-way stereo widening      vb   virtual bass
//   x2b  binaural rendering        geq  graphic equalizer            eq   peaking equalizer
//   drc  dynamic range compression
//
// Buffers of several channels are planar: channel c of a frame at c x 1024, of a hop at c x 512; channel 0 is
// left, 1 right, 2 the extracted centre. Full scale is 1.0.
#pragma once

#include <cstdint>

namespace android {

inline constexpr int kSampleRateHz = 48000;
inline constexpr int kFrameSamples = 1024;
inline constexpr int kHopSamples = kFrameSamples / 2;
inline constexpr int kBins = kFrameSamples / 2 + 1;
inline constexpr int kGridStep = 3;
inline constexpr int kGridPoints = (kHopSamples + kGridStep - 1) / kGridStep;

static_assert(kHopSamples == 512 && kBins == 513 && kGridPoints == 171);

// A count that a record holds as a float, truncated toward zero and kept within 0..limit; not-a-number is 0.
constexpr int count_within(float count, int limit) {
    if (!(count >= 1.0f)) {
        return 0;
    }
    return count < float(limit) ? int(count) : limit;
}

// A complex value; arrays of it are interleaved re, im.
struct creal32_T {
    float re, im;
};
static_assert(sizeof(creal32_T) == 2 * sizeof(float));

}  // namespace android
