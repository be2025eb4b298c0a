#include "tables/widening_filters.h"

#include <Eigen/Dense>
#include <cmath>
#include <numbers>

#include "tables/monotone_curve.h"
#include "tables/signal.h"

namespace zoq::tables {

using android::creal32_T;
using android::kBins;
using android::kFrameSamples;

namespace {

using Complex = std::complex<double>;

constexpr Eigen::Index kTaps = kFilterLastTap - kFilterFirstTap + 1;
constexpr int kLateSamples = kCrossFeedPeak - kSameSidePeak;

// Level of the far ear against the near one. Between the checkpoints' ratios: a full canceller would raise a
// centred voice by 12 dB at 4 kHz (bin 85), where 6 samples are half a period, so it does little there; above
// 10 kHz the head's shadow leaves nothing to cancel.
const std::vector<BinLevel> kFarEarLevel = {
    {0, 0.97},          {10, 1.20 / 1.24}, {20, 0.90},  {43, 0.52 / 0.67}, {85, 0.30},    {128, 0.50},
    {171, 1.22 / 2.07}, {200, 0.50},       {240, 0.30}, {384, 0.015},      {512, 0.0005},
};
// No cross-feed in the bass, where both ears hear the same and cancelling would only cost level.
constexpr double kCrossFeedFrom = 2.0, kCrossFeedFull = 9.0;

// Magnitude of the same-side response. Above the cross-feed it settles at the level the extracted centre has
// there, 0.5568 x 1.41 = 0.79, and falls to nothing at the top.
const std::vector<BinLevel> kSameSideLevel = {
    {0, 0.627}, {2, 0.645},  {10, 1.24}, {20, 0.80},  {43, 0.67},  {85, 0.95},  {128, 1.05},
    {150, 1.5}, {171, 2.07}, {192, 1.5}, {214, 1.05}, {260, 0.85}, {420, 0.80}, {512, 0.80},
};
constexpr double kTopFrom = 430.0, kTopEnd = 512.0;

double log_bin(double bin) {
    return std::log2(std::max(bin, 0.25));
}

// Smooth over the logarithm of frequency, in decibels.
Signal level_curve(const std::vector<BinLevel>& nodes) {
    std::vector<MonotoneCurve::Point> points;
    points.reserve(nodes.size());
    for (const BinLevel& node : nodes) {
        points.push_back({std::log2(node.bin + 1.0), std::log(node.magnitude)});
    }
    const MonotoneCurve curve(points);
    Signal level;
    for (int k = 0; k < kBins; ++k) {
        level.push_back(std::exp(curve(std::log2(k + 1.0))));
    }
    return level;
}

struct Target {
    Signal magnitude;
    Spectrum phase;  // of magnitude 1
};

struct Targets {
    Target sameSide, crossFeed;
};

Targets canceller() {
    const Signal far = level_curve(kFarEarLevel), near = level_curve(kSameSideLevel);
    Targets targets;
    for (int k = 0; k < kBins; ++k) {
        const double w = 2.0 * std::numbers::pi * k / kFrameSamples;
        const double g =
            far[size_t(k)] * raised_cosine(log_bin(k), log_bin(kCrossFeedFrom), log_bin(kCrossFeedFull));
        const double level = near[size_t(k)] * raised_cosine(log_bin(k), log_bin(kTopEnd), log_bin(kTopFrom));
        const Complex c = g * std::polar(1.0, -w * kLateSamples);
        const double recursion = std::arg(1.0 / (1.0 - c * c));
        targets.sameSide.magnitude.push_back(level);
        targets.sameSide.phase.push_back(std::polar(1.0, recursion - w * kSameSidePeak));
        targets.crossFeed.magnitude.push_back(level * g);
        targets.crossFeed.phase.push_back(-std::polar(1.0, recursion - w * kCrossFeedPeak));
    }
    return targets;
}

Complex basis(Eigen::Index bin, Eigen::Index column) {
    return std::polar(1.0, -2.0 * std::numbers::pi *
                               double(bin * (kFilterFirstTap + column) % kFrameSamples) / kFrameSamples);
}

// Least squares over all bins, real and imaginary parts in separate rows, the bass weighing more.
void set_up_fit(const Target& target, Eigen::MatrixXd& rows, Eigen::VectorXd& values) {
    constexpr Eigen::Index kRows = 2 * Eigen::Index{kBins};
    rows.resize(kRows, kTaps);
    values.resize(kRows);
    for (Eigen::Index k = 0; k < kBins; ++k) {
        const double weight = 1.0 / std::sqrt(1.0 + double(k) / 20.0);
        for (int n = 0; n < kTaps; ++n) {
            const Complex e = weight * basis(k, n);
            rows(k, n) = e.real();
            rows(kBins + k, n) = e.imag();
        }
        const Complex wanted = weight * target.magnitude[size_t(k)] * target.phase[size_t(k)];
        values[k] = wanted.real();
        values[kBins + k] = wanted.imag();
    }
}

// The checkpoints as linear equations: one where the spectrum is real, two elsewhere.
void set_up_constraints(const Target& target, const std::vector<BinLevel>& checkpoints, Eigen::MatrixXd& rows,
                        Eigen::VectorXd& values) {
    const auto count = Eigen::Index(2 * checkpoints.size() - 2);  // bins 0 and 512 are among them
    rows.resize(count, kTaps);
    values.resize(count);
    Eigen::Index row = 0;
    for (const BinLevel& point : checkpoints) {
        const bool real = point.bin == 0 || point.bin == kBins - 1;
        const Complex wanted = point.magnitude * (real ? 1.0 : target.phase[size_t(point.bin)]);
        for (int n = 0; n < kTaps; ++n) {
            rows(row, n) = basis(point.bin, n).real();
            if (!real) {
                rows(row + 1, n) = basis(point.bin, n).imag();
            }
        }
        values[row++] = wanted.real();
        if (!real) {
            values[row++] = wanted.imag();
        }
    }
}

// The impulse response on the taps allowed that comes nearest to the target and meets the checkpoints.
Signal fit(const Target& target, const std::vector<BinLevel>& checkpoints) {
    Eigen::MatrixXd A, C;
    Eigen::VectorXd b, d;
    set_up_fit(target, A, b);
    set_up_constraints(target, checkpoints, C, d);

    const Eigen::Index size = kTaps + C.rows();
    Eigen::MatrixXd system = Eigen::MatrixXd::Zero(size, size);
    Eigen::VectorXd right(size);
    system.topLeftCorner(kTaps, kTaps) = A.transpose() * A;
    system.topRightCorner(kTaps, C.rows()) = C.transpose();
    system.bottomLeftCorner(C.rows(), kTaps) = C;
    right << A.transpose() * b, d;
    const Eigen::VectorXd solution = system.partialPivLu().solve(right);

    Signal response(kFilterFirstTap, 0.0);
    response.insert(response.end(), solution.begin(), solution.begin() + kTaps);
    return response;
}

std::vector<creal32_T> stored(const Signal& response) {
    std::vector<creal32_T> bins;
    for (const Complex& bin : transform(response, kFrameSamples)) {
        bins.push_back({float(bin.real()), float(bin.imag())});
    }
    // Real ends, and exactly nothing at the top: what the fit leaves there is rounding.
    bins.front().im = 0.0f;
    bins.back() = {0.0f, 0.0f};
    return bins;
}

double worst_checkpoint(const std::vector<creal32_T>& filter, const std::vector<BinLevel>& checkpoints) {
    double worst = 0.0;
    for (const BinLevel& point : checkpoints) {
        const creal32_T& bin = filter[size_t(point.bin)];
        const double reached = std::hypot(double(bin.re), double(bin.im));
        worst = std::max(worst, std::fabs(reached - point.magnitude) / std::max(point.magnitude, 1e-3));
    }
    return worst;
}

}  // namespace

WideningFilters make_widening_filters() {
    const Targets targets = canceller();
    return {stored(fit(targets.sameSide, kSameSideCheckpoints)),
            stored(fit(targets.crossFeed, kCrossFeedCheckpoints))};
}

GeneratedFile widening_filters_file() {
    const WideningFilters filters = make_widening_filters();
    const double worst = std::max(worst_checkpoint(filters.sameSide, kSameSideCheckpoints),
                                  worst_checkpoint(filters.crossFeed, kCrossFeedCheckpoints));
    SourceText text(
        "modules/tws/tws_tables.h",
        R"(The widening filters. Made by "zoq-make-tables --source ." (tables/widening_filters.cpp).
Formula: a recursive crosstalk canceller, E/(1 - c^2) and -c E/(1 - c^2) with c = g(f) and 6 samples late,
fitted by least squares to impulse responses that are 0 outside samples 7..466.
Worst error: )" +
            rounded(worst) + " of the magnitudes that characterise the pair.");
    text.line("const creal32_T kSameSideFilter[kBins] = {");
    text.values(filters.sameSide);
    text.line("};\n\nconst creal32_T kCrossFeedFilter[kBins] = {");
    text.values(filters.crossFeed);
    text.line("};");
    // Small values lose digits to the rounding of sums whose order is the compiler's: 1e-14 of the peak.
    // Allowed is half a unit in the last place of the largest value.
    return {"modules/tws/tws_tables.cpp", text.finish(), {.ulps = 1, .ofPeak = 0x1p-24}};
}

}  // namespace zoq::tables
