#include "tools/zoq/settings_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/configuration.h"
#include "host/settings.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/formatted.h"
#include "tools/zoq/text_file.h"
#include "tools/zoq/tuning/config_text.h"
#include "tools/zoq/tuning/key_names.h"

namespace zoq {

namespace {

// The route and the processing switch have options of their own, so numbers are what can be set.
bool is_known(const std::string& key) {
    const int row = find_exact(key, Dialect::kString);
    return row >= 0 && android::settings()[row].kind == android::Setting::Kind::kNumber;
}

std::vector<std::string> split(const std::string& pairs) {
    std::vector<std::string> parts;
    for (size_t start = 0; start <= pairs.size();) {
        const size_t end = std::min(pairs.find(';', start), pairs.size());
        if (end > start) {
            parts.push_back(pairs.substr(start, end - start));
        }
        start = end + 1;
    }
    return parts;
}

}  // namespace

void add_settings_options(CLI::App& app, EngineSettings& settings) {
    app.add_option_function<std::string>(
           "--route",
           [&settings](const std::string& route) {
               settings.route = route == "headphone" ? Route::kHeadphone : Route::kSpeaker;
           },
           "speaker (default) or headphone")
        ->check(CLI::IsMember({"speaker", "headphone"}))
        ->option_text("ROUTE");
    app.add_option("--volume", settings.volume, "volume index, as of a volume notification (default: 15)")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()))
        ->option_text("INDEX");
    app.add_option("--config", settings.files, "a configuration text to apply; may be repeated")
        ->expected(1)
        ->take_all()
        ->option_text("FILE");
    app.add_option(
           "--set", settings.settings,
           "settings as in a parameter string, such as DS_stereoWidth=80, several joined by ';', over "
           "the configuration; may be repeated")
        ->expected(1)
        ->take_all()
        ->option_text("KEY=VALUE");
    app.add_option("--block", settings.blockFrames,
                   "sample frames per call, 1 to 18432 (default: 512, a hop: no queue, no short queue)")
        ->check(CLI::Range(1, kMaxBlockFrames))
        ->option_text("FRAMES");
}

void resolve(EngineSettings& settings) {
    std::vector<std::string> resolved;
    for (const std::string& pairs : settings.settings) {
        for (const std::string& pair : split(pairs)) {
            const size_t equals = std::min(pair.find('='), pair.size());
            const std::string key = pair.substr(0, equals);
            if (!is_known(key)) {
                throw UsageFailure(unknown_setting(key));
            }
            if (equals == pair.size() || !is_number(pair.substr(equals + 1))) {
                throw UsageFailure("the value of " + quoted(key) + " must be a number");
            }
            resolved.push_back(pair);
        }
    }
    settings.settings = resolved;
    settings.texts.clear();
    std::transform(settings.files.begin(), settings.files.end(), std::back_inserter(settings.texts),
                   read_text);
}

void apply(const EngineSettings& settings, EngineSession& session) {
    for (const std::string& text : settings.texts) {
        android::apply_configuration_text(text.data(), text.size());
    }
    for (const std::string& setting : settings.settings) {
        session.set(setting);
    }
    session.set_route(settings.route);
    if (settings.volume) {
        session.set_volume(*settings.volume);
    }
}

std::string unknown_setting(const std::string& key, const std::vector<std::string>& names) {
    const std::string text = "unknown setting " + quoted(key);
    if (key == "HIFIPARA" || key == "output_device") {
        return text + ": an option of its own stands for it";
    }
    const auto near =
        std::find_if(names.begin(), names.end(), [&key](const auto& name) { return is_near(key, name); });
    if (near != names.end()) {
        return text + ", did you mean " + quoted(*near) + "?";
    }
    const ClosestKey closest = closest_key(key, Dialect::kString);
    const std::string setting = spelling(closest.row, Dialect::kString);
    return closest.likely || is_near(key, setting) ? text + ", did you mean " + quoted(setting) + "?"
                                                   : text + " ('zoq params' lists them)";
}

CLI::Validator number_within(double least, double most) {
    const auto check = [least, most](const std::string& text) {
        double value = 0.0;
        const bool within = CLI::detail::lexical_cast(text, value) && value >= least && value <= most;
        return within ? std::string() : formatted("%s is no number from %g to %g", text.c_str(), least, most);
    };
    return CLI::Validator(check, "NUMBER");
}

bool is_number(const std::string& text) {
    const NumberReading reading = read_number(text);
    return reading.used > 0 && reading.used == text.size() &&
           std::isfinite(static_cast<float>(reading.value));
}

const char* route_name(Route route) {
    return route == Route::kHeadphone ? "headphone" : "speaker";
}

}  // namespace zoq
