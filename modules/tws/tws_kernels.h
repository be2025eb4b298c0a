// What stereo widening hands to its kernels; private to the module.
#pragma once

#include "modules/tws/tws.h"

namespace android {

// What the centre keeps: beside the filtered pair, whose level lies below the input's, and beside the direct
// pair (3 dB into each of two channels).
inline constexpr float kTwsCentreInWidened = 0.5568f;
inline constexpr float kTwsCentreInDirect = 0.7071f;

// The pair as half spectra.
struct TwsPair {
    creal32_T left[kBins], right[kBins];
};

}  // namespace android
