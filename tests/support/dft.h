// The 1024-point transform straight from its definition, in double precision.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

namespace dft {

using Complex = std::complex<double>;
using HalfSpectrum = std::vector<Complex>;

inline constexpr size_t kSize = 1024;
inline constexpr size_t kBins = kSize / 2 + 1;

// e^(j 2 pi m / 1024)
inline Complex root(size_t m) {
    static const std::vector<Complex> roots = [] {
        std::vector<Complex> all(kSize);
        for (size_t i = 0; i < kSize; ++i) {
            all[i] = std::polar(1.0, 2.0 * std::numbers::pi * static_cast<double>(i) / double{kSize});
        }
        return all;
    }();
    return roots[m % kSize];
}

// Bins 0..512 of up to 1024 samples, zero-padded.
template <typename Sample>
HalfSpectrum half_spectrum(std::span<const Sample> x) {
    HalfSpectrum half(kBins);
    for (size_t k = 0; k < kBins; ++k) {
        for (size_t n = 0; n < x.size(); ++n) {
            half[k] += static_cast<double>(x[n]) * std::conj(root(k * n));
        }
    }
    return half;
}

// The real frame whose half spectrum this is.
inline std::vector<double> frame_of(const HalfSpectrum& half) {
    std::vector<double> frame(kSize);
    for (size_t n = 0; n < kSize; ++n) {
        double sum = half[0].real() + (n % 2 == 0 ? 1.0 : -1.0) * half[kBins - 1].real();
        for (size_t k = 1; k < kBins - 1; ++k) {
            const Complex w = root(k * n);
            sum += 2.0 * (half[k].real() * w.real() - half[k].imag() * w.imag());
        }
        frame[n] = sum / double{kSize};
    }
    return frame;
}

}  // namespace dft
