#include "tables/pan_curves.h"

#include <Eigen/QR>
#include <algorithm>
#include <cmath>

namespace zoq::tables {

namespace {

using android::kDenCurveColumns;

constexpr int kPoints = 101;  // u = 0, 0.01, ..., 1
constexpr int kColumnsPerUnit = 25;

long double grid_point(int i) {
    return static_cast<long double>(i) / (kPoints - 1);
}

// From powers of t = 2u - 1, in which the fit is well conditioned, to powers of u.
std::array<long double, 4> in_powers_of_u(const Eigen::Vector<long double, 4>& t) {
    return {8 * t[0], 4 * t[1] - 12 * t[0], 2 * t[2] - 4 * t[1] + 6 * t[0], t[3] - t[2] + t[1] - t[0]};
}

double worst_fit(int K) {
    const auto c = pan_curve(K);
    long double worst = 0;
    for (int i = 0; i < kPoints; ++i) {
        const long double u = grid_point(i);
        worst = std::max(worst, std::fabs(((c[0] * u + c[1]) * u + c[2]) * u + c[3] - pan_target(K, u)));
    }
    return double(worst);
}

}  // namespace

// A saturating pan law: the slope at the centre grows with the amount, the end stays at full pan.
long double pan_target(int K, long double u) {
    const long double amount = static_cast<long double>(K) / kColumnsPerUnit;
    const long double steepness = (std::exp2(amount) - 1) / 2;
    return std::tanh(steepness * u) / std::tanh(steepness);
}

// Extended precision, because the constants of the first columns are tiny differences of large terms.
std::array<long double, 4> pan_curve(int K) {
    Eigen::Matrix<long double, kPoints, 4> powers;
    Eigen::Vector<long double, kPoints> target;
    for (int i = 0; i < kPoints; ++i) {
        const long double t = 2 * grid_point(i) - 1;
        powers.row(i) << t * t * t, t * t, t, 1;
        target[i] = pan_target(K, grid_point(i));
    }
    return in_powers_of_u(powers.householderQr().solve(target));
}

// What a fit in double precision left of the even terms of column 1, next to the identity.
constexpr float kGivenSquare = -1.23816e-08f, kGivenConstant = -1.563e-10f;

GeneratedFile pan_curves_file() {
    std::array<std::vector<float>, 4> rows;
    double worst = 0.0;
    int worstColumn = 0;
    for (int K = 1; K <= kDenCurveColumns; ++K) {
        const auto curve = pan_curve(K);
        for (size_t r = 0; r < rows.size(); ++r) {
            rows[r].push_back(float(curve[r]));
        }
        if (const double fit = worst_fit(K); fit > worst) {
            worst = fit;
            worstColumn = K;
        }
    }

    rows[1].front() = kGivenSquare;
    rows[3].front() = kGivenConstant;

    SourceText text(
        "modules/den/den_tables.h",
        R"(The pan curves of dialogue enhancement. Made by "zoq-make-tables --source ." (tables/pan_curves.cpp).
Formula: column K = 1..100 is the least-squares cubic, over u = 0, 0.01, ..., 1, of tanh(a u) / tanh(a)
with a = (2^(K/25) - 1) / 2; rows are the coefficients of u^3, u^2, u and 1.
Given values instead of the formula's: column 1, u^2 and 1, off by 7e-14 and 4e-15.
Worst error: the rounding to float; the cubics leave the target by up to )" +
            rounded(worst) + " (column " + std::to_string(worstColumn) + "), by design.");
    text.line("const float kWideCurve[4][kDenCurveColumns] = {");
    for (const std::vector<float>& row : rows) {
        text.line("    {");
        text.values(row);
        text.line("    },");
    }
    text.line("};");
    return {"modules/den/den_tables.cpp", text.finish(), {.ulps = 1}};
}

}  // namespace zoq::tables
