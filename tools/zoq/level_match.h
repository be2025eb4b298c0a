// The unprocessed sound at the loudness of the processed one, for a fair comparison.
#pragma once

#include <cstdint>
#include <string>

#include "tools/zoq/loudness.h"

namespace zoq {

struct LevelMatch {
    bool matched = false;  // both sounds have a loudness
    double gainDb = 0.0;
    int64_t clipped = 0;  // samples that the gain drove out of 16 bits
};

// What the processed sound is like.
struct MatchTarget {
    Loudness before, after;
    int64_t frames;
};

// Writes the input, as the engine is given it, with the gain that brings it to the processed sound's integrated
// loudness; 0 dB where one of the two is silent. Silence follows up to the processed sound's length. Throws Failure or
// Interrupted, and leaves no output file then.
LevelMatch write_level_matched(const std::string& input, const std::string& output,
                               const MatchTarget& target);

}  // namespace zoq
