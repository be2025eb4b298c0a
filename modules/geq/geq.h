// Graphic equalizer: one peaking section per octave band, in cascade, with gains in dB.
//
// Where it runs: both routes, after the widening, the copy or the binaural stage.
//   hop -> band 0 (62.5 Hz) -> band 1 -> ... -> band 8 (16 kHz) -> hop      a band at 0 dB is skipped
// Latency: none. Cost: one section per channel and band in use; a design per band whose gain changed.
// Thread: audio thread only; the filter memories are process-wide.
#pragma once

#include "dsp/frame.h"

namespace android {

inline constexpr int kGeqBands = 9;
inline constexpr int kGeqMaxBands = 15;  // the filter memories' limit

// Source: bands at 62.5 Hz x 2^k, tan(pi f / 48000); Q of one octave.
struct parameterGEQ {
    float bandCount;              // bands in use, 0..9, truncated; written by the factory fill (9)
    float bandGainDb[kGeqBands];  // dB; exactly 0 bypasses the band; written by the host before every hop
    float bandQ;                  // quality factor of every band; factory fill (sqrt 2)
    float bandWarp[kGeqBands];    // tan(pi fc / 48000); factory fill
};
static_assert(sizeof(parameterGEQ) == 20 * sizeof(float));

// Factory contents: nine octave bands, all at 0 dB.
void factory_contents(parameterGEQ* record);

// Filters one hop in place.
//        argument    shape           unit     direction
//        io          2 x 512         -        in/out   channel 1 is touched only when channels is exactly 2.0
//        channels    1.0 or 2.0      -        in
//        bandCount   0..15           -        in       truncated toward zero and kept within 0..15
//        bandGainDb  bandCount       dB       in
//        bandQ       above 0         -        in       used when a band is redesigned
//        bandWarp    bandCount       -        in       used when a band is redesigned
// A band is redesigned when its gain differs from the gain of the call before; a new Q or warp alone changes
// nothing, unless the old ones made no filter, being not above 0. Coefficients change without a crossfade.
// Memories that a hostile setting has poisoned are reset at the end of the hop (dsp/poison.h).
void graphicalEQ(float* io, float channels, float bandCount, const float* bandGainDb, float bandQ,
                 const float* bandWarp);

// Filter memories go to zero and the gains last seen to -100 dB, so the next call designs every band of another gain;
// the coefficients survive.
void graphicalEQ_init();

// The same, and the next call designs every band whatever its gain: coefficients of hostile settings do not survive.
void graphicalEQ_forget();

// Designs one peaking section; boost and cut of the same size are exact inverses.
//        K           tan(pi fc / 48000)
//        gainDb      dB; 0 gives the identity
//        Q           quality factor
//        b, a        3 floats each   out; a[0] is 1
void il_iirpeaking2(float K, float gainDb, float Q, float* b, float* a);

}  // namespace android
