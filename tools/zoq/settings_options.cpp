#include "tools/zoq/settings_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <limits>
#include <memory>
#include <numeric>

#include "host/configuration.h"
#include "host/settings.h"
#include "tools/zoq/failure.h"

namespace zoq {

namespace {

bool is_number(const std::string& text) {
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
}

// The route and the processing switch have options of their own, so numbers are all that is left.
std::vector<std::string> known_keys() {
    std::vector<std::string> keys;
    for (int row = 0; row < android::kSettings; ++row) {
        const android::Setting& setting = android::settings()[row];
        if (setting.kind == android::Setting::Kind::kNumber) {
            keys.emplace_back(setting.stringKey);
        }
    }
    return keys;
}

// Letters to insert, leave out or replace; another letter case counts as less than another letter.
size_t distance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    std::transform(row.begin(), row.end(), row.begin(), [](size_t edits) { return 2 * edits; });
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] += 2;
        for (size_t j = 0; j < b.size(); ++j) {
            const bool sameLetter = std::tolower(static_cast<unsigned char>(a[i])) ==
                                    std::tolower(static_cast<unsigned char>(b[j]));
            const size_t replaced = diagonal + (a[i] == b[j] ? 0 : sameLetter ? 1 : 2);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 2, diagonal + 2});
        }
    }
    return row.back();
}

std::string unknown_message(const std::string& key, const std::vector<std::string>& keys) {
    const auto nearest = std::min_element(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
        return distance(key, a) < distance(key, b);
    });
    // More than every other letter wrong is no misspelling.
    const bool near = distance(key, *nearest) <= key.size();
    return "unknown setting " + quoted(key) + (near ? ", did you mean " + quoted(*nearest) + "?" : "");
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

// As much of a configuration text as the engine looks at.
std::string read_text(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
    if (!file) {
        throw system_failure("cannot read", quoted(path), errno);
    }
    std::string text(android::kConfigurationMaxBytes, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    if (std::ferror(file.get()) != 0) {
        throw system_failure("cannot read", quoted(path), errno);
    }
    return text;
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
    const std::vector<std::string> keys = known_keys();
    std::vector<std::string> resolved;
    for (const std::string& pairs : settings.settings) {
        for (const std::string& pair : split(pairs)) {
            const size_t equals = std::min(pair.find('='), pair.size());
            const std::string key = pair.substr(0, equals);
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
                unknown(unknown_message(key, keys));
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

const char* route_name(Route route) {
    return route == Route::kHeadphone ? "headphone" : "speaker";
}

}  // namespace zoq
