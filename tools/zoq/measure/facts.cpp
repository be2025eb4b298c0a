#include "tools/zoq/measure/facts.h"

#include <algorithm>
#include <limits>

namespace zoq {

namespace {

constexpr const char* kSides[] = {"left", "right"};
constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
constexpr size_t kStepRows = 100;  // sample frames between two points of a gain's course in a table

void add(Facts& facts, const Response& response) {
    for (size_t side = 0; side < 2; ++side) {
        facts.series.push_back(
            {"response", kSides[side], "gain", "dB", "frequency", "Hz", response.hz, response.gainDb[side]});
        facts.series.push_back({"response", kSides[side], "phase", "degrees", "frequency", "Hz", response.hz,
                                response.phaseDegrees[side]});
    }
}

void add(Facts& facts, const Impulse& impulse) {
    std::vector<double> position;
    for (size_t i = 0; i < impulse.value[0].size(); ++i) {
        position.push_back(static_cast<double>(i) + impulse.start);
    }
    for (size_t side = 0; side < 2; ++side) {
        facts.series.push_back(
            {"impulse", kSides[side], "response", "1", "time", "samples", position, impulse.value[side]});
    }
}

void add(Facts& facts, const LatencyFigures& latency) {
    facts.figures.push_back({"latency", "", "expected", "samples", double(latency.expected.total())});
    facts.figures.push_back({"latency", "", "expected queue", "samples", double(latency.expected.queue)});
    for (size_t side = 0; side < 2; ++side) {
        const std::optional<Arrival>& arrival = latency.arrival[side];
        const char* name = kSides[side];
        facts.figures.push_back({"latency", name, "onset", "samples", arrival ? arrival->onset : kNothing});
        facts.figures.push_back({"latency", name, "peak", "samples", arrival ? arrival->peak : kNothing});
    }
}

void add(Facts& facts, const std::string& what, const Distortion& distortion) {
    const auto add_figure = [&](const char* quantity, const char* unit, double value) {
        facts.figures.push_back({"distortion", "left", what + " " + quantity, unit, value});
    };
    add_figure("frequency", "Hz", distortion.toneHz);
    add_figure("output", "dBFS", distortion.outputDb);
    add_figure("THD", "dB", distortion.thdDb);
    add_figure("THD+N", "dB", distortion.thdNoiseDb);
    Series harmonics = {"distortion", "left", what + " harmonics", "dBFS", "order", "1", {}, {}};
    for (size_t i = 0; i < distortion.harmonicsDb.size(); ++i) {
        harmonics.x.push_back(static_cast<double>(i + 2));
        harmonics.values.push_back(distortion.harmonicsDb[i]);
    }
    facts.series.push_back(harmonics);
}

void add(Facts& facts, const StaticCurve& curve) {
    facts.series.push_back(
        {"static", "left", "output", "dBFS", "input", "dBFS", curve.inputDb, curve.outputDb});
}

void add(Facts& facts, const std::string& what, const StepResponse& step) {
    facts.figures.push_back({"dynamics", "left", what + " to 90 %", "s", step.seconds90.value_or(kNothing)});
    facts.figures.push_back(
        {"dynamics", "left", what + " gain change", "dB", step.endGainDb - step.startGainDb});
    facts.figures.push_back({"dynamics", "left", what + " limited", "1", step.limited() ? 1.0 : 0.0});
    Series gain = {"dynamics", "left", what + " gain", "dB", "time", "s", {}, {}};
    for (size_t i = 0; i < step.seconds.size(); i += kStepRows) {
        gain.x.push_back(step.seconds[i]);
        gain.values.push_back(step.gainDb[i]);
    }
    facts.series.push_back(gain);
}

void add(Facts& facts, const Clicks& clicks) {
    const auto add_figure = [&](const char* quantity, const char* unit, double value) {
        facts.figures.push_back({"clicks", "", quantity, unit, value});
    };
    add_figure("on step", "dB", clicks.on.stepDb);
    add_figure("on treble", "dBFS", clicks.on.trebleDb);
    add_figure("off step", "dB", clicks.off.stepDb);
    add_figure("off treble", "dBFS", clicks.off.trebleDb);
    add_figure("steady treble", "dBFS", clicks.steadyTrebleDb);
    add_figure("left over", "1/32768", clicks.leftOver);
    facts.series.push_back({"clicks", "", "treble", "dBFS", "time", "s", clicks.seconds, clicks.trebleDb});
}

}  // namespace

Facts facts_of(const Measurements& results) {
    Facts facts;
    if (results.response) {
        add(facts, *results.response);
    }
    if (results.impulse) {
        add(facts, *results.impulse);
    }
    if (results.latency) {
        add(facts, *results.latency);
    }
    if (results.tone && results.bass) {
        add(facts, "tone", *results.tone);
        add(facts, "bass", *results.bass);
    }
    if (results.staticCurve) {
        add(facts, *results.staticCurve);
    }
    if (results.dynamics) {
        add(facts, "attack", results.dynamics->attack);
        add(facts, "release", results.dynamics->release);
    }
    if (results.crosstalk) {
        facts.series.push_back({"crosstalk", "", "right against left", "dB", "frequency", "Hz",
                                results.crosstalk->hz, results.crosstalk->ratioDb});
    }
    if (results.clicks) {
        add(facts, *results.clicks);
    }
    return facts;
}

}  // namespace zoq
