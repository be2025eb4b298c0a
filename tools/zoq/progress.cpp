#include "tools/zoq/progress.h"

#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <string>

namespace zoq {

namespace {

constexpr int kWidth = 40;
constexpr std::chrono::milliseconds kInterval(100);

}  // namespace

Progress::Progress(bool enabled) : enabled_(enabled && isatty(STDERR_FILENO) == 1), last_(Clock::now()) {}

Progress::~Progress() {
    if (shown_) {
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::show(double fraction) {
    if (!enabled_ || Clock::now() - last_ < kInterval) {
        return;
    }
    last_ = Clock::now();
    shown_ = true;
    const double done = std::clamp(fraction, 0.0, 1.0);
    std::string bar(kWidth, ' ');
    std::fill_n(bar.begin(), static_cast<int>(done * kWidth), '#');
    std::fprintf(stderr, "\r[%s] %3.0f %%", bar.c_str(), 100.0 * done);
    std::fflush(stderr);
}

}  // namespace zoq
