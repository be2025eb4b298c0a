#include "tools/zoq/report.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace zoq {

namespace {

using Json = nlohmann::ordered_json;

double seconds(int64_t frames) {
    return static_cast<double>(frames) / kEngineRate;
}

double speed(const RenderResult& result) {
    return result.engineSeconds > 0.0 ? result.playedSeconds / result.engineSeconds : 0.0;
}

template <typename... Values>
std::string row(const char* label, const char* format, Values... values) {
    char text[512];
    int length = std::snprintf(text, sizeof text, "%-16s", label);
    length += std::snprintf(text + length, sizeof text - static_cast<size_t>(length), format, values...);
    return std::string(text) + "\n";
}

std::string level_row(const char* label, double level, const char* unit) {
    return std::isfinite(level) ? row(label, "%.1f %s", level, unit) : row(label, "silence");
}

std::string level_rows(const Loudness& before, const Loudness& after) {
    return level_row("loudness in", before.integratedLufs, "LUFS") +
           level_row("loudness out", after.integratedLufs, "LUFS") +
           level_row("true peak in", before.truePeakDb, "dBTP") +
           level_row("true peak out", after.truePeakDb, "dBTP") +
           row("full scale in", "%lld samples", static_cast<long long>(before.fullScale)) +
           row("full scale out", "%lld samples", static_cast<long long>(after.fullScale));
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
    std::string text = row("input", "%s", options.input.c_str());
    text += row("format", "%s", result.inputFormat.c_str());
    text += row("rate", "%d Hz", result.inputRate);
    text += row("channels", "%d", result.inputChannels);
    text += row("output", "%s", options.output.c_str());
    text += row("duration", "%.2f s", seconds(result.frames));
    text += row("route", "%s%s", route_name(options.engine.route), options.bypass ? ", bypassed" : "");
    text += row("block", "%d frames", options.engine.blockFrames);
    text += row("delay", "%d samples (%.1f ms), %s", delay.total(), 1000.0 * seconds(delay.total()),
                options.asPlayed ? "left in" : "taken off");
    if (result.before && result.after) {
        text += level_rows(*result.before, *result.after);
    }
    text += row("clipped in", "%lld samples", static_cast<long long>(result.inputClipped));
    text += row("speed", "%.0f x real time", speed(result));
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
    // File names need not be UTF-8.
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zoq
