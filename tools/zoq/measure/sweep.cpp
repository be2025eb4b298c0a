#include "tools/zoq/measure/sweep.h"

#include <algorithm>
#include <cmath>

#include "tools/zoq/measure/rig.h"
#include "tools/zoq/measure/tones.h"
#include "tools/zoq/measure/transform.h"

namespace zoq {

namespace {

constexpr size_t kSweepFrames = size_t{1} << 18;  // 5.5 s
constexpr size_t kTailFrames = size_t{1} << 15;   // of silence, for what rings on
constexpr size_t kLength = size_t{1} << 19;       // of the transforms: nothing wraps around onto anything
constexpr double kFirstHz = 2.0;
constexpr double kTrustedHz = 3.0;
constexpr double kLastHz = kEngineRate / 2.0;
constexpr size_t kFadeIn = 240;  // sample frames of the impulse response's window
constexpr size_t kFadeOut = 4800;

// The second harmonic's response ends where the window of the first begins only if it is that much earlier.
static_assert(kSweepFrames * 693 / 9393 > kImpulseLead + 18000);  // ln 2 / ln (24000 / 2)

Signal make_sweep(double levelDb) {
    const double scale = static_cast<double>(kSweepFrames) / std::log(kLastHz / kFirstHz);
    const double amplitude = amplitude_of_db(levelDb);
    Signal sweep(kSweepFrames + kTailFrames, 0);
    for (size_t i = 0; i < kSweepFrames; ++i) {
        const double cycles = kFirstHz * scale / kEngineRate * std::expm1(static_cast<double>(i) / scale);
        sweep[i] = quantised(amplitude * std::sin(2.0 * M_PI * cycles));
    }
    return sweep;
}

// What the sweep says nothing about, below its lowest frequencies, goes on from their edge, with the expected latency
// and otherwise the real part level and the imaginary part straight to 0, as filters without poles down there have it:
// a gap would spread over all of the impulse response.
void fill_below_sweep(Spectrum& response, int latency) {
    const double binHz = kEngineRate / static_cast<double>(kLength);
    const auto delay = [=](size_t bin) {
        return std::polar(1.0,
                          -2.0 * M_PI * static_cast<double>(bin) * latency / static_cast<double>(kLength));
    };
    const auto edge = static_cast<size_t>(kTrustedHz / binHz);
    const std::complex<double> gain = response[edge] / delay(edge);
    for (size_t k = 0; k < edge; ++k) {
        const double hz = static_cast<double>(k) * binHz;
        const double position = std::clamp((hz - kFirstHz) / (kTrustedHz - kFirstHz), 0.0, 1.0);
        const double trust = 0.5 - 0.5 * std::cos(M_PI * position);
        const double fraction = static_cast<double>(k) / static_cast<double>(edge);
        const std::complex<double> continued(gain.real(), gain.imag() * fraction);
        response[k] = trust * response[k] + (1.0 - trust) * continued * delay(k);
    }
}

double window(size_t i, size_t count) {
    const double fadeIn = std::min(1.0, static_cast<double>(i) / kFadeIn);
    const double fadeOut = std::min(1.0, static_cast<double>(count - i) / kFadeOut);
    return (0.5 - 0.5 * std::cos(M_PI * fadeIn)) * (0.5 - 0.5 * std::cos(M_PI * fadeOut));
}

// The part of output / sweep around the latency.
std::vector<double> deconvolved(const std::vector<double>& output, const Spectrum& sweep, int latency) {
    Spectrum quotient = spectrum_of(output, kLength);
    for (size_t k = 0; k < quotient.size(); ++k) {
        quotient[k] /= sweep[k];
    }
    fill_below_sweep(quotient, latency);
    const std::vector<double> circular = signal_of(std::move(quotient), kLength);
    std::vector<double> impulse(kImpulseLead + kImpulseTail);
    for (size_t i = 0; i < impulse.size(); ++i) {
        const auto position = static_cast<int64_t>(i) + latency - kImpulseLead;
        impulse[i] = window(i, impulse.size()) *
                     circular[static_cast<size_t>(position + static_cast<int64_t>(kLength)) % kLength];
    }
    return impulse;
}

}  // namespace

SweepResult play_sweep(const MeasureOptions& options) {
    const Signal sweep = make_sweep(options.levelDb);
    std::vector<double> input(sweep.begin(), sweep.end());
    for (double& value : input) {
        value /= 32768.0;
    }
    const Spectrum inputSpectrum = spectrum_of(input, kLength);

    const Recording recording = record(options, sweep);
    SweepResult result;
    result.latency = recording.latency;
    result.impulse.start = recording.latency.total() - kImpulseLead;
    for (size_t side = 0; side < 2; ++side) {
        result.impulse.value[side] =
            deconvolved(recording.channel[side], inputSpectrum, recording.latency.total());
    }
    return result;
}

}  // namespace zoq
