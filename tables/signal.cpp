#include "tables/signal.h"

#include <algorithm>
#include <cmath>
#include <kissfft.hh>
#include <map>
#include <numbers>

#include "dsp/frame.h"

namespace zoq::tables {

namespace {

using Transform = kissfft<double>;

// Factors are found once for each length and direction.
const Transform& plan(size_t length, bool inverse) {
    thread_local std::map<std::pair<size_t, bool>, Transform> plans;
    return plans.try_emplace({length, inverse}, length, inverse).first->second;
}

}  // namespace

Spectrum transform(const Signal& x, size_t length) {
    Signal padded(x);
    padded.resize(length);
    Spectrum bins(length / 2 + 1);
    plan(length / 2, false).transform_real(padded.data(), bins.data());
    // Bins 0 and length / 2 are real and share one number.
    bins.back() = bins.front().imag();
    bins.front() = bins.front().real();
    return bins;
}

Signal inverse_transform(const Spectrum& bins) {
    const size_t length = 2 * (bins.size() - 1);
    Spectrum whole(bins), samples(length);
    for (size_t k = bins.size() - 2; k > 0; --k) {
        whole.push_back(std::conj(bins[k]));
    }
    plan(length, true).transform(whole.data(), samples.data());
    Signal x;
    for (const std::complex<double>& sample : samples) {
        x.push_back(sample.real() / double(length));
    }
    return x;
}

Signal octave_smooth(const Signal& power, double octaves) {
    Signal running(1, 0.0);
    for (const double value : power) {
        running.push_back(running.back() + value);
    }
    const double half = std::exp2(octaves / 2);
    Signal smooth;
    for (size_t k = 0; k < power.size(); ++k) {
        const auto first = size_t(std::floor(double(k) / half));
        const auto last = std::min(power.size() - 1, size_t(std::ceil(double(k) * half)));
        smooth.push_back((running[last + 1] - running[first]) / double(last + 1 - first));
    }
    return smooth;
}

// The logarithm of a minimum-phase spectrum has a causal inverse transform, so the cepstrum of the magnitudes
// is folded onto its positive half.
Signal minimum_phase(const Signal& magnitude, size_t taps) {
    constexpr double kFloor = 1e-5;
    constexpr size_t kFade = 32;
    Spectrum logarithm;
    for (const double value : magnitude) {
        logarithm.emplace_back(std::log(std::max(value, kFloor)));
    }
    Signal cepstrum = inverse_transform(logarithm);
    const size_t length = cepstrum.size();
    for (size_t n = 1; n < length / 2; ++n) {
        cepstrum[n] *= 2.0;
        cepstrum[length - n] = 0.0;
    }
    Spectrum bins = transform(cepstrum, length);
    for (std::complex<double>& bin : bins) {
        bin = std::exp(bin);
    }
    Signal response = inverse_transform(bins);
    response.resize(taps);
    for (size_t n = taps - kFade; n < taps; ++n) {
        response[n] *= raised_cosine(double(n), double(taps), double(taps - kFade));
    }
    return response;
}

Section highpass(double hz) {
    const double K = std::tan(std::numbers::pi * hz / android::kSampleRateHz);
    const double a0 = 1.0 + std::numbers::sqrt2 * K + K * K;
    return {{1.0 / a0, -2.0 / a0, 1.0 / a0},
            {1.0, 2.0 * (K * K - 1.0) / a0, (1.0 - std::numbers::sqrt2 * K + K * K) / a0}};
}

Section lowpass(double hz) {
    const double K = std::tan(std::numbers::pi * hz / android::kSampleRateHz);
    return {{K / (1.0 + K), K / (1.0 + K), 0.0}, {1.0, (K - 1.0) / (1.0 + K), 0.0}};
}

Section shelf(double hz, double topDb) {
    const double K = std::tan(std::numbers::pi * hz / android::kSampleRateHz);
    const double top = std::pow(10.0, topDb / 20.0);
    return {{(K + top) / (1.0 + K), (K - top) / (1.0 + K), 0.0}, {1.0, (K - 1.0) / (1.0 + K), 0.0}};
}

Signal filtered(const Section& section, const Signal& x) {
    double z1 = 0.0, z2 = 0.0;
    Signal y(x.size());
    for (size_t n = 0; n < x.size(); ++n) {
        y[n] = section.b[0] * x[n] + z1;
        z1 = section.b[1] * x[n] - section.a[1] * y[n] + z2;
        z2 = section.b[2] * x[n] - section.a[2] * y[n];
    }
    return y;
}

double energy(const Signal& x) {
    double sum = 0.0;
    for (const double value : x) {
        sum += value * value;
    }
    return sum;
}

double decibel(double power) {
    return 10.0 * std::log10(power);
}

void raise(double& most, double value) {
    most = std::isnan(most) || most >= value ? most : value;
}

void lower(double& least, double value) {
    least = std::isnan(least) || least <= value ? least : value;
}

double raised_cosine(double x, double from, double to) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * t);
}

std::optional<double> find_root(const std::function<double(double)>& f, double low, double high) {
    const double atLow = f(low), atHigh = f(high);
    const bool rising = atLow < 0.0;
    if (!std::isfinite(atLow) || !std::isfinite(atHigh) || rising != (atHigh > 0.0)) {
        return std::nullopt;
    }
    for (int i = 0; i < 60; ++i) {
        const double middle = 0.5 * (low + high);
        ((f(middle) < 0.0) == rising ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

}  // namespace zoq::tables
