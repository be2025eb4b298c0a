#include "tools/zoq/simulate/schedule.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "host/settings.h"
#include "tools/zoq/engine_session.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/settings_options.h"
#include "tools/zoq/tuning/config_text.h"
#include "tools/zoq/tuning/key_names.h"

namespace zoq {

namespace {

constexpr int64_t kLargestInt = 0x7FFFFFFF;
constexpr double kLongestTime = 1e6;  // seconds

// -1 unless all of the text is a number of digits of the base.
int64_t whole_number(const std::string& text, int base) {
    uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    return error == std::errc() && stop == end && value <= kLargestInt ? int64_t{value} : -1;
}

bool is_setting(const std::string& key) {
    const int row = find_exact(key, Dialect::kString);
    return row >= 0 && android::settings()[row].kind == android::Setting::Kind::kNumber;
}

bool is_lawful(const std::string& key, const std::string& value) {
    return key == "block"                              ? !block_sizes(value).empty()
           : key == "rate"                             ? whole_number(value, 10) > 0
           : key == "device" || key == "output_device" ? device_mask(value) >= 0
           : key == "route"                            ? value == "speaker" || value == "headphone"
           : key == "volume"                           ? whole_number(value, 10) >= 0
           : key == "processing"                       ? value == "on" || value == "off"
                                                       : is_number(value);
}

const std::vector<std::string> kHostKeys = {"block", "rate",   "device",     "output_device",
                                            "route", "volume", "processing", "init"};

// "KEY=VALUE", or init.
HostEvent host_event(double seconds, const std::string& pair, const std::string& where) {
    const size_t equals = std::min(pair.find('='), pair.size());
    HostEvent event{seconds, pair.substr(0, equals), pair.substr(std::min(equals + 1, pair.size()))};
    const std::string& key = event.key;
    if (key == "HIFIPARA") {
        throw UsageFailure(where + ": for 'HIFIPARA' write processing=on or processing=off");
    }
    if (std::find(kHostKeys.begin(), kHostKeys.end(), key) == kHostKeys.end() && !is_setting(key)) {
        throw UsageFailure(where + ": " + unknown_setting(key, kHostKeys));
    }
    if (key == "init" ? equals != pair.size() : !is_lawful(key, event.value)) {
        throw UsageFailure(where + ": " +
                           (key == "init"
                                ? std::string("'init' takes no value")
                                : zoq::quoted(event.value) + " is no value for " + zoq::quoted(key)));
    }
    return event;
}

}  // namespace

std::vector<int> block_sizes(const std::string& text) {
    std::vector<int> sizes;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');) {
        const int64_t frames = whole_number(part, 10);
        if (frames < 1 || frames > kMaxBlockFrames) {
            return {};
        }
        sizes.push_back(static_cast<int>(frames));
    }
    return sizes;
}

int64_t device_mask(const std::string& text) {
    return text.starts_with("0x") ? whole_number(text.substr(2), 16) : whole_number(text, 10);
}

std::vector<HostEvent> host_events(double seconds, const std::string& text, const std::string& where) {
    if (!(seconds >= 0.0) || seconds > kLongestTime) {
        throw UsageFailure(where + ": a time counts seconds from the start");
    }
    std::vector<HostEvent> events;
    std::istringstream pairs(text);
    for (std::string pair; std::getline(pairs, pair, ';');) {
        if (!pair.empty()) {
            events.push_back(host_event(seconds, pair, where));
        }
    }
    return events;
}

std::vector<HostEvent> read_schedule(const std::string& text, const std::string& name) {
    std::vector<HostEvent> events;
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string where = zoq::quoted(name) + ", line " + std::to_string(++number);
        line.resize(std::min(line.find('#'), line.size()));
        std::istringstream words(line);
        std::string time, settings, more;
        if (!(words >> time)) {
            continue;
        }
        if (!is_number(time) || !(words >> settings) || words >> more) {
            throw UsageFailure(where + ": \"SECONDS KEY=VALUE;...\" is due");
        }
        const std::vector<HostEvent> some = host_events(read_number(time).value, settings, where);
        events.insert(events.end(), some.begin(), some.end());
    }
    return events;
}

}  // namespace zoq
