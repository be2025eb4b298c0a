// Monotone cubic interpolation: between two points the curve never leaves the range of their values.
#pragma once

#include <vector>

namespace zoq::tables {

class MonotoneCurve {
  public:
    struct Point {
        double x, y;
    };

    // At least two points, x ascending.
    explicit MonotoneCurve(std::vector<Point> through);

    // x within the range of the points.
    double operator()(double x) const;

  private:
    std::vector<Point> points;
    std::vector<double> slopes;  // at each point
};

}  // namespace zoq::tables
