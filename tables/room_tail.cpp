#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "dsp/frame.h"
#include "tables/room_parts.h"

namespace zoq::tables {

namespace {

constexpr double kLevel = 0.008;
constexpr double kDecaySeconds = 0.20;  // to -60 dB
constexpr double kFromSeconds = 0.006, kFullSeconds = 0.010;
constexpr double kTrebleCornerHz = 6000.0, kBassCornerHz = 120.0;
constexpr double kEarDistance = 0.18, kSpeedOfSound = 343.0;  // metres, metres per second
constexpr double kStrongestOpposition = -0.95;

// Gaussian noise from a generator that gives the same numbers everywhere, which the library's distributions
// do not.
class Noise {
  public:
    explicit Noise(unsigned seed) : generator(seed) {}
    double operator()() {
        const double radius = std::sqrt(-2.0 * std::log(uniform()));
        return radius * std::cos(2.0 * std::numbers::pi * uniform());
    }

  private:
    // 0 < u < 1
    double uniform() { return (double(generator() >> 12) + 0.5) * 0x1p-52; }

    std::mt19937_64 generator;
};

Spectrum decaying_noise(Noise& noise, size_t taps) {
    Signal x;
    for (size_t n = 0; n < taps; ++n) {
        const double t = double(n) / android::kSampleRateHz;
        const double rise = std::clamp((t - kFromSeconds) / (kFullSeconds - kFromSeconds), 0.0, 1.0);
        x.push_back(noise() * rise * std::pow(10.0, -3.0 * t / kDecaySeconds));
    }
    return transform(x, kGridSamples);
}

// Correlation of the pressure at two points in a diffuse field.
double coherence(double hz) {
    const double x = 2.0 * std::numbers::pi * hz * kEarDistance / kSpeedOfSound;
    return x == 0.0 ? 1.0 : std::max(std::sin(x) / x, kStrongestOpposition);
}

double colour(double hz) {
    const double bass = kBassCornerHz / std::max(hz, 1.0);
    return kLevel / std::hypot(1.0, hz / kTrebleCornerHz) / std::hypot(1.0, bass * bass);
}

}  // namespace

EarSignals diffuse_tail(unsigned seed, size_t taps) {
    Noise noise(seed);
    Spectrum common = decaying_noise(noise, taps), apart = decaying_noise(noise, taps);
    std::array<Spectrum, 2> ears;
    for (size_t k = 0; k < kGridBins; ++k) {
        const double hz = grid_hz(k);
        const auto a = std::sqrt((1.0 + coherence(hz)) / 2.0) * common[k];
        const auto b = std::sqrt((1.0 - coherence(hz)) / 2.0) * apart[k];
        ears[0].push_back(colour(hz) * (a + b));
        ears[1].push_back(colour(hz) * (a - b));
    }
    EarSignals tail;
    for (size_t ear = 0; ear < 2; ++ear) {
        Signal x = inverse_transform(ears[ear]);
        x.resize(taps);
        tail[ear] = filtered(highpass(kBassCornerHz), x);
    }
    return tail;
}

}  // namespace zoq::tables
