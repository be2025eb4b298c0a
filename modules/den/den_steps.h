// The steps of dialogue enhancement on a frame's samples, bins and bands, each in a scalar form (den_steps.cpp) and in
// lanes (den_steps_lanes.cpp).
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
    bool adjoin;  // each begins where the one before it ends
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

// Left and right by the analysis window.
//        io         2 x 1024    in
//        windowed   2 x 1024    out
void den_window_pair(const float* io, float* windowed);

// Moves the wide bins of left and right to the pans that the curve gives, by gains of the pan law.
void den_widen(const DenCubic& curve, DenSpectra& s);

// Smooths the powers of side and mid and leaves each band's share of the mid as the centre, whose bins outside all
// bands stay as they are.
//        subtract   whether left and right lose the centre
void den_extract_centre(const DenBands& bands, float smoothFactor, bool subtract, DenPowers& powers,
                        DenSpectra& s);

// Records the hop's magnitudes, smooths the energies and returns each band's share of the centre.
//        newest    out
//        share     33     out
void den_measure_bands(const DenBands& bands, const DenSpectra& s, DenEnergies& energies,
                       DenMagnitudes& newest, float* share);

// The three spectra times their band's gain.
//        gain      33     in
void den_scale_bands(const DenBands& bands, const float* gain, DenSpectra& s);

// The synthesis window on the centre's real parts, and on left and right, the frame's real and imaginary parts.
//        frame     1024         in
//        io        3 x 1024     out    the third block, or the first two
void den_window_centre(const creal32_T* frame, float* io);
void den_window_sides(const creal32_T* frame, float* io);

// The fast forms hand over to these where bands overlap or leave bins out.
namespace scalar {

void den_extract_centre(const DenBands& bands, float smoothFactor, bool subtract, DenPowers& powers,
                        DenSpectra& s);
void den_measure_bands(const DenBands& bands, const DenSpectra& s, DenEnergies& energies,
                       DenMagnitudes& newest, float* share);
void den_scale_bands(const DenBands& bands, const float* gain, DenSpectra& s);

}  // namespace scalar

}  // namespace android
