#include "tools/zoq/measure/measurements.h"

#include "tools/zoq/formatted.h"
#include "tools/zoq/measure/clicks.h"
#include "tools/zoq/measure/distortion.h"
#include "tools/zoq/measure/dynamics.h"
#include "tools/zoq/measure/response.h"
#include "tools/zoq/measure/sweep.h"

namespace zoq {

namespace {

void measure_by_sweep(const MeasureOptions& options, Measurements& results) {
    const std::set<Measure>& what = options.what;
    if (what.count(Measure::kResponse) + what.count(Measure::kImpulse) + what.count(Measure::kLatency) > 0) {
        const SweepResult sweep = play_sweep(options);
        if (what.count(Measure::kResponse) > 0) {
            results.response = response_of(sweep);
        }
        if (what.count(Measure::kImpulse) > 0) {
            results.impulse = sweep.impulse;
        }
        if (what.count(Measure::kLatency) > 0) {
            results.latency = latency_of(sweep);
        }
    }
    if (what.count(Measure::kCrosstalk) > 0) {
        MeasureOptions leftOnly = options;
        leftOnly.excitation = Excitation::kLeft;
        results.crosstalk = crosstalk_of(play_sweep(leftOnly));
    }
}

}  // namespace

Measurements measure(const MeasureOptions& options) {
    Measurements results;
    measure_by_sweep(options, results);
    if (options.what.count(Measure::kDistortion) > 0) {
        results.tone = measure_distortion(options, options.toneHz);
        results.bass = measure_distortion(options, options.bassHz);
    }
    if (options.what.count(Measure::kStatic) > 0) {
        results.staticCurve = measure_static(options);
    }
    if (options.what.count(Measure::kDynamics) > 0) {
        results.dynamics = measure_dynamics(options);
    }
    if (options.what.count(Measure::kClicks) > 0) {
        results.clicks = measure_clicks(options);
    }
    return results;
}

const char* excitation_name(Excitation excitation) {
    switch (excitation) {
        case Excitation::kMid:
            return "mid";
        case Excitation::kSide:
            return "side";
        case Excitation::kLeft:
            break;
    }
    return "left";
}

std::string describe(const MeasureOptions& options) {
    std::string text = std::string(route_name(options.engine.route)) + ", " +
                       excitation_name(options.excitation) + formatted(", %g dBFS", options.levelDb);
    if (options.engine.volume) {
        text += ", volume " + std::to_string(*options.engine.volume);
    }
    for (const std::string& file : options.engine.files) {
        text += ", " + file;
    }
    for (const std::string& setting : options.engine.settings) {
        text += ", " + setting;
    }
    return text;
}

}  // namespace zoq
