// Times of things that compete, taken turn by turn in one process on one core: what else the machine does meets all of
// them alike, and the least time of each is what it takes.
#pragma once

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "dsp/kernel_level.h"

namespace bench {

struct Candidate {
    std::string name;
    android::KernelLevel level;     // at which the engine's part of it runs
    int calls;                      // of one batch
    std::function<void()> prepare;  // ahead of every batch and not timed; brings code and data near
    std::function<void()> call;
    double microseconds = std::numeric_limits<double>::infinity();  // of one call, the least so far
};

// Has the process stay on the core on which it runs.
void stay_on_this_core();

// One batch of every candidate in each turn.
void run(std::vector<Candidate>& candidates, int turns);

}  // namespace bench
