#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/zoq/measure/reports.h"

namespace zoq {

namespace {

constexpr size_t kStepsPerOctave = 24;
constexpr size_t kFirstRow = 15;  // 31.25 Hz; every octave from there has a row

template <typename... Values>
std::string line(const char* format, Values... values) {
    char text[512];
    std::snprintf(text, sizeof text, format, values...);
    return std::string(text) + "\n";
}

// Ten characters wide; a dash where there is nothing to measure.
std::string cell(double value, const char* format = "%10.2f") {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return std::isfinite(value) ? text : "         -";
}

std::string heading(const char* title) {
    return line("\n%s", title);
}

std::string paragraph(const Response& response) {
    std::string text = heading("Response: gain (dB) and phase (degrees, latency taken off)");
    text += line("        Hz  left dB  left deg  right dB right deg");
    for (size_t i = kFirstRow; i < response.hz.size(); i += kStepsPerOctave) {
        text += cell(response.hz[i], "%10.5g") + cell(response.gainDb[0][i], "%9.2f");
        text += cell(response.phaseDegrees[0][i], "%10.1f") + cell(response.gainDb[1][i]);
        text += cell(response.phaseDegrees[1][i], "%10.1f") + "\n";
    }
    return text;
}

// The element behind which only the rest of the energy lies.
int end_of(const std::vector<double>& impulse, double share) {
    double total = 0.0;
    for (const double value : impulse) {
        total += value * value;
    }
    double left = total * (1.0 - share);
    size_t end = impulse.size();
    while (end > 0 && left >= 0.0) {
        --end;
        left -= impulse[end] * impulse[end];
    }
    return static_cast<int>(end);
}

std::string paragraph(const Impulse& impulse) {
    std::string text = heading("Impulse response");
    for (size_t side = 0; side < 2; ++side) {
        const auto [low, high] = std::minmax_element(impulse.value[side].begin(), impulse.value[side].end());
        text += line("%-16s %.4f to %.4f, 99 %% of its energy until %d samples after the sound",
                     side == 0 ? "left" : "right", *low, *high,
                     impulse.start + end_of(impulse.value[side], 0.99));
    }
    return text;
}

std::string paragraph(const LatencyFigures& latency) {
    const Latency& expected = latency.expected;
    std::string text = heading("Latency (samples)");
    text += line("%-16s %d = queue %d + hop %d + widening %d", "expected", expected.total(), expected.queue,
                 expected.chain, expected.widening);
    for (size_t side = 0; side < 2; ++side) {
        const char* name = side == 0 ? "left" : "right";
        const std::optional<Arrival>& arrival = latency.arrival[side];
        text += arrival ? line("%-16s peak at %d (%+d), onset at %d (%+d)", name, arrival->peak,
                               arrival->peak - expected.total(), arrival->onset,
                               arrival->onset - expected.total())
                        : line("%-16s silence", name);
    }
    return text;
}

std::string percent(double level) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g %%", 100.0 * std::pow(10.0, level / 20.0));
    return std::isfinite(level) ? text : "-";
}

std::string paragraph(const char* name, const Distortion& distortion) {
    std::string text = line("%-16s %.2f Hz", name, distortion.toneHz);
    text += "  fundamental   " + cell(distortion.outputDb) + " dBFS\n";
    for (size_t i = 0; i < distortion.harmonicsDb.size(); ++i) {
        const double level = distortion.harmonicsDb[i];
        text += "  H" + std::to_string(i + 2) + std::string(12, ' ') + cell(level) + " dBFS" +
                cell(level - distortion.outputDb) + " dB\n";
    }
    text += "  THD           " + cell(distortion.thdDb) + " dB (" + percent(distortion.thdDb) + ")\n";
    return text + "  THD+N         " + cell(distortion.thdNoiseDb) + " dB (" +
           percent(distortion.thdNoiseDb) + "), 20 Hz to 20 kHz\n";
}

std::string paragraph(const StaticCurve& curve) {
    std::string text = heading("Static curve (dBFS), fundamental of the left output");
    text += line("tone             %.2f Hz", curve.toneHz);
    text += line("     input    output      gain     ratio");
    for (size_t i = 1; i < curve.inputDb.size(); ++i) {
        const double gain = curve.outputDb[i] - curve.inputDb[i];
        const double ratio =
            (curve.inputDb[i] - curve.inputDb[i - 1]) / (curve.outputDb[i] - curve.outputDb[i - 1]);
        text += cell(curve.inputDb[i], "%10.0f") + cell(curve.outputDb[i]) + cell(gain) + cell(ratio) + "\n";
    }
    return text;
}

std::string step_line(const char* name, const StepResponse& step) {
    const double change = step.endGainDb - step.startGainDb;
    return step.seconds90
               ? line("%-16s %.1f ms to nine tenths of %+.2f dB (input %g to %g dBFS)", name,
                      1000.0 * *step.seconds90, change, step.fromDb, step.toDb)
               : line("%-16s none: the gain is the same (input %g to %g dBFS)", name, step.fromDb, step.toDb);
}

std::string paragraph(const Dynamics& dynamics) {
    return heading("Attack and release of the left output's gain") +
           line("tone             %.2f Hz", dynamics.toneHz) + step_line("attack", dynamics.attack) +
           step_line("release", dynamics.release);
}

std::string paragraph(const Crosstalk& crosstalk) {
    std::string text = heading("Crosstalk: right output against left output (dB), left input alone");
    for (size_t i = kFirstRow; i < crosstalk.hz.size(); i += kStepsPerOctave) {
        text += cell(crosstalk.hz[i], "%10.5g") + cell(crosstalk.ratioDb[i]) + "\n";
    }
    return text;
}

std::string click_line(const std::string& name, double stepDb, double trebleDb) {
    return name + std::string(16 - name.size(), ' ') + cell(stepDb) + " dB" + cell(trebleDb) + " dBFS\n";
}

std::string paragraph(const Clicks& clicks) {
    return heading("Clicks of switching, while a sine plays") +
           line("tone             %.0f Hz", clicks.toneHz) +
           line("                 largest step   above 8 kHz") +
           click_line("switching on", clicks.on.stepDb, clicks.on.trebleDb) +
           click_line("switching off", clicks.off.stepDb, clicks.off.trebleDb) +
           click_line("steady", 0.0, clicks.steadyTrebleDb) +
           line("left over        %d of 32768 at most, when switched on again in silence", clicks.leftOver);
}

}  // namespace

std::string text_report(const MeasureOptions& options, const Measurements& results) {
    std::string text = describe(options) + "\n";
    if (results.response) {
        text += paragraph(*results.response);
    }
    if (results.impulse) {
        text += paragraph(*results.impulse);
    }
    if (results.latency) {
        text += paragraph(*results.latency);
    }
    if (results.tone && results.bass) {
        text += heading("Harmonics of the left output") + paragraph("tone", *results.tone) +
                paragraph("bass", *results.bass);
    }
    if (results.staticCurve) {
        text += paragraph(*results.staticCurve);
    }
    if (results.dynamics) {
        text += paragraph(*results.dynamics);
    }
    if (results.crosstalk) {
        text += paragraph(*results.crosstalk);
    }
    if (results.clicks) {
        text += paragraph(*results.clicks);
    }
    return text;
}

}  // namespace zoq
