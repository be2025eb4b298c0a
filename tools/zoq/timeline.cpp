#include "tools/zoq/timeline.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "host/settings.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/settings_options.h"

namespace zoq {

namespace {

bool is_setting(const std::string& key) {
    const android::Setting* end = android::settings() + android::kSettings;
    return std::any_of(android::settings(), end, [&key](const android::Setting& setting) {
        return setting.stringKey != nullptr && key == setting.stringKey &&
               setting.kind != android::Setting::Kind::kSwitch;
    });
}

// The switch takes a text of its own in parameter strings; here it is on or off.
void check(const std::string& key, const std::string& value) {
    const bool known = key == "route"        ? value == "speaker" || value == "headphone"
                       : key == "processing" ? value == "on" || value == "off"
                       : key == "volume"     ? !value.empty() && value.size() < 10 &&
                                               value.find_first_not_of("0123456789") == std::string::npos
                                         : is_number(value);
    if (key != "route" && key != "processing" && key != "volume" && !is_setting(key)) {
        throw UsageFailure("--at: " + unknown_setting(key));
    }
    if (!known) {
        throw UsageFailure("--at: " + quoted(value) + " is no value for " + quoted(key));
    }
}

void apply(const std::string& key, const std::string& value, EngineSession& session) {
    if (key == "route") {
        session.set_route(value == "headphone" ? Route::kHeadphone : Route::kSpeaker);
    } else if (key == "processing") {
        session.set_processing(value == "on");
    } else if (key == "volume") {
        session.set_volume(std::stoi(value));
    } else {
        session.set(key + "=" + value);
    }
}

}  // namespace

Timeline::Timeline(const std::vector<TimedText>& events) {
    for (const auto& [seconds, text] : events) {
        if (!(seconds >= 0.0) || seconds > 1e6) {
            throw UsageFailure("--at: a time counts seconds from the start of the input");
        }
        std::istringstream pairs(text);
        for (std::string pair; std::getline(pairs, pair, ';');) {
            if (pair.empty()) {
                continue;
            }
            const size_t equals = std::min(pair.find('='), pair.size());
            const Event event{std::llround(seconds * kEngineRate), pair.substr(0, equals),
                              pair.substr(std::min(equals + 1, pair.size()))};
            check(event.key, event.value);
            events_.push_back(event);
        }
    }
    std::stable_sort(events_.begin(), events_.end(),
                     [](const Event& a, const Event& b) { return a.frame < b.frame; });
}

void Timeline::apply_until(int64_t frame, EngineSession& session) {
    for (; next_ < events_.size() && events_[next_].frame <= frame; ++next_) {
        apply(events_[next_].key, events_[next_].value, session);
    }
}

}  // namespace zoq
