#include "dsp/pcm.h"

#include <gtest/gtest.h>

#include "tests/support/kernel_levels.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

constexpr size_t kHop = kHopSamples;

std::vector<int16_t> every_value(size_t from) {
    std::vector<int16_t> values(2 * kHop);
    for (size_t i = 0; i < values.size(); ++i) {
        values[i] = int16_t(uint16_t(from + i));
    }
    return values;
}

TEST(Pcm, EveryValueComesBackAtEveryLevel) {
    for (size_t from = 0; from < 65536; from += 2 * kHop) {
        const std::vector<int16_t> values = every_value(from);
        kernels::expect_same_bits([&] {
            std::vector<float> planar(2 * kHop);
            from_pcm(values.data(), &planar[0], &planar[kHop]);
            std::vector<int16_t> back(2 * kHop);
            to_pcm(&planar[0], &planar[kHop], back.data());
            EXPECT_EQ(back, values);
            return planar;
        });
    }
}

TEST(Pcm, TruncatesWrapsAndSaturatesAlikeAtEveryLevel) {
    std::vector<float> planar = signals::noise(1, 2 * kHop, 3.0f);
    const float hard[] = {1.0f,      -1.0f,      -0.0f,    NAN,       -NAN,       INFINITY,
                          -INFINITY, 65535.996f, 65536.0f, -65536.0f, -65536.01f, 1e30f,
                          -1e30f,    3e38f,      1e-40f,   -3e-5f,    0.99999f,   65000.3f};
    for (size_t i = 0; i < std::size(hard); ++i) {
        planar[7 + i] = planar[kHop + 40 + i] = hard[i];
    }
    kernels::expect_same_bits([&] {
        std::vector<int16_t> values(2 * kHop);
        to_pcm(&planar[0], &planar[kHop], values.data());
        for (size_t i = 0; i < kHop; ++i) {
            EXPECT_EQ(values[2 * i], to_int16(planar[i] * 32768.0f)) << planar[i];
        }
        return std::vector<float>(values.begin(), values.end());
    });
}

}  // namespace
