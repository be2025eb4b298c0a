// Harmonics of a steady sine.
#pragma once

#include "tools/zoq/measure/measurements.h"

namespace zoq {

inline constexpr int kHighestHarmonic = 9;

// The sine's frequency is moved, by less than 0.8 Hz, to where the transform needs no window.
Distortion measure_distortion(const MeasureOptions& options, double hz);

}  // namespace zoq
