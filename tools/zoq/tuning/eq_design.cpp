#include "tools/zoq/tuning/eq_design.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace zoq {

namespace {

double angle(double hz) {
    return 2.0 * std::numbers::pi * hz / kEqSampleRate;
}

EqSection low_shelf(double c, double A, double alpha) {
    const double root = 2.0 * std::sqrt(A) * alpha;
    return {A * ((A + 1.0) - (A - 1.0) * c + root), 2.0 * A * ((A - 1.0) - (A + 1.0) * c),
            A * ((A + 1.0) - (A - 1.0) * c - root), (A + 1.0) + (A - 1.0) * c + root,
            -2.0 * ((A - 1.0) + (A + 1.0) * c),     (A + 1.0) + (A - 1.0) * c - root};
}

// A high shelf lifts what the low shelf of the same gain leaves: the inverse low shelf, raised as a whole.
EqSection high_shelf(double c, double A, double alpha) {
    const EqSection low = low_shelf(c, A, alpha);
    return {A * low[3], A * low[4], A * low[5], low[0] / A, low[1] / A, low[2] / A};
}

}  // namespace

EqSection design_section(EqShape shape, double hz, double gainDb, double alpha) {
    const double A = std::pow(10.0, gainDb / 40.0), c = std::cos(angle(hz));
    switch (shape) {
        case EqShape::kPeak:
            return {1.0 + alpha * A, -2.0 * c, 1.0 - alpha * A, 1.0 + alpha / A, -2.0 * c, 1.0 - alpha / A};
        case EqShape::kLowShelf:
            return low_shelf(c, A, alpha);
        case EqShape::kHighShelf:
            return high_shelf(c, A, alpha);
        case EqShape::kLowPass:
            return {(1.0 - c) / 2.0, 1.0 - c, (1.0 - c) / 2.0, 1.0 + alpha, -2.0 * c, 1.0 - alpha};
        case EqShape::kHighPass:
            return {(1.0 + c) / 2.0, -1.0 - c, (1.0 + c) / 2.0, 1.0 + alpha, -2.0 * c, 1.0 - alpha};
        case EqShape::kBandPass:
            return {alpha, 0.0, -alpha, 1.0 + alpha, -2.0 * c, 1.0 - alpha};
        case EqShape::kNotch:
            break;
    }
    return {1.0, -2.0 * c, 1.0, 1.0 + alpha, -2.0 * c, 1.0 - alpha};
}

double alpha_of_q(double hz, double q) {
    return std::sin(angle(hz)) / (2.0 * q);
}

double alpha_of_bandwidth(double hz, double octaves) {
    const double w = angle(hz);
    return std::sin(w) * std::sinh(std::numbers::ln2 / 2.0 * octaves * w / std::sin(w));
}

double alpha_of_slope(double hz, double gainDb, double slope) {
    const double A = std::pow(10.0, gainDb / 40.0);
    const double width = (A + 1.0 / A) * (1.0 / slope - 1.0) + 2.0;
    return std::sin(angle(hz)) / 2.0 * std::sqrt(std::max(width, 0.0));
}

double section_db(const EqSection& section, double hz) {
    const std::complex<double> z = std::polar(1.0, -angle(hz));
    const std::complex<double> above = section[0] + z * (section[1] + z * section[2]);
    const std::complex<double> below = section[3] + z * (section[4] + z * section[5]);
    return std::max(20.0 * std::log10(std::abs(above / below)), kLeastDb);
}

}  // namespace zoq
