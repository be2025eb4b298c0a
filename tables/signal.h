// Double-precision signals and spectra for the makers: transforms, minimum phase, smoothing, sections.
#pragma once

#include <complex>
#include <functional>
#include <optional>
#include <vector>

namespace zoq::tables {

using Signal = std::vector<double>;                  // samples, or one real value per bin
using Spectrum = std::vector<std::complex<double>>;  // bins 0..n/2 of a real signal of n samples

// x, cut or zero-padded to an even length, to its half spectrum, unscaled; and back, scaled by 1/length.
Spectrum transform(const Signal& x, size_t length);
Signal inverse_transform(const Spectrum& bins);

double energy(const Signal& x);
double decibel(double power);

// The greatest and the least so far; not-a-number wins against every number.
void raise(double& most, double value);
void lower(double& least, double value);

// Mean of a spectrum of powers over a band of so many octaves around each bin.
Signal octave_smooth(const Signal& power, double octaves);

// The first taps of the response of least delay with these magnitudes, which are given for all bins; its end
// fades.
Signal minimum_phase(const Signal& magnitude, size_t taps);

// A second-order section at 48 kHz, a0 = 1; in first-order ones b[2] and a[2] are 0.
struct Section {
    double b[3], a[3];
};
Section highpass(double hz);             // Butterworth, second order
Section lowpass(double hz);              // first order
Section shelf(double hz, double topDb);  // first order: 0 dB below hz, topDb above
Signal filtered(const Section& section, const Signal& x);

// 0 before from, 1 behind to, half a cosine between; from may lie above to.
double raised_cosine(double x, double from, double to);

// Where f crosses zero, by bisection; nothing if it has the same sign at both ends.
std::optional<double> find_root(const std::function<double(double)>& f, double low, double high);

}  // namespace zoq::tables
