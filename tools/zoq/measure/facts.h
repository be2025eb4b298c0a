// Measurements as a flat list of figures and curves, from which tables and JSON are made.
#pragma once

#include <string>
#include <vector>

#include "tools/zoq/measure/measurements.h"

namespace zoq {

struct Figure {
    std::string measure;  // as --what has it
    std::string channel;  // "left", "right", or empty
    std::string quantity;
    std::string unit;
    double value;  // not finite: nothing there to measure
};

struct Series {
    std::string measure;
    std::string channel;
    std::string quantity;
    std::string unit;
    std::string xQuantity;
    std::string xUnit;
    std::vector<double> x;
    std::vector<double> values;  // not finite: nothing there to measure
};

struct Facts {
    std::vector<Figure> figures;
    std::vector<Series> series;
};

Facts facts_of(const Measurements& results);

}  // namespace zoq
