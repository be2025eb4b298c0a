#include "tools/zoq/simulate/schedule.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "host/settings.h"
#include "tools/zoq/engine_session.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/settings_options.h"
#include "tools/zoq/tuning/key_names.h"

namespace zoq {

namespace {

constexpr int64_t kLargestInt = 0x7FFFFFFF;

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
    return key == "block"        ? !block_sizes(value).empty()
           : key == "rate"       ? whole_number(value, 10) > 0
           : key == "device"     ? device_mask(value) >= 0
           : key == "route"      ? value == "speaker" || value == "headphone"
           : key == "volume"     ? whole_number(value, 10) >= 0
           : key == "processing" ? value == "on" || value == "off"
                                 : is_number(value);
}

bool is_known(const std::string& key) {
    constexpr const char* kHostKeys[] = {"block", "rate", "device", "route", "volume", "processing"};
    return std::find(std::begin(kHostKeys), std::end(kHostKeys), key) != std::end(kHostKeys) ||
           is_setting(key);
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

std::vector<HostEvent> host_events(const std::vector<TimedHostText>& texts) {
    std::vector<HostEvent> events;
    for (const auto& [seconds, text] : texts) {
        if (!(seconds >= 0.0) || seconds > 1e6) {
            throw UsageFailure("a time counts seconds from the start");
        }
        std::istringstream pairs(text);
        for (std::string pair; std::getline(pairs, pair, ';');) {
            const size_t equals = std::min(pair.find('='), pair.size());
            const HostEvent event{seconds, pair.substr(0, equals),
                                  pair.substr(std::min(equals + 1, pair.size()))};
            if (!is_known(event.key)) {
                throw UsageFailure("unknown setting " + zoq::quoted(event.key));
            }
            if (!is_lawful(event.key, event.value)) {
                throw UsageFailure(zoq::quoted(event.value) + " is no value for " + zoq::quoted(event.key));
            }
            events.push_back(event);
        }
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const HostEvent& a, const HostEvent& b) { return a.seconds < b.seconds; });
    return events;
}

std::vector<TimedHostText> read_schedule(const std::string& text, const std::string& name) {
    std::vector<TimedHostText> texts;
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line.resize(std::min(line.find('#'), line.size()));
        std::istringstream words(line);
        std::string time, settings, more;
        if (!(words >> time)) {
            continue;
        }
        if (!is_number(time) || !(words >> settings) || words >> more) {
            throw UsageFailure(zoq::quoted(name) + ", line " + std::to_string(number) +
                               ": \"SECONDS KEY=VALUE;...\" is due");
        }
        texts.emplace_back(std::stod(time), settings);
    }
    return texts;
}

}  // namespace zoq
