// The tables that follow formulas: transforms and pan curves; and the comparison that guards them all. The sections are
// in the test of the module that runs them.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "dsp/fft_tables.h"
#include "modules/den/den_tables.h"
#include "tables/generated_file.h"

using namespace android;

namespace {

constexpr long double kPi = std::numbers::pi_v<long double>;

}  // namespace

TEST(TransformTables, AreTheNearestFloats) {
    for (int j = 0; j < kBins; ++j) {
        const long double angle = 2.0L * kPi * static_cast<long double>(j) / kFrameSamples;
        const bool quarter = j == 256, half = j == 512;
        EXPECT_EQ(kTwiddleCos[j], quarter ? 0.0f : float(std::cos(angle))) << j;
        EXPECT_EQ(kTwiddleInverseSin[j], half ? 0.0f : float(std::sin(angle))) << j;
        EXPECT_EQ(kTwiddleForwardSin[j], -kTwiddleInverseSin[j]) << j;
    }
    // The quick forms of the products with multiples of an eighth of a turn rest on this.
    const float root = 0.70710677f;
    EXPECT_TRUE(kTwiddleCos[128] == root && kTwiddleForwardSin[128] == -root);
    EXPECT_TRUE(kTwiddleCos[384] == -root && kTwiddleForwardSin[384] == -root);
    EXPECT_TRUE(kTwiddleCos[256] == 0.0f && !std::signbit(kTwiddleCos[256]) &&
                kTwiddleForwardSin[256] == -1.0f);
    for (int span = 1; span < kFrameSamples; span *= 2) {
        for (int offset = 0; offset < span; ++offset) {
            EXPECT_EQ(kStageCos[span + offset], kTwiddleCos[offset * (512 / span)]) << span << " " << offset;
            EXPECT_EQ(kStageSin[span + offset], kTwiddleForwardSin[offset * (512 / span)])
                << span << " " << offset;
        }
    }
    for (int eight = 8; eight < kFrameSamples; eight += 8) {
        for (int i = 0; i < 8; ++i) {
            constexpr int kOrder[] = {0, 1, 4, 5, 2, 3, 6, 7};
            EXPECT_EQ(kStageCosInPairs[eight + i], kStageCos[eight + kOrder[i]]);
            EXPECT_EQ(kStageSinInPairs[eight + i], kStageSin[eight + kOrder[i]]);
        }
    }
    for (int n = 0; n < kFrameSamples; ++n) {
        EXPECT_EQ(kSineWindow[n], float(std::sin(kPi * static_cast<long double>(n) / kFrameSamples))) << n;
    }
}

// A fit is the least-squares one exactly if what it leaves is orthogonal to all it could have used.
TEST(PanCurves, LeaveResidualsOrthogonalToCubics) {
    for (int K = 1; K <= kDenCurveColumns; ++K) {
        const double a = (std::pow(2.0, K / 25.0) - 1.0) / 2.0;
        double moments[4] = {};
        for (int i = 0; i <= 100; ++i) {
            const double u = i / 100.0;
            double curve = 0.0;
            for (const auto& row : kWideCurve) {
                curve = curve * u + double(row[K - 1]);
            }
            for (int power = 0; power < 4; ++power) {
                moments[power] += (std::tanh(a * u) / std::tanh(a) - curve) * std::pow(u, power) / 101.0;
            }
        }
        for (const double moment : moments) {
            EXPECT_NEAR(moment, 0.0, 3e-7) << K;  // coefficients up to 8.5, rounded to float
        }
    }
}

TEST(Comparison, FindsNumbersBeyondTheToleranceAndMissingCredit) {
    using namespace zoq::tables;
    const GeneratedFile remade{
        "file", "// Worst error: 1\nconst float k[3] = {1.0f, -0.5f, 1e-06f};\n", {.ulps = 1}};
    EXPECT_EQ(difference("// Worst error: 2\nconst float k[3] = {1.0000001f,\n -0.5f, 1e-06f};\n", remade),
              "");
    EXPECT_NE(difference("// Worst error:\nconst float k[3] = {1.0000002f, -0.5f, 1e-06f};\n", remade), "");
    EXPECT_NE(difference("// Worst error:\nconst float k[3] = {1.0f, 0.5f, 1e-06f};\n", remade), "");
    EXPECT_NE(difference("// Worst error:\nconst float k[3] = {1.0f, -0.5f};\n", remade), "");
    EXPECT_NE(difference("// Worst error:\nconst float j[3] = {1.0f, -0.5f, 1e-06f};\n", remade), "");
    EXPECT_NE(difference("// Worst error:\nconst float k[3] = {1.0f, -0.5f, nanf};\n", remade), "");

    const GeneratedFile loose{"file", remade.text, {.ulps = 0, .ofPeak = 1e-6}};
    EXPECT_EQ(difference("// Worst error:\nconst float k[3] = {1.0f, -0.5f, 1.5e-06f};\n", loose), "");
    EXPECT_NE(difference("// Worst error:\nconst float k[3] = {1.0f, -0.5f, 2.5e-06f};\n", loose), "");

    const GeneratedFile credited{"file", "// Measured\n// by Jane\n// Worst error: 1e-9\nint k;\n", {}};
    EXPECT_EQ(difference("// Measured\n// by Jane\n// Worst error: 2e-9\nint k;\n", credited), "");
    EXPECT_NE(difference("// Measured\n// Worst error: 2e-9\nint k;\n", credited), "");
    EXPECT_NE(difference("// Measured\n// by Jane\nint k;\n", credited), "");
}
