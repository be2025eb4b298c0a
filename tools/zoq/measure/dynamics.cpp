#include "tools/zoq/measure/dynamics.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tools/zoq/measure/rig.h"
#include "tools/zoq/measure/tones.h"

namespace zoq {

namespace {

constexpr double kLowestDb = -70.0;
constexpr double kStaticStepDb = 2.0;
constexpr int kStaticSteps = 36;
constexpr size_t kStaticFrames = 36000;  // each
constexpr size_t kStaticCounted = 12000;

constexpr size_t kLowFrames = 1 * size_t{kEngineRate};
constexpr size_t kHighFrames = 3 * size_t{kEngineRate};
constexpr size_t kReleaseFrames =
    10 * size_t{kEngineRate};         // the slowest release takes 3.5 s for nine tenths
constexpr size_t kMeanFrames = 4800;  // for the gain ahead of a step and behind it
constexpr double kLeastChangeDb = 0.5;

double mean(const std::vector<double>& values, size_t first, size_t count) {
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
    return std::accumulate(begin, begin + static_cast<std::ptrdiff_t>(count), 0.0) /
           static_cast<double>(count);
}

// When gain[first .. end) is for the last time on the side of the level where it began.
std::optional<double> time_to_pass(const std::vector<double>& gainDb, double startDb, double endDb) {
    if (!(std::abs(endDb - startDb) >= kLeastChangeDb)) {
        return std::nullopt;
    }
    const double level = startDb + 0.9 * (endDb - startDb);
    size_t passed = gainDb.size();
    while (passed > 0 && (gainDb[passed - 1] < level) == (endDb < startDb)) {
        --passed;
    }
    return static_cast<double>(passed) / kEngineRate;
}

// The gain over count sample frames from the step on, which is at first; the tone goes on behind them.
StepResponse step_response(const std::vector<double>& envelope, double fromDb, double toDb, size_t first,
                           size_t count) {
    StepResponse step = {fromDb, toDb, {}, {}, 0.0, 0.0, std::nullopt};
    for (size_t i = 0; i < count; ++i) {
        step.seconds.push_back(static_cast<double>(i) / kEngineRate);
        step.gainDb.push_back(db(envelope[first + i]) - toDb);
    }
    step.startGainDb = db(mean(envelope, first - 2 * kMeanFrames, kMeanFrames)) - fromDb;
    step.endGainDb = db(mean(envelope, first + count - 2 * kMeanFrames, kMeanFrames)) - toDb;
    step.seconds90 = time_to_pass(step.gainDb, step.startGainDb, step.endGainDb);
    return step;
}

}  // namespace

StaticCurve measure_static(const MeasureOptions& options) {
    const PeriodicTone tone(options.toneHz);
    StaticCurve curve;
    curve.toneHz = tone.hz();
    Signal signal;
    for (int step = 0; step < kStaticSteps; ++step) {
        curve.inputDb.push_back(kLowestDb + step * kStaticStepDb);
        tone.append(signal, curve.inputDb.back(), kStaticFrames);
    }
    const Recording recording = record(options, signal);
    const std::vector<double> envelope = tone.envelope(recording.channel[0]);
    for (size_t step = 0; step < kStaticSteps; ++step) {
        curve.outputDb.push_back(
            db(mean(envelope, (step + 1) * kStaticFrames - kStaticCounted, kStaticCounted)));
    }
    return curve;
}

Dynamics measure_dynamics(const MeasureOptions& options) {
    const PeriodicTone tone(options.toneHz);
    const auto [lowDb, highDb] = options.stepDb;
    Signal signal;
    tone.append(signal, lowDb, kLowFrames);
    tone.append(signal, highDb, kHighFrames);
    tone.append(signal, lowDb, kReleaseFrames + kMeanFrames);
    const Recording recording = record(options, signal);
    const std::vector<double> envelope = tone.envelope(recording.channel[0]);
    const size_t up = kLowFrames + static_cast<size_t>(recording.latency.total());
    Dynamics dynamics;
    dynamics.toneHz = tone.hz();
    dynamics.attack = step_response(envelope, lowDb, highDb, up, kHighFrames);
    dynamics.release = step_response(envelope, highDb, lowDb, up + kHighFrames, kReleaseFrames);
    return dynamics;
}

}  // namespace zoq
