#include "tables/signal.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <unsupported/Eigen/FFT>

namespace zoq::tables {

namespace {

Eigen::FFT<double>& half_spectrum_fft() {
    thread_local Eigen::FFT<double> fft(Eigen::FFT<double>::impl_type(), Eigen::FFT<double>::HalfSpectrum);
    return fft;
}

}  // namespace

Spectrum transform(const Signal& x, size_t length) {
    Signal padded(x);
    padded.resize(length);
    Spectrum bins;
    half_spectrum_fft().fwd(bins, padded);
    return bins;
}

Signal inverse_transform(const Spectrum& bins) {
    Signal x;
    half_spectrum_fft().inv(x, bins);
    return x;
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

double raised_cosine(double x, double from, double to) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * t);
}

double find_root(const std::function<double(double)>& f, double low, double high) {
    const bool rising = f(low) < 0.0;
    if (rising != (f(high) > 0.0)) {
        throw std::runtime_error("a quantity that was to be solved for lies outside its range");
    }
    for (int i = 0; i < 60; ++i) {
        const double middle = 0.5 * (low + high);
        ((f(middle) < 0.0) == rising ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

}  // namespace zoq::tables
