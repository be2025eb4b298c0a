#include "tables/head_model.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "dsp/frame.h"

namespace zoq::tables {

namespace {

constexpr double kSmoothingOctaves = 1.0 / 6.0, kColourOctaves = 1.0 / 3.0;
constexpr double kOnsetShare = 0.1;  // an arrival is the first sample above this share of its peak
constexpr size_t kOnsetOversampling = 8;

// Below this frequency measurement loudspeakers fade, and a head hardly differs between directions.
constexpr double kTrustedFromHz = 250.0;
// Above this share of the measurement's own Nyquist frequency its filters fade.
constexpr double kTrustedShare = 0.93;

// Points of the sphere by which each measurement's share of it is counted.
constexpr int kSpherePoints = 4000;
constexpr double kCoveredDegrees = 12.0;

// Directions that a usable set must hold, and how near: the sources, whose direct sound it gives, and a
// sample of those that reflections come from.
constexpr double kSource = 8.0, kReflection = 30.0;
constexpr NeededDirection kNeeded[] = {
    {{0, 0}, kSource},        {{30, 0}, kSource},        {{60, 0}, kSource},        {{130, 0}, kSource},
    {{180, 0}, kReflection},  {{240, 0}, kReflection},   {{300, 0}, kReflection},   {{0, -40}, kReflection},
    {{90, -40}, kReflection}, {{180, -40}, kReflection}, {{270, -40}, kReflection}, {{0, 60}, kReflection},
    {{180, 60}, kReflection}};

// Power at the grid's frequencies. The response is padded to at least eight times its length, so that the
// line between two bins is as good as the spectrum itself; no resampling is needed.
Signal grid_power(const Signal& response, double rateHz) {
    const size_t length = std::bit_ceil(std::max(8 * response.size(), 2 * kGridSamples));
    const Spectrum bins = transform(response, length);
    const double top = kTrustedShare * rateHz / 2.0;
    Signal power;
    for (size_t k = 0; k < kGridBins; ++k) {
        const double position = std::min(grid_hz(k), top) * double(length) / rateHz;
        const auto below = size_t(position);
        const double share = position - double(below);
        power.push_back((1 - share) * std::norm(bins[below]) + share * std::norm(bins[below + 1]));
    }
    return power;
}

// First sample, at 48 kHz and with eighths, above a tenth of the peak.
double onset(const Signal& response, double rateHz) {
    const size_t length = std::bit_ceil(response.size());
    Spectrum bins = transform(response, length);
    bins.resize(kOnsetOversampling * length / 2 + 1);
    const Signal fine = inverse_transform(bins);
    double peak = 0.0;
    for (const double value : fine) {
        peak = std::max(peak, std::fabs(value));
    }
    const auto first = std::find_if(fine.begin(), fine.end(),
                                    [&](double value) { return std::fabs(value) > kOnsetShare * peak; });
    return double(first - fine.begin()) / kOnsetOversampling * android::kSampleRateHz / rateHz;
}

// Each measurement's share of the sphere, by counting evenly spread points nearest to it. Points that no
// measurement is near, as below the lowest ring, count for nobody.
Signal sphere_shares(const Head& head) {
    const double goldenAngle = 180.0 * (3.0 - std::sqrt(5.0));
    Signal shares(head.directions.size(), 0.0);
    double counted = 0.0;
    for (int i = 0; i < kSpherePoints; ++i) {
        const double height = 1.0 - (2.0 * i + 1.0) / kSpherePoints;
        const Direction point = {std::fmod(goldenAngle * i, 360.0),
                                 std::asin(height) * 180.0 / std::numbers::pi};
        const size_t owner = nearest(head, point);
        if (angle(head.directions[owner], point) < kCoveredDegrees) {
            shares[owner] += 1.0;
            counted += 1.0;
        }
    }
    for (double& share : shares) {
        share /= counted;
    }
    return shares;
}

// Below the trusted frequency both ears move, evenly over frequency, to their mean level there.
void level_bass(std::array<Signal, 2>& power) {
    const auto edge = size_t(kTrustedFromHz / grid_hz(1));
    const double common = 0.5 * (power[0][edge] + power[1][edge]);
    for (Signal& ear : power) {
        for (size_t k = 0; k < edge; ++k) {
            const double x = double(k) / double(edge);
            ear[k] = std::pow(ear[edge], x) * std::pow(common, 1 - x);
        }
    }
}

}  // namespace

double grid_hz(size_t bin) {
    return double(bin) * android::kSampleRateHz / double(kGridSamples);
}

HeadModel::HeadModel(const Head& measured) : head(measured) {
    require_directions(head, kNeeded);
    const Signal shares = sphere_shares(head);
    Signal diffuse(kGridBins, 0.0);
    for (size_t m = 0; m < head.responses.size(); ++m) {
        Measurement& measurement = measurements.emplace_back();
        for (const Ear ear : {kLeftEar, kRightEar}) {
            measurement.power[ear] = grid_power(head.responses[m][ear], head.rateHz);
            measurement.onsetSamples[ear] = onset(head.responses[m][ear], head.rateHz);
            for (size_t k = 0; k < kGridBins; ++k) {
                diffuse[k] += 0.5 * shares[m] * measurement.power[ear][k];
            }
        }
    }
    // Dividing by the mean over all directions takes out what they share: ear canal, loudspeaker, microphone.
    diffuse = octave_smooth(diffuse, kSmoothingOctaves);
    for (Measurement& measurement : measurements) {
        for (Signal& power : measurement.power) {
            std::transform(power.begin(), power.end(), diffuse.begin(), power.begin(), std::divides());
            power = octave_smooth(power, kSmoothingOctaves);
        }
        level_bass(measurement.power);
    }
    const auto& front = measurements[nearest(head, {0.0, 0.0})].onsetSamples;
    frontOnset = std::min(front[kLeftEar], front[kRightEar]);
}

HeadModel::Ears HeadModel::towards(const Direction& direction, double flattened) const {
    const Measurement& measurement = measurements[nearest(head, direction)];
    Signal mean(kGridBins);
    for (size_t k = 0; k < kGridBins; ++k) {
        mean[k] = 0.5 * (measurement.power[kLeftEar][k] + measurement.power[kRightEar][k]);
    }
    mean = octave_smooth(mean, kColourOctaves);
    Ears ears;
    for (const Ear ear : {kLeftEar, kRightEar}) {
        for (size_t k = 0; k < kGridBins; ++k) {
            ears.magnitude[ear].push_back(
                std::sqrt(measurement.power[ear][k] / std::pow(mean[k], flattened)));
        }
        ears.arrivalSamples[ear] = measurement.onsetSamples[ear] - frontOnset;
    }
    return ears;
}

}  // namespace zoq::tables
