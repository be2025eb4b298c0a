// Curves over frequency as a picture, drawn by gnuplot.
#pragma once

#include <string>
#include <vector>

namespace zoq {

struct PlotCurve {
    std::string title;
    std::vector<double> y;
};

struct Plot {
    std::string title, yLabel;
    std::vector<double> hz;  // ascending, shown logarithmically
    std::vector<PlotCurve> curves;
};

// Writes the picture to path, complete or not at all. Throws Failure.
void draw(const Plot& plot, const std::string& path);

}  // namespace zoq
