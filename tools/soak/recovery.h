// An engine behind hostile settings beside one that never saw them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/soak/watch.h"
#include "zoq2processing.h"

namespace soak {

class Recovery {
  public:
    // Ahead of a phase's own settings; the phase is followed when those still in force are hostile to the route.
    void begin(const Phase& phase);
    void hear(const GuardedBlock& block);

    // Lets the phase be played again, in a process of its own, at the same place of the stream by records and modules
    // that are fresh. From two seconds on both must sound alike; returns what is wrong, or an empty text.
    //        play      applies the phase's settings and plays its blocks, each given to hear
    std::string fault(const std::function<void(Recovery& again)>& play) const;
    bool follows() const { return before_ != nullptr; }

  private:
    bool sounds_like(const Recovery& other) const;

    std::unique_ptr<android::parameterMEM> before_;  // the host's books and history when the phase began
    size_t healed_ = 0;                              // values in front of those that are compared
    std::vector<int16_t> heard_;
};

}  // namespace soak
