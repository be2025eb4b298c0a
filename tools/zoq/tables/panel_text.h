// Pieces of gnuplot scripts.
#pragma once

#include <string>
#include <vector>

namespace zoq::gnuplot {

using Rows = std::vector<std::vector<double>>;

// A level for a picture, in which silence leaves a gap.
double power_db(double power);

// A named data block.
std::string block(const std::string& name, const Rows& rows);

// One curve of a plot command; colour counts hues that stay apart for colour-blind eyes.
std::string line(const std::string& source, const std::string& columns, const std::string& title,
                 size_t colour, double width = 2.0);

// The plot command.
std::string joined(const std::vector<std::string>& curves);

// Logarithmic, in hertz; the range is the caller's.
extern const char kFrequencyAxis[];

}  // namespace zoq::gnuplot
