#include "tables/monotone_curve.h"

#include <algorithm>
#include <cmath>

namespace zoq::tables {

namespace {

using Point = MonotoneCurve::Point;

double secant(const Point& a, const Point& b) {
    return (b.y - a.y) / (b.x - a.x);
}

// Fritsch and Butland 1984: the harmonic mean of the two secants, weighted by the steps; flat at an extremum.
double inner_slope(const Point& a, const Point& b, const Point& c) {
    const double before = secant(a, b), after = secant(b, c);
    if (before * after <= 0.0) {
        return 0.0;
    }
    const double h0 = b.x - a.x, h1 = c.x - b.x;
    const double w0 = 2 * h1 + h0, w1 = h1 + 2 * h0;
    return (w0 + w1) / (w0 / before + w1 / after);
}

// The three-point formula, held back where it would overshoot; b is the inner neighbour of the end a.
double end_slope(const Point& a, const Point& b, const Point& c) {
    const double h0 = b.x - a.x, h1 = c.x - b.x;
    const double near = secant(a, b), far = secant(b, c);
    const double slope = ((2 * h0 + h1) * near - h0 * far) / (h0 + h1);
    if (slope * near <= 0.0) {
        return 0.0;
    }
    return near * far <= 0.0 && std::fabs(slope) > 3 * std::fabs(near) ? 3 * near : slope;
}

}  // namespace

MonotoneCurve::MonotoneCurve(std::vector<Point> through) : points(std::move(through)) {
    const size_t last = points.size() - 1;
    if (last == 1) {
        slopes.assign(2, secant(points[0], points[1]));
        return;
    }
    slopes.push_back(end_slope(points[0], points[1], points[2]));
    for (size_t i = 1; i < last; ++i) {
        slopes.push_back(inner_slope(points[i - 1], points[i], points[i + 1]));
    }
    slopes.push_back(end_slope(points[last], points[last - 1], points[last - 2]));
}

double MonotoneCurve::operator()(double x) const {
    const auto above = std::upper_bound(points.begin() + 1, points.end() - 1, x,
                                        [](double value, const Point& point) { return value < point.x; });
    const size_t i = size_t(above - points.begin()) - 1;
    const double h = points[i + 1].x - points[i].x;
    const double t = (x - points[i].x) / h;
    const double rise = t * t * (3 - 2 * t);
    return points[i].y * (1 - rise) + points[i + 1].y * rise +
           h * t * (1 - t) * (slopes[i] * (1 - t) - slopes[i + 1] * t);
}

}  // namespace zoq::tables
