// Two-way stereo widening: a 2 x 2 matrix of frequency responses on the stereo pair, by overlap-save.
//
// Where it runs: loudspeaker route, stereo input, after the overlap-add, while widthGain is above 0.
//   L, R -> half spectra -> same-side + cross-feed -> inverse -> current hop -> + 0.5568 x delayed centre
//        -> blend with the delayed direct signal by widthGain
// Latency: directDelay (180 samples), in the filters and in the direct paths alike.
// Cost: one forward and one inverse transform, four complex products per bin.  Thread: audio thread; no
// state.
#pragma once

#include "dsp/frame.h"

namespace android {

struct parameterTWS {
    float widthGain;                   // share of the widened signal, 1 or more: alone; chain, every hop
    float stereoWidth;                 // the user's width, 0..1; host, from "DS_stereoWidth"; not read here
    float directDelay;                 // samples, 0..511; factory fill (180)
    creal32_T sameSideFilter[kBins];   // left to left, right to right; factory fill
    creal32_T crossFeedFilter[kBins];  // right to left, left to right; factory fill
};
static_assert(sizeof(parameterTWS) == 2055 * sizeof(float));

// Factory contents, with the generated filters. Their impulse responses lie within samples 7..466.
void factory_contents(parameterTWS* record);

// Widens one hop.
//        argument    shape        direction
//        in          3 x 1024     in       left, right, centre: the previous hop and the current one
//        parameters  record       in
//        out         2 x 512      out      left, right; not in
// Positions before and behind the frame, which only a directDelay outside 0..511 reaches, read the nearest
// sample.
void TWSmobile_freq(const float* in, const parameterTWS* parameters, float* out);

}  // namespace android
