// Fourier transforms of real signals, in double precision.
#pragma once

#include <complex>
#include <vector>

namespace zoq {

using Spectrum = std::vector<std::complex<double>>;  // bins 0 .. length / 2

// Transforms the signal, with zeros behind it up to the length.
Spectrum spectrum_of(const std::vector<double>& signal, size_t length);

// The inverse, scaled so that it gives back the signal.
std::vector<double> signal_of(Spectrum spectrum, size_t length);

}  // namespace zoq
