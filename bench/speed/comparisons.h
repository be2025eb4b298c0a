// What the times say: the rows of the table, each a job against what it is measured by, and how the ratio is to be.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "bench/speed/peers.h"
#include "bench/speed/stopwatch.h"

namespace bench {

struct Speed {
    std::vector<Candidate> candidates;  // measured
    FftwSets fftwSets;
    int turns;
};

enum class Reference {
    kSameLevel,  // another candidate at the level in question
    kScalar,     // another candidate, or the same, at the scalar level
    kWidest      // another candidate at the widest level of this machine
};

struct Comparison {
    const char* job;
    const char* against;
    const char* subject;    // a candidate's name
    const char* reference;  // a candidate's name
    Reference level;
    std::array<double, 3> most;  // the ratio to stay within at 4, 8 and 16 lanes; 0: none
};

std::span<const Comparison> comparisons();

const char* name_of(android::KernelLevel level);

// Names of all candidates in their order.
std::vector<std::string> names(const Speed& speed);

// Of one call; not a number where there is no such candidate. Several of one name are tries at the same thing.
double microseconds(const Speed& speed, const std::string& name, android::KernelLevel level);

// Subject over reference at a level above the scalar one; not a number where there is nothing to compare.
double ratio(const Speed& speed, const Comparison& row, android::KernelLevel level);

// What it has to stay within; 0: nothing.
double most(const Speed& speed, const Comparison& row, android::KernelLevel level);

}  // namespace bench
