// What is heard of switching the processing on and off, apart from the change of sound.
#pragma once

#include "tools/zoq/measure/measurements.h"

namespace zoq {

// A sine of 200 Hz plays while the processing is switched on, and 1.5 s later off; then, in silence, on again: what
// comes out now has been left over from the sine.
Clicks measure_clicks(const MeasureOptions& options);

}  // namespace zoq
