// The compressor: what it does to steady levels, and how fast.
#pragma once

#include "tools/zoq/measure/measurements.h"

namespace zoq {

// Steps of 2 dB from -70 to 0 dBFS, rising, 0.75 s each, of which the last quarter counts.
StaticCurve measure_static(const MeasureOptions& options);

// From -30 to -6 dBFS and back. The lower level lies under the knees of all compression settings but above the
// expander, the upper one above all thresholds.
Dynamics measure_dynamics(const MeasureOptions& options);

}  // namespace zoq
