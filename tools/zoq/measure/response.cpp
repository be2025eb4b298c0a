#include "tools/zoq/measure/response.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "tools/zoq/measure/tones.h"

namespace zoq {

namespace {

constexpr double kStepsPerOctave = 24.0;
constexpr int kLowestStep = -135;  // 20.3 Hz
constexpr int kHighestStep = 103;  // 19.6 kHz

std::vector<double> frequencies() {
    std::vector<double> hz;
    for (int step = kLowestStep; step <= kHighestStep; ++step) {
        hz.push_back(1000.0 * std::exp2(step / kStepsPerOctave));
    }
    return hz;
}

// The transform at one frequency, with the expected latency as time 0.
std::complex<double> transform_at(const std::vector<double>& impulse, double hz) {
    const double angle = 2.0 * M_PI * hz / kEngineRate;
    const std::complex<double> step = std::polar(1.0, -angle);
    std::complex<double> turn = std::polar(1.0, angle * kImpulseLead);
    std::complex<double> sum = 0.0;
    for (const double value : impulse) {
        sum += value * turn;
        turn *= step;
    }
    return sum;
}

}  // namespace

Response response_of(const SweepResult& sweep) {
    Response response;
    response.hz = frequencies();
    for (size_t side = 0; side < 2; ++side) {
        for (const double hz : response.hz) {
            const std::complex<double> value = transform_at(sweep.impulse.value[side], hz);
            response.gainDb[side].push_back(db(std::abs(value)));
            response.phaseDegrees[side].push_back(std::arg(value) * 180.0 / M_PI);
        }
    }
    return response;
}

LatencyFigures latency_of(const SweepResult& sweep) {
    LatencyFigures figures;
    figures.expected = sweep.latency;
    for (size_t side = 0; side < 2; ++side) {
        const std::vector<double>& impulse = sweep.impulse.value[side];
        const auto smaller = [](double a, double b) { return std::abs(a) < std::abs(b); };
        const auto peak = std::max_element(impulse.begin(), impulse.end(), smaller);
        if (*peak == 0.0) {
            continue;
        }
        const double threshold = 0.1 * std::abs(*peak);
        const auto onset = std::find_if(impulse.begin(), impulse.end(),
                                        [=](double value) { return std::abs(value) >= threshold; });
        figures.arrival[side] =
            Arrival{sweep.impulse.start + static_cast<int>(onset - impulse.begin()),
                    sweep.impulse.start + static_cast<int>(peak - impulse.begin()), *peak};
    }
    return figures;
}

Crosstalk crosstalk_of(const SweepResult& leftOnly) {
    const Response response = response_of(leftOnly);
    Crosstalk crosstalk;
    crosstalk.hz = response.hz;
    for (size_t i = 0; i < response.hz.size(); ++i) {
        crosstalk.ratioDb.push_back(response.gainDb[1][i] - response.gainDb[0][i]);
    }
    return crosstalk;
}

}  // namespace zoq
