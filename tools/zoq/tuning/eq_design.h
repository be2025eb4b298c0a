// Second-order sections as equalizer texts name them: the usual bilinear designs at 48 kHz, in double precision.
#pragma once

#include <array>

namespace zoq {

inline constexpr double kEqSampleRate = 48000.0;
inline constexpr double kLeastDb = -60.0;  // what a notch's middle counts as

enum class EqShape { kPeak, kLowShelf, kHighShelf, kLowPass, kHighPass, kBandPass, kNotch };

// b0 b1 b2 a0 a1 a2
using EqSection = std::array<double, 6>;

//   alpha    the half width: sin(w) / (2 Q) for a quality factor
EqSection design_section(EqShape shape, double hz, double gainDb, double alpha);

double alpha_of_q(double hz, double q);
double alpha_of_bandwidth(double hz, double octaves);
double alpha_of_slope(double hz, double gainDb, double slope);  // slope 1 is the steepest without a bump

// The magnitude in dB, not below kLeastDb.
double section_db(const EqSection& section, double hz);

}  // namespace zoq
