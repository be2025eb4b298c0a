// A progress bar on standard error, when that is a terminal.
#pragma once

#include <chrono>

namespace zoq {

class Progress {
  public:
    explicit Progress(bool enabled);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();  // clears the line

    void show(double fraction);

  private:
    using Clock = std::chrono::steady_clock;

    const bool enabled_;
    bool shown_ = false;
    Clock::time_point last_;
};

}  // namespace zoq
