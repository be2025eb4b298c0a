// Double-precision signals and spectra for the makers: transforms, minimum phase, smoothing, sections.
#pragma once

#include <complex>
#include <functional>
#include <vector>

namespace zoq::tables {

using Signal = std::vector<double>;                  // samples, or one real value per bin
using Spectrum = std::vector<std::complex<double>>;  // bins 0..n/2 of a real signal of n samples

// x, cut or zero-padded to an even length, to its half spectrum, unscaled; and back, scaled by 1/length.
Spectrum transform(const Signal& x, size_t length);
Signal inverse_transform(const Spectrum& bins);

double energy(const Signal& x);
double decibel(double power);

// 0 before from, 1 behind to, half a cosine between; from may lie above to.
double raised_cosine(double x, double from, double to);

// Where f, of different sign at the two ends, crosses zero: by bisection, so that it ends on every machine at
// the same place.
double find_root(const std::function<double(double)>& f, double low, double high);

}  // namespace zoq::tables
