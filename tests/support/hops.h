// Whole signals through a module hop by hop, and what a filter does at one frequency.
#pragma once

#include <algorithm>
#include <complex>

#include "dsp/frame.h"
#include "tests/support/signals.h"

namespace signals {

struct Stereo {
    std::vector<float> left, right;
    bool operator==(const Stereo&) const = default;
};

inline Stereo stereo_noise(uint32_t seed, size_t hops, float peak = 1.0f) {
    const size_t count = hops * android::kHopSamples;
    return {noise(seed, count, peak), noise(seed + 1000, count, peak)};
}

inline Stereo joined(Stereo a, const Stereo& b) {
    a.left.insert(a.left.end(), b.left.begin(), b.left.end());
    a.right.insert(a.right.end(), b.right.begin(), b.right.end());
    return a;
}

// Hands every hop to process(float* io), planar as the modules take it, and returns what it left there.
template <typename Process>
Stereo play(Stereo x, Process process) {
    constexpr size_t kHop = android::kHopSamples;
    std::vector<float> io(2 * kHop);
    for (size_t at = 0; at + kHop <= x.left.size(); at += kHop) {
        std::copy_n(&x.left[at], kHop, &io[0]);
        std::copy_n(&x.right[at], kHop, &io[kHop]);
        process(io.data());
        std::copy_n(&io[0], kHop, &x.left[at]);
        std::copy_n(&io[kHop], kHop, &x.right[at]);
    }
    return x;
}

// What kernels may trip over, two hops of each kind, different on the two channels: music-like levels, full scale,
// either zero, levels near the smallest, steps between far and near, single samples, squares that overflow.
inline Stereo all_kinds(uint32_t seed) {
    Stereo all;
    for (float peak : {0.3f, 1.0f, 0.0f, 1e-5f, 0.01f, -0.0f, 1e-30f, 0.5f, 1e30f}) {
        all = joined(all, stereo_noise(++seed, 2, peak));
    }
    std::fill_n(&all.left[300], 100, -0.0f);
    std::fill_n(&all.right[100], 1000, 0.0f);
    all.right[3000] = 1.0f;
    for (size_t i = 0; i < all.left.size(); i += 57) {
        all.left[i] = -all.right[i];
    }
    return all;
}

inline std::vector<float> one_after_the_other(const Stereo& x) {
    std::vector<float> values = x.left;
    values.insert(values.end(), x.right.begin(), x.right.end());
    return values;
}

// The response of a filter at one frequency, from its impulse response.
inline std::complex<double> response(std::span<const float> h, double frequencyHz) {
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * frequencyHz / kRateHz);
    std::complex<double> sum = 0.0, turn = 1.0;
    for (float sample : h) {
        sum += double(sample) * turn;
        turn *= step;
    }
    return sum;
}

inline double db(std::complex<double> gain) {
    return 20.0 * std::log10(std::abs(gain));
}

// The analog frequency that the bilinear transform puts at frequencyHz, for a corner or centre at cornerHz
// = 1.
inline std::complex<double> analog(double frequencyHz, double cornerHz) {
    const double pi = std::numbers::pi;
    return {0.0, std::tan(pi * frequencyHz / kRateHz) / std::tan(pi * cornerHz / kRateHz)};
}

}  // namespace signals
