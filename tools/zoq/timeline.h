// What happens while a file plays: settings, output device, volume and the processing switch, each at its time.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tools/zoq/engine_session.h"

namespace zoq {

// Seconds of the input, and "KEY=VALUE;..." as in a parameter string, where volume=INDEX, route=speaker or
// route=headphone, and processing=on or processing=off stand for what a host does by other means.
using TimedText = std::pair<double, std::string>;

class Timeline {
  public:
    Timeline() = default;
    // Throws UsageFailure for an unknown key, for a value that is none, and for a time that is none.
    explicit Timeline(const std::vector<TimedText>& events);

    // Applies, in order of time, every event up to this sample frame of the input that has not been applied.
    void apply_until(int64_t frame, EngineSession& session);

    bool empty() const { return events_.empty(); }

  private:
    struct Event {
        int64_t frame;
        std::string key, value;
    };

    std::vector<Event> events_;
    size_t next_ = 0;
};

}  // namespace zoq
