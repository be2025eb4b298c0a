// One episode: an engine as after loading, driven through random phases under the watch's eyes.
#pragma once

#include <string>

#include "tools/soak/watch.h"

namespace soak {

struct Outcome {
    std::string fault;          // empty when everything held
    int64_t sampleFrame = 0;    // where in the episode
    std::string circumstances;  // of the fault
    Totals totals;
};

// The same seed gives the same episode, whatever was played before.
Outcome play_episode(uint64_t seed, int64_t sampleFrames);

}  // namespace soak
