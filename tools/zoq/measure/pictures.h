// Measurements as one picture, a panel or two for each.
#pragma once

#include <string>

#include "tools/zoq/measure/measurements.h"

namespace zoq {

// Throws Failure.
void draw_measurements(const MeasureOptions& options, const Measurements& results, const std::string& path);

}  // namespace zoq
