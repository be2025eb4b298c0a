#include "dsp/grid.h"

#include <gtest/gtest.h>

#include <cfloat>

#include "tests/support/kernel_levels.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

using Floats = std::vector<float>;

constexpr size_t kGrid = kGridPoints, kHop = kHopSamples;
constexpr float kFence = 777.0f;  // behind every output: what lies beyond is not written

template <typename Routine>
Floats run(size_t count, Routine routine) {
    Floats y(count + 1, kFence);
    routine(y.data());
    EXPECT_EQ(y.back(), kFence);
    y.pop_back();
    return y;
}

TEST(Grid, PowersAndLogarithmsAreRoundedOnce) {
    Floats x = signals::noise(1, kGrid, 9.0f);
    x[0] = 0.0f;
    x[1] = 1.0f;
    x[2] = -1.0f;
    Floats y = run(kGrid, [&](float* out) { power(10.0f, x.data(), out); });
    EXPECT_EQ(Floats(y.begin(), y.begin() + 3), (Floats{1.0f, 10.0f, 0.1f}));
    for (size_t k = 0; k < kGrid; ++k) {
        ASSERT_EQ(y[k], float(std::exp2(std::log2(10.0L) * static_cast<long double>(x[k])))) << x[k];
    }
    y[0] = 0.0f;
    y[1] = 1.0f;
    y[2] = 100.0f;
    Floats logs = y;
    b_log10(logs.data());
    EXPECT_EQ(Floats(logs.begin(), logs.begin() + 3), (Floats{-INFINITY, 0.0f, 2.0f}));
    for (size_t k = 3; k < kGrid; ++k) {
        ASSERT_EQ(logs[k], float(std::log2(static_cast<long double>(y[k])) / std::log2(10.0L)));
    }
}

TEST(Grid, InterpolatesAlongStraightLines) {
    const Floats x = signals::noise(2, kGrid);
    const Floats y = run(kHop, [&](float* out) { interp1_fac3(x.data(), out); });
    for (size_t n = 0; n < kHop; ++n) {
        const size_t j = std::min(n / 3, kGrid - 2);  // the last line is drawn on
        const double along = double(n) / 3.0 - double(j);
        const double line = double(x[j]) * (1.0 - along) + double(x[j + 1]) * along;
        ASSERT_NEAR(y[n], line, 5e-7) << n;  // four roundings of values up to 5
        if (n % 3 == 0) {
            ASSERT_EQ(y[n], x[n / 3]);
        }
    }
    const Floats constant(kGrid, 0.625f);
    EXPECT_EQ(run(kHop, [&](float* out) { interp1_fac3(constant.data(), out); }), Floats(kHop, 0.625f));
}

TEST(Grid, ElementWiseRoutines) {
    const Floats x = signals::noise(3, 2 * kHop);
    Floats magnitude, added, divided;
    for (size_t i = 0; i < kHop; ++i) {
        magnitude.push_back(x[i] < 0.0f ? -x[i] : x[i]);
        added.push_back(x[i] + x[kHop + i]);
        divided.push_back(x[i] / 3.0f);
    }
    const auto first = [](const Floats& all, size_t count) { return Floats(&all[0], &all[count]); };
    EXPECT_EQ(run(kGrid, [&](float* y) { b_abs(x.data(), y); }), first(magnitude, kGrid));
    EXPECT_EQ(run(2, [&](float* y) { c_abs(x.data(), y); }), first(magnitude, 2));
    EXPECT_EQ(run(3, [&](float* y) { d_abs(x.data(), y); }), first(magnitude, 3));
    EXPECT_EQ(run(kHop, [&](float* y) { sum(x.data(), y); }), added);
    EXPECT_EQ(run(kHop, [&](float* y) { b_rdivide(x.data(), 3.0f, y); }), divided);
    EXPECT_EQ(run(4, [&](float* y) { squeeze(x.data(), y); }), first(x, 4));
    EXPECT_EQ(run(2, [&](float* y) { b_squeeze(x.data(), y); }), first(x, 2));
    EXPECT_EQ(rdivide(1.0f, 3.0f), 0.33333334f);
    EXPECT_EQ(rdivide(1.0f, 0.0f), INFINITY);
    float negative[3] = {-0.0f, -INFINITY, 1.0f};
    d_abs(negative, negative);
    EXPECT_FALSE(std::signbit(negative[0]));
    EXPECT_EQ(negative[1], INFINITY);
}

TEST(Grid, EveryLevelGivesTheSameBits) {
    Floats x = signals::noise(4, 2 * kHop);
    std::fill_n(x.begin() + 7, 40, -0.0f);
    std::fill_n(x.begin() + kHop + 3, 20, -0.0f);
    x[1] = x[kHop + 1] = 3e38f;
    x[2] = INFINITY;
    x[kHop + 2] = -INFINITY;
    kernels::expect_same_bits([&] { return run(kHop, [&](float* y) { sum(x.data(), y); }); });
    kernels::expect_same_bits([&] {
        Floats inPlace = x;
        sum(inPlace.data(), inPlace.data());
        return inPlace;
    });
    for (float gain : {1.0f, -0.3f, 0.0f}) {
        kernels::expect_same_bits([&] {
            Floats y = signals::noise(5, 2 * kHop);
            add_scaled(x.data(), gain, 2 * kHopSamples, y.data());
            scale(gain, kHopSamples, y.data());
            return y;
        });
    }
}

// Values whose logarithm or power lies so near the middle of two floats that the vectors' series alone round wrongly.
constexpr float kNearMiddle[] = {0x1.67288cp-3f, 0x1.5c7284p-2f, 0x1.69bb9ep-2f, 0x1.591624p-1f,
                                 0x1.5632bap-3f, 0x1.cf1696p-2f, 0x1.b9dd8cp+1f, 0x1.de56cp+1f};

// Every exponent and sign, both sides of the powers' limits, the neighbours of 1, whole powers of ten, and what has no
// logarithm. No subnormals: the audio thread flushes them.
Floats wide_values() {
    Floats x = {0.0f,     -0.0f,   INFINITY, -INFINITY, NAN,    -1.0f, -3e-39f, FLT_MIN,      FLT_MAX,
                -FLT_MAX, -37.92f, -37.93f,  -45.2f,    38.53f, 38.5f, -200.0f, 1.0f - 6e-8f, 1.0f + 1.2e-7f};
    x.insert(x.end(), std::begin(kNearMiddle), std::end(kNearMiddle));
    for (int exponent = -126; exponent < 128; ++exponent) {
        for (const float m : signals::noise(uint32_t(exponent + 200), 6)) {
            x.push_back(std::ldexp(1.0f + std::fabs(m) * 0.19f, exponent));
            x.push_back(std::ldexp(m, exponent));
        }
    }
    for (float k = -45.0f; k < 40.0f; ++k) {
        x.insert(x.end(), {k, float(std::pow(10.0, double(k)))});
    }
    x.resize((x.size() + kGrid - 1) / kGrid * kGrid, 0.5f);
    return x;
}

TEST(Grid, EveryLevelGivesTheSameCurves) {
    const Floats x = wide_values();
    for (size_t from = 0; from < x.size(); from += kGrid) {
        const Floats grid(&x[from], &x[from] + kGrid);
        const auto logarithms = [&](float* y) {
            std::copy(grid.begin(), grid.end(), y);
            b_log10(y);
        };
        kernels::expect_same_bits([&] { return run(kGrid, logarithms); });
        for (const float base : {10.0f, 2.0f, 0.5f, -1.0f, 10.000001f}) {
            kernels::expect_same_bits(
                [&] { return run(kGrid, [&](float* y) { power(base, grid.data(), y); }); });
        }
    }
    Floats points = signals::noise(5, kGrid);  // whose lines hold no subnormals
    points[20] = points[21] = -0.0f;
    points[30] = 3e38f;
    points[31] = INFINITY;
    points[32] = -INFINITY;
    kernels::expect_same_bits([&] { return run(kHop, [&](float* y) { interp1_fac3(points.data(), y); }); });
}

}  // namespace
