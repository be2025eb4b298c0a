// Gains for the engine's nine bands that come nearest to a curve, by least squares in dB.
//
// The response fitted is the engine's own, from the coefficients that il_iirpeaking2 designs with the factory's Q and
// frequencies. The curve's overall level is free: the engine has no preamplifier, so a level common to all
// frequencies is found along with the gains and left out.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "zoq2processing.h"

namespace zoq {

using BandGains = std::array<double, android::kGeqBands>;

struct EqFitOptions {
    double limitDb = 12.0;  // largest gain of a band, either way
    double loHz = 40.0, hiHz = 20000.0;
};

struct EqFit {
    BandGains gainDb;  // in steps of 0.01 dB
    double limitDb;
    double levelDb;  // of the curve above the fitted response
    double rmsDb;    // of the difference, the level taken out, over the logarithm of frequency
    double worstDb;  // the difference of largest size: response + level - curve
    double worstHz;
    double peakDb;  // the response's largest boost
    double peakHz;
    std::vector<double> hz, targetDb, responseDb;  // on the grid; the target with its level
};

EqFit fit_bands(const std::function<double(double hz)>& targetDb, const EqFitOptions& options);

// The engine's graphic equalizer at a frequency, all bands together.
double band_response_db(const BandGains& gainDb, double hz);

}  // namespace zoq
