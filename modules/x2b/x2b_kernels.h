// What binaural rendering hands to its kernels; private to the module.
#pragma once

#include "modules/x2b/x2b.h"

namespace android {

inline constexpr int kX2bMaxChannels = 3;
inline constexpr int kX2bEars = 2;
inline constexpr int kX2bCentreChannel =
    2;  // counted from 0; channels 0 and 1 lie on the sides of ears 0 and 1

// Half spectra of the channels; the transform of one real frame fills all its bins.
struct X2bInputs {
    creal32_T channel[kX2bMaxChannels][kFrameSamples];
};

// What a width means, formed once per call.
struct X2bRendering {
    bool fading;
    float filtered, dry;             // shares while fading
    float wide, narrow;              // shares of the lateral responses
    float opposite[kX2bPartitions];  // gains of the other ear's paths: a wide image has more room in it
    float centre[kX2bPartitions];    // gains of the centre: a narrow image has no tail
    int narrowResponse, wideResponse;
};

// Where the hops to come lie: slot q is put out in q hops.
struct X2bSlots {
    creal32_T* slot[kX2bEars][kX2bPartitions];
};

}  // namespace android
