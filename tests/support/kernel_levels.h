// The forms of the kernels that this machine can run, and their results beside those of the scalar form.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <span>
#include <vector>

#include "dsp/kernel_level.h"
#include "host/flush_to_zero.h"

namespace kernels {

// Without the scalar one.
inline std::vector<android::KernelLevel> fast_levels() {
    std::vector<android::KernelLevel> levels;
    for (int i = 1; i < android::kKernelLevels; ++i) {
        if (android::has_kernel_level(android::KernelLevel(i))) {
            levels.push_back(android::KernelLevel(i));
        }
    }
    return levels;
}

// A level for a scope.
class Level {
  public:
    explicit Level(android::KernelLevel level) : before_(android::kernel_level()) {
        android::set_kernel_level(level);
    }
    ~Level() { android::set_kernel_level(before_); }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

  private:
    android::KernelLevel before_;
};

// Runs work, which returns a vector of floats, at every level, and expects the scalar form's bits each time. A
// not-a-number equals any other. Subnormals are flushed, as everywhere on the audio thread: the vector unit of 32-bit
// ARM cannot do otherwise.
template <typename Work>
void expect_same_bits(Work work) {
    const auto run = [&](android::KernelLevel level) {
        const Level scope(level);
        const android::FlushToZero flush;
        return work();
    };
    const std::vector<float> expected = run(android::KernelLevel::kScalar);
    for (const android::KernelLevel level : fast_levels()) {
        const std::vector<float> actual = run(level);
        ASSERT_EQ(actual.size(), expected.size());
        for (size_t i = 0; i < actual.size(); ++i) {
            const bool bothNan = actual[i] != actual[i] && expected[i] != expected[i];
            ASSERT_TRUE(bothNan || std::bit_cast<uint32_t>(actual[i]) == std::bit_cast<uint32_t>(expected[i]))
                << "level " << int(level) << ", value " << i << ": " << actual[i] << " instead of "
                << expected[i];
        }
    }
}

}  // namespace kernels
