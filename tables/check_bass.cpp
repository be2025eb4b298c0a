#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>

#include "tables/check.h"

namespace zoq::tables {

namespace {

using android::parameterVB;

// Corners of the band high-pass that go with the cutoffs, and of the harmonics' low-pass.
constexpr std::array<double, kBassCutoffsHz.size()> kBandHz = {30, 30, 30, 50, 50, 70, 80, 80, 80, 80};
constexpr double kHarmonicsHz = 420.0;

// Near z = 1 float coefficients, and the given zeros of four input high-passes, cost the last digits.
constexpr double kCornerShare = 0.01, kSlopeDb = 0.5;
constexpr double kOctaveDb = -24.1;  // Butterworth, fourth order, an octave behind the corner

struct Stage {
    const char* name;
    const float* (*sos)(const parameterVB&);
    int sections;
    double behind;  // the factor that leads from the corner into the stopped band
};
constexpr Stage kLowpass = {"low-pass", [](const parameterVB& vb) { return vb.lowpassSos; }, 2, 2.0};
constexpr Stage kInput = {"input high-pass", [](const parameterVB& vb) { return vb.inputHighpassSos; }, 2,
                          0.5};
constexpr Stage kOutput = {"output high-pass", [](const parameterVB& vb) { return vb.outputHighpassSos; }, 2,
                           0.5};
constexpr Stage kBand = {"band high-pass", [](const parameterVB& vb) { return vb.bandHighpassSos; }, 1, 0.5};
constexpr Stage kHarmonics = {"harmonics' low-pass",
                              [](const parameterVB& vb) { return vb.harmonicLowpassSos; }, 1, 2.0};

double gain_db(const Stage& stage, const parameterVB& vb, double hz) {
    return decibel(cascade_power(stage.sos(vb), stage.sections, hz));
}

// Where the gain is half, as a share of where it should be; not-a-number if it is nowhere near.
double corner(const Stage& stage, const parameterVB& vb, double hz) {
    const auto found =
        find_root([&](double at) { return gain_db(stage, vb, at) - decibel(0.5); }, 0.5 * hz, 2.0 * hz);
    return found.value_or(std::nan("")) / hz;
}

double pole_radius(const Stage& stage, const parameterVB& vb) {
    double largest = 0.0;
    for (int s = 0; s < stage.sections; ++s) {
        const float* sos = stage.sos(vb);
        const double a1 = double(sos[12 + s]) / double(sos[9 + s]),
                     a2 = double(sos[15 + s]) / double(sos[9 + s]);
        const std::complex<double> root = std::sqrt(std::complex<double>(0.25 * a1 * a1 - a2));
        largest = std::max({largest, std::abs(-0.5 * a1 + root), std::abs(-0.5 * a1 - root)});
    }
    return largest;
}

std::vector<Figure> by_cutoff(const std::function<double(size_t)>& measure) {
    std::vector<Figure> figures;
    for (size_t i = 0; i < kBassCutoffsHz.size(); ++i) {
        figures.push_back({std::to_string(kBassCutoffsHz[i]) + " Hz", measure(i)});
    }
    return figures;
}

}  // namespace

TableReport check_bass(const std::array<parameterVB, kBassCutoffsHz.size()>& records) {
    TableReport report{"virtual-bass sets, by cutoff", {}};
    const auto add_corner = [&](const Stage& stage, const std::string& of,
                                const std::function<double(size_t)>& hz) {
        report.properties.push_back(
            within(1 - kCornerShare, 1 + kCornerShare, std::string(stage.name) + ", corner over " + of, "",
                   by_cutoff([&](size_t i) { return corner(stage, records[i], hz(i)); })));
    };
    for (const Stage& stage : {kLowpass, kInput, kOutput}) {
        add_corner(stage, "cutoff", [](size_t i) { return double(kBassCutoffsHz[i]); });
        report.properties.push_back(
            within(kOctaveDb - kSlopeDb, kOctaveDb + kSlopeDb,
                   std::string(stage.name) + ", an octave behind it", "dB", by_cutoff([&](size_t i) {
                       return gain_db(stage, records[i], stage.behind * kBassCutoffsHz[i]);
                   })));
    }
    add_corner(kBand, "30, 50, 70 or 80 Hz", [](size_t i) { return kBandHz[i]; });
    add_corner(kHarmonics, "420 Hz", [](size_t) { return kHarmonicsHz; });
    report.properties.push_back(
        within(0, std::nextafter(1.0, 0.0), "largest pole radius", "", by_cutoff([&](size_t i) {
                   double largest = 0.0;
                   for (const Stage& stage : {kLowpass, kInput, kOutput, kBand, kHarmonics}) {
                       largest = std::max(largest, pole_radius(stage, records[i]));
                   }
                   return largest;
               })));
    return report;
}

}  // namespace zoq::tables
