#include "tools/zoq/measure/pictures.h"

#include <algorithm>

#include "tools/zoq/formatted.h"
#include "tools/zoq/gnuplot.h"
#include "tools/zoq/measure/plot_script.h"
#include "tools/zoq/measure/sweep.h"

namespace zoq {

namespace {

constexpr size_t kShownLead = 144;       // samples of the impulse response ahead of the expected latency
constexpr size_t kSpeakerTail = 720;     // and behind it
constexpr size_t kHeadphoneTail = 2160;  // the room's responses have 2048

// From where on a gain is drawn, in samples behind the step: a period, which its level needs, and behind a
// step down what still rings of the louder sound.
constexpr double kPeriod = 48.0;
constexpr double kWideningRings = 480.0;
constexpr double kRoomRings = 2200.0;

std::string with_hz(const char* name, double hz) {
    return formatted("%s %.4g Hz", name, hz);
}

std::string both_sides(const std::string& left, const std::string& right) {
    return "plot " + curve(left, kLeftColour, "left") + ", " + curve(right, kRightColour, "right", true) +
           "\n";
}

void draw(PlotScript& script, const Response& response) {
    const std::string left = script.add_levels(response.hz, response.gainDb[0]);
    const std::string right = script.add_levels(response.hz, response.gainDb[1]);
    script.frequency_panel("response: gain", "gain (dB)")
        << gain_range({&response.gainDb[0], &response.gainDb[1]}) << both_sides(left, right);
    const std::string leftPhase = script.add(response.hz, response.phaseDegrees[0], 180.0);
    const std::string rightPhase = script.add(response.hz, response.phaseDegrees[1], 180.0);
    script.frequency_panel("response: phase, latency taken off", "phase (degrees)")
        << "set yrange [-180:180]\nset ytics 45\n"
        << both_sides(leftPhase, rightPhase);
}

void draw(PlotScript& script, const Impulse& impulse, Route route) {
    const size_t first = kImpulseLead - kShownLead;
    const size_t end = kImpulseLead + (route == Route::kHeadphone ? kHeadphoneTail : kSpeakerTail);
    std::vector<double> ms;
    Channels<std::vector<double>> value;
    for (size_t i = first; i < end; ++i) {
        ms.push_back((static_cast<double>(i) + impulse.start) * 1000.0 / kEngineRate);
        value[0].push_back(impulse.value[0][i]);
        value[1].push_back(impulse.value[1][i]);
    }
    const std::string left = script.add(ms, value[0]);
    const std::string right = script.add(ms, value[1]);
    script.panel("impulse response (grey: expected latency)", "time (ms)", "output for an impulse of 1")
        << "set xrange [" << ms.front() << ":" << ms.back() << "]\n"
        << vertical_line((kImpulseLead + impulse.start) * 1000.0 / kEngineRate) << both_sides(left, right);
}

std::string bars(PlotScript& script, const Distortion& distortion, double shift, const char* name,
                 const char* colour) {
    std::vector<double> order = {1.0 + shift};
    std::vector<double> level = {distortion.outputDb};
    for (const double harmonic : distortion.harmonicsDb) {
        order.push_back(order.back() + 1.0);
        level.push_back(harmonic);
    }
    return script.add_levels(order, level) +
           " using 1:2:($1-0.18):($1+0.18):(-120):2 with boxxyerror lc rgb '" + colour + "' title " +
           gnuplot_text(with_hz(name, distortion.toneHz));
}

void draw(PlotScript& script, const Distortion& tone, const Distortion& bass) {
    const std::string toneBars = bars(script, tone, -0.2, "tone", kLeftColour);
    const std::string bassBars = bars(script, bass, 0.2, "bass", kRightColour);
    script.panel("harmonics of the left output", "order (1: the fundamental)", "level (dBFS)")
        << "set xrange [0.4:9.6]\nset xtics 1\nset yrange [" << kPlotFloorDb
        << ":0]\nset style fill solid 1.0 noborder\nplot " << toneBars << ", " << bassBars << "\n";
}

void draw(PlotScript& script, const StaticCurve& statics) {
    const std::string block = script.add_levels(statics.inputDb, statics.outputDb);
    script.panel(with_hz("static curve of the left output, tone", statics.toneHz), "input (dBFS)",
                 "output (dBFS)")
        << "set xrange [-70:0]\nset yrange [-80:0]\nset xtics 10\nset ytics 10\nplot "
        << curve(block, kLeftColour, "output") << ", x with lines lw 1 dt 2 lc rgb '" << kGrey
        << "' title 'output = input'\n";
}

// Points at equal distances on the logarithmic axis.
std::string add_gain(PlotScript& script, const StepResponse& step, double firstFrame) {
    std::vector<double> ms;
    std::vector<double> gain;
    for (double at = firstFrame; at < static_cast<double>(step.gainDb.size()); at *= 1.02) {
        const auto i = static_cast<size_t>(at);
        ms.push_back(step.seconds[i] * 1000.0);
        gain.push_back(step.gainDb[i]);
    }
    return script.add_levels(ms, gain);
}

std::string step_title(const StepResponse& step) {
    return formatted("input %g to %g dBFS", step.fromDb, step.toDb);
}

void draw(PlotScript& script, const Dynamics& dynamics, Route route) {
    const std::string attack = add_gain(script, dynamics.attack, kPeriod);
    const std::string release =
        add_gain(script, dynamics.release, route == Route::kHeadphone ? kRoomRings : kWideningRings);
    const std::vector<double> ends = {dynamics.attack.startGainDb, dynamics.attack.endGainDb,
                                      dynamics.release.startGainDb, dynamics.release.endGainDb};
    script.panel(with_hz("gain behind a step of the input, tone", dynamics.toneHz),
                 "time since the step (ms)", "gain (dB)")
        << gain_range({&ends})
        << "set logscale x\nset xrange [1:10000]\nset xtics (1, 10, 100, 1000, 10000)\nset rmargin 4\nplot "
        << curve(attack, kLeftColour, step_title(dynamics.attack)) << ", "
        << curve(release, kRightColour, step_title(dynamics.release)) << "\n";
}

void draw(PlotScript& script, const Crosstalk& crosstalk) {
    const std::string block = script.add_levels(crosstalk.hz, crosstalk.ratioDb);
    script.frequency_panel("crosstalk: right output against left output, left input alone", "level (dB)")
        << gain_range({&crosstalk.ratioDb}) << "unset key\nplot " << curve(block, kLeftColour, "") << "\n";
}

void draw(PlotScript& script, const Clicks& clicks) {
    const std::string block = script.add_levels(clicks.seconds, clicks.trebleDb);
    std::ostream& out = script.panel(with_hz("switching while a sine plays,", clicks.toneHz), "time (s)",
                                     "level above 8 kHz (dBFS)");
    out << "set yrange [" << kPlotFloorDb << ":0]\nset xrange [" << clicks.seconds.front() << ":"
        << clicks.seconds.back() << "]\nunset key\n";
    for (const auto& [click, name] : {std::pair(clicks.on, "on"), std::pair(clicks.off, "off")}) {
        out << vertical_line(click.seconds) << "set label ' " << name << "' at " << click.seconds
            << ", graph 0.95\n";
    }
    out << "plot " << curve(block, kLeftColour, "") << "\n";
}

}  // namespace

void draw_measurements(const MeasureOptions& options, const Measurements& results, const std::string& path) {
    PlotScript script;
    if (results.response) {
        draw(script, *results.response);
    }
    if (results.impulse) {
        draw(script, *results.impulse, options.engine.route);
    }
    if (results.tone && results.bass) {
        draw(script, *results.tone, *results.bass);
    }
    if (results.staticCurve) {
        draw(script, *results.staticCurve);
    }
    if (results.dynamics) {
        draw(script, *results.dynamics, options.engine.route);
    }
    if (results.crosstalk) {
        draw(script, *results.crosstalk);
    }
    if (results.clicks) {
        draw(script, *results.clicks);
    }
    script.draw(describe(options), path);
}

}  // namespace zoq
