#include "bench/speed/stopwatch.h"

#include <sched.h>

#include <algorithm>
#include <ctime>

namespace bench {

namespace {

// Time the process has run, in whatever threads: what others took the processor for does not count, and what a peer
// did beside the caller does.
double process_microseconds() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return 1e6 * static_cast<double>(now.tv_sec) + 1e-3 * static_cast<double>(now.tv_nsec);
}

double batch(const Candidate& candidate) {
    android::set_kernel_level(candidate.level);
    candidate.prepare();
    const double start = process_microseconds();
    for (int i = 0; i < candidate.calls; ++i) {
        candidate.call();
    }
    return (process_microseconds() - start) / candidate.calls;
}

}  // namespace

void stay_on_this_core() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    sched_setaffinity(0, sizeof one, &one);
}

void run(std::vector<Candidate>& candidates, int turns) {
    const android::KernelLevel level = android::kernel_level();
    for (int turn = 0; turn < turns; ++turn) {
        for (Candidate& candidate : candidates) {
            candidate.microseconds = std::min(candidate.microseconds, batch(candidate));
        }
    }
    android::set_kernel_level(level);
}

}  // namespace bench
