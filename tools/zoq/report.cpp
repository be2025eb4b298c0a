#include "tools/zoq/report.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/zoq/formatted.h"

namespace zoq {

namespace {

using Json = nlohmann::ordered_json;

double seconds(int64_t frames) {
    return static_cast<double>(frames) / kEngineRate;
}

double speed(const RenderResult& result) {
    return result.engineSeconds > 0.0 ? result.playedSeconds / result.engineSeconds : 0.0;
}

std::string row(const char* label, const std::string& value) {
    return formatted("%-16s%s\n", label, value.c_str());
}

std::string row(const char* label, int64_t value, const char* unit) {
    return row(label, formatted("%lld%s%s", static_cast<long long>(value), *unit != '\0' ? " " : "", unit));
}

std::string level_row(const char* label, double level, const char* unit) {
    return row(label, std::isfinite(level) ? formatted("%.1f %s", level, unit) : "silence");
}

std::string level_rows(const Loudness& before, const Loudness& after) {
    return level_row("loudness in", before.integratedLufs, "LUFS") +
           level_row("loudness out", after.integratedLufs, "LUFS") +
           level_row("true peak in", before.truePeakDb, "dBTP") +
           level_row("true peak out", after.truePeakDb, "dBTP") +
           row("full scale in", before.fullScale, "samples") +
           row("full scale out", after.fullScale, "samples");
}

// Two decimals are as exact as the measures are.
Json level(double value) {
    return std::isfinite(value) ? Json(std::round(value * 100.0) / 100.0) : Json(nullptr);
}

Json level_object(const Loudness& loudness) {
    return {{"integratedLufs", level(loudness.integratedLufs)},
            {"truePeakDbtp", level(loudness.truePeakDb)},
            {"fullScaleSamples", loudness.fullScale}};
}

}  // namespace

std::string text_report(const RenderOptions& options, const RenderResult& result) {
    const Latency& delay = result.latency;
    const std::string route = route_name(options.engine.route);
    std::string text = row("input", options.input);
    text += row("format", result.inputFormat);
    text += row("rate", result.inputRate, "Hz");
    text += row("channels", result.inputChannels, "");
    text += row("output", options.output);
    text += row("duration", formatted("%.2f s", seconds(result.frames)));
    text += row("route", route + (options.bypass ? ", bypassed" : ""));
    text += row("block", options.engine.blockFrames, "frames");
    text += row("delay", formatted("%d samples (%.1f ms), %s", delay.total(), 1000.0 * seconds(delay.total()),
                                   options.asPlayed ? "left in" : "taken off"));
    if (result.before && result.after) {
        text += level_rows(*result.before, *result.after);
    }
    if (result.levelMatch) {
        text += row("level match", formatted("%+.1f dB, ", result.levelMatch->gainDb) +
                                       std::to_string(result.levelMatch->clipped) + " samples clipped");
    }
    text += row("clipped in", result.inputClipped, "samples");
    text += row("speed", formatted("%.0f x real time", speed(result)));
    return text;
}

std::string json_report(const RenderOptions& options, const RenderResult& result) {
    const Latency& delay = result.latency;
    Json report = {
        {"input",
         {{"file", options.input},
          {"format", result.inputFormat},
          {"rateHz", result.inputRate},
          {"channels", result.inputChannels},
          {"clippedSamples", result.inputClipped}}},
        {"output", {{"file", options.output}, {"rateHz", kEngineRate}, {"frames", result.framesWritten}}},
        {"durationSeconds", seconds(result.frames)},
        {"route", route_name(options.engine.route)},
        {"processing", !options.bypass},
        {"asPlayed", options.asPlayed},
        {"blockFrames", options.engine.blockFrames},
        {"delaySamples",
         {{"total", delay.total()},
          {"queue", delay.queue},
          {"chain", delay.chain},
          {"widening", delay.widening}}},
        {"timesRealTime", level(speed(result))}};
    if (result.before && result.after) {
        report["before"] = level_object(*result.before);
        report["after"] = level_object(*result.after);
    }
    if (result.levelMatch) {
        report["levelMatch"] = {{"file", options.levelMatch},
                                {"gainDb", level(result.levelMatch->gainDb)},
                                {"clippedSamples", result.levelMatch->clipped}};
    }
    // File names need not be UTF-8.
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zoq
