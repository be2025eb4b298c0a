// The compressor: what it does to steady levels, and how fast.
#pragma once

#include "tools/zoq/measure/measurements.h"

namespace zoq {

// Steps of 2 dB from -70 to 0 dBFS, rising, 0.75 s each, of which the last quarter counts.
StaticCurve measure_static(const MeasureOptions& options);

// A step up and back down. From -30 to -6 dBFS the lower level lies above the expander and the upper one above the
// thresholds of all compression settings; the lower one lies under the knee but for the largest gains on headphones,
// whose knee begins near -33 dBFS and whose attack, at more than some 90 %, is the limiter's.
Dynamics measure_dynamics(const MeasureOptions& options);

}  // namespace zoq
