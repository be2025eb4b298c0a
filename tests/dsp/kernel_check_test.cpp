// A build with ZOQ_CHECK_KERNELS aborts where a kernel's forms differ by a bit, and nowhere else.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include "dsp/kernel_level.h"

using namespace android;

namespace {

// Two words that a kernel changes: a flag, which each call turns over, and what the call makes of it.
struct Memory {
    float flag, value;
};

float scalarValue, fastValue;

void scalar_form(Memory* memory) {
    *memory = {1.0f - memory->flag, scalarValue};
}

void fast_form(Memory* memory) {
    *memory = {1.0f - memory->flag, fastValue};
}

float result(float scalar, float fast) {
    constexpr Kernel<Memory*> kKernel("two_forms", scalar_form, fast_form, fast_form, fast_form);
    scalarValue = scalar;
    fastValue = fast;
    Memory memory = {0.0f, 0.0f};
    kKernel.run({{&memory, sizeof memory}}, &memory);
    EXPECT_EQ(memory.flag, 1.0f) << "both forms begin with what the caller left";
    return memory.value;
}

TEST(KernelCheck, LetsEqualFormsPass) {
    const float otherNan = std::bit_cast<float>(0x7FC00001u);
    EXPECT_EQ(result(0.5f, 0.5f), 0.5f);
    EXPECT_TRUE(std::isnan(result(NAN, otherNan)));
}

TEST(KernelCheck, AbortsWhereABitDiffers) {
    if (kernel_level() == KernelLevel::kScalar) {
        GTEST_SKIP() << "no fast forms on this machine";
    }
    EXPECT_DEATH(result(0.5f, std::nextafter(0.5f, 1.0f)), "two_forms: differs .*word 1");
    EXPECT_DEATH(result(0.0f, -0.0f), "two_forms: differs");
    EXPECT_DEATH(result(NAN, INFINITY), "two_forms: differs");
}

}  // namespace
