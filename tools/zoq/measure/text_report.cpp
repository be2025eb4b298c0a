#include <algorithm>
#include <cmath>

#include "tools/zoq/formatted.h"
#include "tools/zoq/measure/reports.h"

namespace zoq {

namespace {

constexpr size_t kStepsPerOctave = 24;
constexpr size_t kFirstRow = 15;  // 31.25 Hz; every octave from there has a row

// A dash where there is nothing to measure.
std::string cell(double value, int width = 10, int decimals = 2) {
    return std::isfinite(value) ? formatted("%*.*f", width, decimals, value) : formatted("%*s", width, "-");
}

std::string hz_cell(double hz) {
    return formatted("%10.5g", hz);
}

std::string heading(const char* title) {
    return std::string("\n") + title + "\n";
}

std::string paragraph(const Response& response) {
    std::string text = heading("Response: gain (dB) and phase (degrees, latency taken off)");
    text += formatted("        Hz  left dB  left deg  right dB right deg\n");
    for (size_t i = kFirstRow; i < response.hz.size(); i += kStepsPerOctave) {
        text += hz_cell(response.hz[i]) + cell(response.gainDb[0][i], 9);
        text += cell(response.phaseDegrees[0][i], 10, 1) + cell(response.gainDb[1][i]);
        text += cell(response.phaseDegrees[1][i], 10, 1) + "\n";
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
        text +=
            formatted("%-16s %.4f to %.4f, 99 %% of its energy by sample %d\n", side == 0 ? "left" : "right",
                      *low, *high, impulse.start + end_of(impulse.value[side], 0.99));
    }
    return text;
}

std::string paragraph(const LatencyFigures& latency) {
    const Latency& expected = latency.expected;
    std::string text = heading("Latency (samples)");
    text += formatted("%-16s %d = queue %d + hop %d + widening %d\n", "expected", expected.total(),
                      expected.queue, expected.chain, expected.widening);
    for (size_t side = 0; side < 2; ++side) {
        const char* name = side == 0 ? "left" : "right";
        const std::optional<Arrival>& arrival = latency.arrival[side];
        text += arrival ? formatted("%-16s peak at %d (%+d), onset at %d (%+d)\n", name, arrival->peak,
                                    arrival->peak - expected.total(), arrival->onset,
                                    arrival->onset - expected.total())
                        : formatted("%-16s silence\n", name);
    }
    return text;
}

std::string percent(double level) {
    return std::isfinite(level) ? formatted("%.3g %%", 100.0 * std::pow(10.0, level / 20.0)) : "-";
}

std::string paragraph(const char* name, const Distortion& distortion) {
    std::string text = formatted("%-16s %.2f Hz\n", name, distortion.toneHz);
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
    text += formatted("tone             %.2f Hz\n", curve.toneHz);
    text += formatted("     input    output      gain     ratio\n");
    for (size_t i = 1; i < curve.inputDb.size(); ++i) {
        const double gain = curve.outputDb[i] - curve.inputDb[i];
        const double ratio =
            (curve.inputDb[i] - curve.inputDb[i - 1]) / (curve.outputDb[i] - curve.outputDb[i - 1]);
        text += cell(curve.inputDb[i], 10, 0) + cell(curve.outputDb[i]) + cell(gain) + cell(ratio) + "\n";
    }
    return text;
}

std::string step_line(const char* name, const StepResponse& step) {
    const double change = step.endGainDb - step.startGainDb;
    const char* limiter =
        step.limited()
            ? "                 the limiter takes part: a lower --step shows the compressor alone\n"
            : "";
    return step.seconds90 ? formatted("%-16s %.1f ms to nine tenths of %+.2f dB (input %g to %g dBFS)\n%s",
                                      name, 1000.0 * *step.seconds90, change, step.fromDb, step.toDb, limiter)
                          : formatted("%-16s none: the gain is the same (input %g to %g dBFS)\n", name,
                                      step.fromDb, step.toDb);
}

std::string paragraph(const Dynamics& dynamics) {
    return heading("Attack and release of the left output's gain") +
           formatted("tone             %.2f Hz\n", dynamics.toneHz) + step_line("attack", dynamics.attack) +
           step_line("release", dynamics.release);
}

std::string paragraph(const Crosstalk& crosstalk) {
    std::string text = heading("Crosstalk: right output against left output (dB), left input alone");
    for (size_t i = kFirstRow; i < crosstalk.hz.size(); i += kStepsPerOctave) {
        text += hz_cell(crosstalk.hz[i]) + cell(crosstalk.ratioDb[i]) + "\n";
    }
    return text;
}

std::string click_line(const std::string& name, double stepDb, double trebleDb) {
    return name + std::string(16 - name.size(), ' ') + cell(stepDb) + " dB" + cell(trebleDb) + " dBFS\n";
}

std::string paragraph(const Clicks& clicks) {
    return heading("Clicks of switching, while a sine plays") +
           formatted("tone             %.0f Hz\n", clicks.toneHz) +
           formatted("                 largest step   above 8 kHz\n") +
           click_line("switching on", clicks.on.stepDb, clicks.on.trebleDb) +
           click_line("switching off", clicks.off.stepDb, clicks.off.trebleDb) +
           click_line("steady", 0.0, clicks.steadyTrebleDb) +
           formatted("left over        %d of 32768 at most, when switched on again in silence\n",
                     clicks.leftOver);
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
