// Dialogue enhancement: pan widening, centre extraction, speech detection and boost on one windowed frame.
//
// Where it runs: first in both routes, on stereo input, before the overlap-add.
//   frame L, R -> window -> half spectra -> [widen bins 31..255] -> centre of 34 bands -> [speech gain of 33
//   bands]
//              -> L, R, C -> inverse -> window -> three blocks to overlap-add at a hop of 512
// Latency: none of its own; the overlap-add completes a hop one call later.
// Cost: one forward and at most two inverse transforms.  Thread: audio thread only; the smoothed powers and
// the four-hop histories are process-wide.
#pragma once

#include "dsp/frame.h"

namespace android {

inline constexpr int kDenBands = 43;
inline constexpr int kDenCurveColumns = 100;

struct parameterDEN {
    float smoothFactor;      // weight of the previous hop in the band powers, 0..1; factory fill (0.8)
    float centerSpeechGain;  // linear boost of speech bands, 1 = none; host, from "DEN_centspeechgain"
    float baseGain;          // linear gain of the speech bands without speech; host (1.0)
    float wideAmount;        // pan widening, 0 (off) .. 4; rewritten by the chain every hop
    float stereoOutput;      // not 0: the centre is folded back into left and right; host (0)
    float wideCurve[4][kDenCurveColumns];  // rows u^3, u^2, u, 1 of the pan curve, column K - 1; factory fill
    float bandWidth[kDenBands];            // bins in a band; not read
    float bandEnd[kDenBands];              // last bin of a band, counted from 1; factory fill
    float bandStart[kDenBands];            // first bin of a band, counted from 1; factory fill
};
static_assert(sizeof(parameterDEN) == 534 * sizeof(float));

// Factory contents, with the generated pan curves.
void factory_contents(parameterDEN* record);

// Processes one frame.
//        argument      shape        unit     direction
//        io            3 x 1024     -        in/out   in: left, right frame (the third block is read by the
//        bypass
//                                                     alone); out: left, right, centre, to overlap-add
//        smoothFactor .. stereoOutput        in       the record's first five fields
//        wideCurve     4 x 100      -        in
//        bandEnd       43           bin + 1  in       kept within 1..513
//        bandStart     43           bin + 1  in       kept within 1..513
// With gains 1, no widening and stereoOutput 1 all three blocks are halved and nothing else happens.
// wideAmount x 25 selects the curve, kept within columns 1..100; a negative amount widens nothing.
// Memories that a hostile setting has poisoned are reset at the end of the hop (dsp/poison.h).
// A curve must leave pans of 0.975 and more there: the farther channel's gain is 0 for them, and a gain above
// 0 for the new pan is divided by 1e-15.
void DialogueEnhancementWide(float* io, float smoothFactor, float centerSpeechGain, float baseGain,
                             float wideAmount, float stereoOutput, const float* wideCurve,
                             const float* bandEnd, const float* bandStart);

// The next call starts from zeroed powers, energies, histories and speech activity.
void bdiff_sm_not_empty_init();

}  // namespace android
