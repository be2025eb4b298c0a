// Measurements for people and for programs.
#pragma once

#include <string>

#include "tools/zoq/measure/measurements.h"

namespace zoq {

// A paragraph for each measurement.
std::string text_report(const MeasureOptions& options, const Measurements& results);

// One object: "options", and each measurement with its quantities; what cannot be measured is null.
std::string json_report(const MeasureOptions& options, const Measurements& results);

// "measure,channel,quantity,x_quantity,x,x_unit,value,unit", one row for each figure (x empty) and each point
// of a curve; what cannot be measured is empty.
std::string csv_report(const Measurements& results);

}  // namespace zoq
