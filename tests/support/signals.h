// Signals the tests are fed with. Each is the same on every run and machine: the seed decides, not a
// distribution of the standard library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <span>
#include <vector>

namespace signals {

inline constexpr double kRateHz = 48000.0;

// White, uniform in -peak..peak.
inline std::vector<float> noise(uint32_t seed, size_t count, float peak = 1.0f) {
    std::mt19937 generator(seed);
    std::vector<float> x(count);
    for (float& sample : x) {
        sample = peak * static_cast<float>(static_cast<double>(generator()) * 0x1p-31 - 1.0);
    }
    return x;
}

inline std::vector<float> sine(double frequencyHz, size_t count, float amplitude = 1.0f, double phase = 0.0) {
    std::vector<float> x(count);
    for (size_t n = 0; n < count; ++n) {
        const double angle = 2.0 * std::numbers::pi * frequencyHz * static_cast<double>(n) / kRateHz + phase;
        x[n] = static_cast<float>(static_cast<double>(amplitude) * std::sin(angle));
    }
    return x;
}

inline std::vector<float> impulse(size_t position, size_t count, float height = 1.0f) {
    std::vector<float> x(count, 0.0f);
    x[position] = height;
    return x;
}

// Noise without its treble (a one-pole low-pass at 1 kHz) in syllables: eight a second, each a raised-cosine
// burst of 60 ms at a level of its own, with 65 ms of silence behind it.
inline std::vector<float> speech_like(uint32_t seed, size_t count, float peak = 1.0f) {
    constexpr size_t kSyllable = 6000, kVoiced = 2880;
    const double pole = std::exp(-2.0 * std::numbers::pi * 1000.0 / kRateHz);
    std::mt19937 levels(seed + 1);
    std::vector<float> x = noise(seed, count);
    double lowpass = 0.0, level = 0.0;
    for (size_t n = 0; n < count; ++n) {
        const size_t position = n % kSyllable;
        if (position == 0) {
            level = 0.5 + 0.5 * static_cast<double>(levels()) * 0x1p-32;
        }
        const double t = static_cast<double>(position) / static_cast<double>(kVoiced);
        const double burst = position < kVoiced ? 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * t) : 0.0;
        lowpass = (1.0 - pole) * static_cast<double>(x[n]) + pole * lowpass;
        x[n] = static_cast<float>(static_cast<double>(peak) * level * burst * lowpass);
    }
    return x;
}

inline double rms(std::span<const float> x) {
    double power = 0.0;
    for (float sample : x) {
        power += static_cast<double>(sample) * static_cast<double>(sample);
    }
    return x.empty() ? 0.0 : std::sqrt(power / static_cast<double>(x.size()));
}

// The largest difference of two equally long signals; infinite where one holds a not-a-number.
inline double worst_difference(std::span<const float> a, std::span<const float> b) {
    double worst = a.size() == b.size() ? 0.0 : HUGE_VAL;
    for (size_t n = 0; n < a.size() && n < b.size(); ++n) {
        const double difference = std::abs(static_cast<double>(a[n]) - static_cast<double>(b[n]));
        worst = difference <= worst ? worst : std::isnan(difference) ? HUGE_VAL : difference;
    }
    return worst;
}

}  // namespace signals
