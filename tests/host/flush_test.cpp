// The floating-point mode: fixed while a block is played, the caller's own again afterwards.
#include "host/flush_to_zero.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cfloat>

#include "tests/host/engine.h"
#include "tests/host/fake_chain.h"

using namespace android;
using engine::Pcm;

namespace {

// Observed in results, not read from a register: sums a quarter and three quarters of the way from 1 and from
// -1 to the next value tell the four roundings apart.
struct Mode {
    bool flushesResults, flushesInputs;
    float quarter, threeQuarters, negative;
    bool operator==(const Mode&) const = default;
};

Mode mode_here() {
    const volatile float smallest = FLT_MIN, subnormal = 1e-40f, half = 0.5f, large = 1e30f;
    const volatile float halved = smallest * half, scaled = subnormal * large;
    const volatile float one = 1.0f, fraction = 0.25f * FLT_EPSILON, threeFractions = 0.75f * FLT_EPSILON;
    return {halved == 0.0f, scaled == 0.0f, one + fraction, one + threeFractions, -one - threeFractions};
}

constexpr int kRoundings[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

class Flush : public ::testing::Test {
  protected:
    Flush() {
        engine::fresh_engine();
        engine::enable(true);
        engine::play_through_settling(960);
        fake_chain::inside = nullptr;
    }
    ~Flush() override {
        std::fesetround(FE_TONEAREST);
        fake_chain::inside = nullptr;
    }
};

TEST_F(Flush, FlushesAndRoundsToNearestInsideAndRestoresTheCallersMode) {
    const Mode gradual = mode_here();
    ASSERT_EQ(gradual, (Mode{false, false, 1.0f, 1.0f + FLT_EPSILON, -1.0f - FLT_EPSILON}));
    const Mode flushing{true, true, gradual.quarter, gradual.threeQuarters, gradual.negative};
    std::vector<Mode> inside;
    fake_chain::inside = [&](float*) { inside.push_back(mode_here()); };
    for (const int rounding : kRoundings) {
        std::fesetround(rounding);
        const Mode callers = mode_here();
        EXPECT_EQ(callers == gradual, rounding == FE_TONEAREST);
        std::feclearexcept(FE_ALL_EXCEPT);
        engine::played(engine::noise(1, 960));
        engine::played(engine::noise(1, 960));
        engine::played(engine::noise(1, 960));
        EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
        EXPECT_EQ(mode_here(), callers);
    }
    ASSERT_GE(inside.size(), 8u);
    for (const Mode& mode : inside) {
        EXPECT_EQ(mode, flushing);
    }
    std::fesetround(FE_TONEAREST);
    const FlushToZero callersOwn;
    engine::played(engine::noise(1, 960));
    EXPECT_EQ(mode_here(), flushing);
}

TEST_F(Flush, OutputDoesNotDependOnTheCallersRounding) {
    std::vector<std::vector<Pcm>> answers;
    for (const int rounding : kRoundings) {
        engine::fresh_engine();
        engine::enable(true);
        engine::play_through_settling(960);
        std::fesetround(rounding);
        answers.emplace_back();
        std::vector<Pcm>& answer = answers.back();
        for (uint32_t b = 0; b < 10; ++b) {
            answer.push_back(engine::played(engine::noise(b, 960)));
        }
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(answer, answers.front()) << "rounding " << rounding;
    }
}

// A host that traps floating-point exceptions is not stopped by not-a-numbers of the processing.
TEST_F(Flush, CallersTrapsStaySilentInside) {
    int traps = 0;
#if defined(__GLIBC__)
    traps = feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW) == 0 ? fegetexcept() : 0;
#endif
    if (traps == 0) {
        GTEST_SKIP() << "no traps on this machine";
    }
    bool wasNan = false;
    fake_chain::inside = [&](float* out) {
        const volatile float zero = 0.0f;
        out[0] = zero / zero;
        wasNan = out[0] != out[0];
    };
    engine::played(engine::noise(1, 960));
    engine::played(engine::noise(1, 960));
    engine::played(engine::noise(1, 960));
    EXPECT_TRUE(wasNan);
#if defined(__GLIBC__)
    EXPECT_EQ(fegetexcept(), traps);
    fedisableexcept(FE_ALL_EXCEPT);
#endif
}

}  // namespace
