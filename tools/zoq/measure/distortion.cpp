#include "tools/zoq/measure/distortion.h"

#include <cmath>

#include "tools/zoq/measure/rig.h"
#include "tools/zoq/measure/tones.h"
#include "tools/zoq/measure/transform.h"

namespace zoq {

namespace {

constexpr size_t kLength =
    65536;  // samples of the transform: 128 hops, so that the engine repeats itself too
constexpr size_t kSettleFrames = 2 * size_t{kEngineRate};
constexpr double kBinHz = double{kEngineRate} / kLength;

// An odd bin has no period in common with the transform, so that rounding to 16 bits makes noise, no harmonics.
size_t odd_bin(double hz) {
    return 2 * static_cast<size_t>(hz / kBinHz / 2.0) + 1;
}

Signal make_sine(size_t bin, double levelDb) {
    const double amplitude = amplitude_of_db(levelDb);
    Signal sine(kSettleFrames + kLength);
    for (size_t i = 0; i < sine.size(); ++i) {
        const auto phase = static_cast<double>(i * bin % kLength) / kLength;
        sine[i] = quantised(amplitude * std::sin(2.0 * M_PI * phase));
    }
    return sine;
}

double power_between(const Spectrum& spectrum, double lowHz, double highHz) {
    double power = 0.0;
    for (auto k = static_cast<size_t>(std::ceil(lowHz / kBinHz)); static_cast<double>(k) * kBinHz <= highHz;
         ++k) {
        power += std::norm(spectrum[k]);
    }
    return power;
}

}  // namespace

Distortion measure_distortion(const MeasureOptions& options, double hz) {
    const size_t bin = odd_bin(hz);
    const Recording recording = record(options, make_sine(bin, options.levelDb));
    const auto first = recording.channel[0].begin() + kSettleFrames;
    Spectrum spectrum = spectrum_of({first, first + kLength}, kLength);
    for (std::complex<double>& value : spectrum) {
        value *= 2.0 / kLength;  // amplitudes
    }

    Distortion distortion;
    distortion.toneHz = static_cast<double>(bin) * kBinHz;
    const double fundamental = std::norm(spectrum[bin]);
    distortion.outputDb = db(std::sqrt(fundamental));
    double harmonics = 0.0;
    for (size_t harmonic = 2; harmonic <= kHighestHarmonic && harmonic * bin < kLength / 2; ++harmonic) {
        const double power = std::norm(spectrum[harmonic * bin]);
        harmonics += power;
        distortion.harmonicsDb.push_back(db(std::sqrt(power)));
    }
    distortion.thdDb = db(std::sqrt(harmonics / fundamental));
    spectrum[bin] = 0.0;
    distortion.thdNoiseDb = db(std::sqrt(power_between(spectrum, 20.0, 20000.0) / fundamental));
    return distortion;
}

}  // namespace zoq
