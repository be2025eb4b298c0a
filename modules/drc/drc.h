// Dynamic range compression: compressor, limiter and downward expander with linked channels, then a clip.
//
// Where it runs: last in both routes, with a parameter block of its own in each.
//   hop -> peak of 3 samples -> dB -> compressor gain -> limiter gain -> larger of the channels -> expander
//       -> make-up -> 171 gains -> 512 gains -> x hop -> clip at +-0.999
// Latency: none; the gains look one sample ahead. Cost: 171 logarithms per channel, 171 powers.
// Thread: audio thread only; the smoothed levels are process-wide and shared by the routes.
#pragma once

#include "dsp/frame.h"

namespace android {

// A block of settings; the speaker route's is a global, the headphone route's lies inside parameterX2B. The
// first twelve fields are rewritten before every hop by initialize_dynamicRangeCompression_C.
struct parameterDRC {
    float compThreshold;  // dB, negative
    float compKnee;       // dB, width of the soft knee
    float compMakeup;     // linear gain
    float compSlope;      // 1 / ratio - 1, negative
    float compAttack;     // smoothing coefficient per grid point while the reduction grows
    float compRelease;    // smoothing coefficient per grid point while it falls
    float limThreshold;   // dB, of the level after make-up
    float limKnee;        // dB
    float limMakeup;      // linear; not used
    float limSlope;       // 1 / ratio - 1
    float limAttack;      // smoothing coefficient
    float limRelease;     // smoothing coefficient
    float expThreshold;   // dB below the make-up gain's level; factory fill (-60)
    float expSlope;       // dB of attenuation per dB below the threshold; factory fill (0.5)
};
static_assert(sizeof(parameterDRC) == 14 * sizeof(float));

// Factory contents of the speaker route's block.
void factory_contents(parameterDRC* record);

// Rewrites the first twelve fields from a compression gain in dB. Any gain is taken; ratio and time constants
// step at 5, 10, 15 and 21 dB.
void initialize_dynamicRangeCompression_C(float gainDb, parameterDRC* block);

// Compresses one hop in place.
//        argument     shape           unit     direction
//        io           2 x 512         -        in/out   channel 1 is touched only when channels is 2 or more
//        channels     1.0 or 2.0      -        in       truncated toward zero and kept within 0..2
//        firstStage   6               -        in       compThreshold .. compRelease
//        secondStage  6               -        in       limThreshold .. limRelease
//        expander     2               -        in       expThreshold, expSlope
// Every sample leaves within +-0.999. compMakeup must be above 0: its logarithm is taken.
// Memories that a hostile setting has poisoned are reset at the end of the hop (dsp/poison.h).
void dynamicRangeCompression_LC(float* io, float channels, const float* firstStage, const float* secondStage,
                                const float* expander);

// The next call starts from a level of -50 dB and no gain reduction, on both channels.
void state_not_empty_init();

}  // namespace android
