// What dialogue enhancement hands to its kernels; private to the module.
#pragma once

#include "modules/den/den.h"

namespace android {

inline constexpr int kDenCentreBands = 34;  // the centre is looked for up to 8.6 kHz
inline constexpr int kDenSpeechBands = 33;  // speech is judged and boosted up to 7.7 kHz

// Bins moved by the widening, about 1.45 to 12 kHz, where the ear takes direction from level differences.
inline constexpr int kDenFirstWideBin = 31, kDenLastWideBin = 255;

inline constexpr float kDenQuotientGuard = 1e-15f;  // keeps quotients of empty bins finite
inline constexpr float kDenPowerGuard = 0.0001f;    // a band below this power counts as empty

inline constexpr float kDenNewEnergy = 0.2f, kDenOldEnergy = 0.8f;  // smoothing of the band energies, per hop

// Values per bin and per band end on a whole vector of any level. What lies behind the last bin or band is defined
// and means nothing.
inline constexpr int kDenBinRow = 528, kDenBandRow = 48;
static_assert(kDenBinRow % 16 == 0 && kDenBinRow >= kBins && kDenBandRow % 16 == 0 &&
              kDenBandRow >= kDenCentreBands);

// The three half spectra of a frame.
struct DenSpectra {
    creal32_T left[kDenBinRow], right[kDenBinRow], centre[kDenBinRow];
};

// Bins first .. end - 1, counted from 0.
struct DenBand {
    int first, end;
};

struct DenBands {
    DenBand band[kDenCentreBands];
    bool adjoin;  // each begins where the one before it ends; the fast kernels count on it
};

// Smoothed powers of the side and the mid.
struct DenPowers {
    float side[kDenBandRow], mid[kDenBandRow];
};

// Sums of magnitudes per band of one hop.
struct DenMagnitudes {
    float centre[kDenSpeechBands], side[kDenSpeechBands];
};

struct DenEnergies {
    float centre[kDenBandRow], side[kDenBandRow];
};

// A column of the pan curve, highest power first.
struct DenCubic {
    float c0, c1, c2, c3;
};

}  // namespace android
