#include "tools/zoq/settings_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "host/configuration.h"
#include "host/settings.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/text_file.h"
#include "tools/zoq/tuning/key_names.h"

namespace zoq {

namespace {

// The route and the processing switch have options of their own, so numbers are what can be set.
bool is_known(const std::string& key) {
    const int row = find_exact(key, Dialect::kString);
    return row >= 0 && android::settings()[row].kind == android::Setting::Kind::kNumber;
}

std::string unknown_message(const std::string& key) {
    int row = find_any_case(key);
    if (const std::optional<Nearest> nearest = nearest_key(key); row < 0 && nearest) {
        row = nearest->row;
    }
    const bool meant = row >= 0 && android::settings()[row].kind == android::Setting::Kind::kNumber;
    return "unknown setting " + quoted(key) +
           (meant ? ", did you mean " + quoted(spelling(row, Dialect::kString)) + "?" : "");
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

void resolve(EngineSettings& settings, const UnknownSetting& unknown) {
    std::vector<std::string> resolved;
    for (const std::string& pairs : settings.settings) {
        for (const std::string& pair : split(pairs)) {
            const size_t equals = std::min(pair.find('='), pair.size());
            const std::string key = pair.substr(0, equals);
            if (!is_known(key)) {
                unknown(unknown_message(key));
            } else if (equals == pair.size() || !is_number(pair.substr(equals + 1))) {
                throw UsageFailure("the value of " + quoted(key) + " must be a number");
            } else {
                resolved.push_back(pair);
            }
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

std::vector<NamedFile> files_of(const EngineSettings& settings) {
    std::vector<NamedFile> files;
    for (const std::string& path : settings.files) {
        files.push_back({"the file of --config", path});
    }
    return files;
}

bool is_number(const std::string& text) {
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && std::isfinite(value);
}

const char* route_name(Route route) {
    return route == Route::kHeadphone ? "headphone" : "speaker";
}

}  // namespace zoq
