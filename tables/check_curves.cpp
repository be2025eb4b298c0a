#include <algorithm>
#include <cmath>

#include "tables/check.h"

namespace zoq::tables {

namespace {

using android::kDenCurveColumns;
using android::parameterDEN;

// Coefficients of u^3, u^2, u and 1 that characterise the family, to six digits.
constexpr struct {
    int column;
    double coefficients[4];
} kListed[] = {
    {1, {-6.58555e-05, -1.23816e-08, 1.00007, -1.563e-10}},
    {25, {-0.0681361, -0.0183249, 1.08643, -0.000224168}},
    {50, {0.0301256, -0.868167, 1.84063, -0.00833083}},
    {75, {2.37394, -5.34091, 3.99241, -0.00577318}},
    {100, {4.56978, -8.54254, 4.89881, 0.161961}},
};
constexpr const char* kPowers[] = {"u^3", "u^2", "u", "1"};

// Only these columns move a bin whose channels are equally loud.
constexpr int kFirstMoving = 77, kLastMoving = 100;

// From this pan on the farther channel's gain is 0, and a gain above 0 would be divided by next to nothing.
constexpr double kEdge = 0.975;

constexpr int kSteps = 200;  // of u from 0 to 1

double raw(const parameterDEN& den, int column, double u) {
    double value = 0.0;
    for (const auto& row : den.wideCurve) {
        value = value * u + double(row[column - 1]);
    }
    return value;
}

double clamped(const parameterDEN& den, int column, double u) {
    const double value = column == 0 ? u : raw(den, column, u);  // before the first column: no change
    return std::isnan(value) ? value : std::clamp(value, 0.0, 1.0);
}

Property listed_column(const parameterDEN& den, size_t i) {
    Property property{"coefficients of column " + std::to_string(kListed[i].column), "", {}};
    for (size_t row = 0; row < 4; ++row) {
        const double value = double(den.wideCurve[row][kListed[i].column - 1]);
        const double wanted = kListed[i].coefficients[row];
        const double digit = std::pow(10.0, std::floor(std::log10(std::fabs(wanted))) - 5.0);
        const double off = 0.501 * digit;
        property.figures.push_back({kPowers[row], value, wanted - off, wanted + off});
    }
    return property;
}

Property moving_columns(const parameterDEN& den) {
    double first = 0, last = 0, number = 0;
    for (int column = 1; column <= kDenCurveColumns; ++column) {
        if (den.wideCurve[3][column - 1] > 0.0f) {
            first = number == 0 ? column : first;
            last = column;
            number += 1;
        }
    }
    constexpr double kNumber = kLastMoving - kFirstMoving + 1;
    return {"columns with a positive constant term",
            "",
            {{"first", first, kFirstMoving, kFirstMoving},
             {"last", last, kLastMoving, kLastMoving},
             {"number", number, kNumber, kNumber}}};
}

}  // namespace

TableReport check_curves(const parameterDEN& den) {
    double lowest = 1.0, highest = 0.0, dip = 0.0, below = 0.0, edge = 1.0, back = 0.0, forward = 0.0,
           bend = 0.0;
    for (int column = 1; column <= kDenCurveColumns; ++column) {
        double reached = 0.0;
        for (int i = 0; i <= kSteps; ++i) {
            const double u = double(i) / kSteps, value = clamped(den, column, u);
            const double step = value - clamped(den, column - 1, u);
            lower(lowest, raw(den, column, u));
            raise(highest, raw(den, column, u));
            raise(reached, value);
            raise(dip, reached - value);
            raise(below, u - value);
            raise(back, -step);
            raise(forward, step);
            if (column > 2) {
                raise(bend, std::fabs(raw(den, column, u) - 2.0 * raw(den, column - 1, u) +
                                      raw(den, column - 2, u)));
            }
            if (u >= kEdge) {
                lower(edge, value);
            }
        }
    }
    TableReport report{"pan curves of dialogue enhancement", {}};
    for (size_t i = 0; i < std::size(kListed); ++i) {
        report.properties.push_back(listed_column(den, i));
    }
    report.properties.push_back(moving_columns(den));
    report.properties.push_back(
        within(-0.02, 1.1, "range before the clamp", "", {{"", lowest}, {"", highest}}));
    report.properties.push_back(within(0, 0.05, "deepest dip behind a maximum", "", {{"", dip}}));
    report.properties.push_back(within(0, 0.01, "deepest below the plain pan", "", {{"", below}}));
    report.properties.push_back(within(0, 0.002, "largest step back to the next column", "", {{"", back}}));
    report.properties.push_back(
        within(0, 0.02, "largest step forward to the next column", "", {{"", forward}}));
    report.properties.push_back(within(0, 0.0008, "sharpest bend over three columns", "", {{"", bend}}));
    report.properties.push_back(within(kEdge, 1, "lowest new pan of pans from 0.975 on", "", {{"", edge}}));
    return report;
}

}  // namespace zoq::tables
