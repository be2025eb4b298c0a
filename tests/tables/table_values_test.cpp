// The tables that follow formulas: transforms, pan curves, sections; and the comparison that guards them all. What
// the report of zoq tables holds as well is left to it.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "dsp/fft_tables.h"
#include "modules/den/den_tables.h"
#include "modules/vb/vb_tables.h"
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

// Poles inside the unit circle, and the response that the name promises, from the transfer function itself.
TEST(BassSections, AreButterworthFiltersAtTheirCutoffs) {
    const auto gain = [](const float* sos, int sections, double hz) {
        const std::complex<double> z = std::polar(1.0, -2.0 * std::numbers::pi * hz / kSampleRateHz);
        std::complex<double> h = 1.0;
        for (int s = 0; s < sections; ++s) {
            const auto c = [&](int j) { return double(sos[3 * j + s]); };
            h *= (c(0) + z * (c(1) + z * c(2))) / (c(3) + z * (c(4) + z * c(5)));
        }
        return std::abs(h);
    };
    const double half = std::sqrt(0.5);
    for (const VbSections& set : kVbSections) {
        // Four input high-passes have zeros a little off z = 1, and floats near 1 cost the low corners digits.
        EXPECT_NEAR(gain(set.lowpassSos, 2, set.cutoffHz), half, 0.01) << set.cutoffHz;
        EXPECT_NEAR(gain(set.outputHighpassSos, 2, set.cutoffHz), half, 0.01) << set.cutoffHz;
        EXPECT_NEAR(gain(set.inputHighpassSos, 2, set.cutoffHz), half, 0.01) << set.cutoffHz;
        EXPECT_NEAR(gain(set.outputHighpassSos, 2, 8000), 1.0, 1e-3) << set.cutoffHz;
        EXPECT_NEAR(gain(set.inputHighpassSos, 2, 8000), 1.0, 1e-3) << set.cutoffHz;
        EXPECT_NEAR(gain(set.bandHighpassSos, 1,
                         set.cutoffHz <= 80    ? 30
                         : set.cutoffHz <= 120 ? 50
                         : set.cutoffHz == 150 ? 70
                                               : 80),
                    half, 0.01)
            << set.cutoffHz;
    }
    EXPECT_NEAR(gain(kVbHarmonicLowpassSos, 1, 420), half, 1e-3);
    EXPECT_NEAR(gain(kVbHarmonicLowpassSos, 1, 0), 1.0, 1e-3);
}

// The set in every factory record, coefficient by coefficient.
TEST(BassSections, HaveTheGivenSetFor80Hz) {
    const VbSections& set = kVbSections[2];
    ASSERT_EQ(set.cutoffHz, 80);
    const float lowpass[] = {7.41426642e-10f,
                             1.0f,
                             0.0f,
                             1.48285328e-09f,
                             1.99999988f,
                             0.0f,
                             7.41426642e-10f,
                             1.0f,
                             0.0f,
                             1.0f,
                             1.0f,
                             0.0f,
                             -1.98072743f,
                             -1.99190795f,
                             0.0f,
                             0.980836093f,
                             0.99201721f,
                             0.0f};
    const float input[] = {0.986410797f, 1.0f,         0.0f, -1.97282171f, -1.99999988f, 0.0f,
                           0.986410797f, 1.0f,         0.0f, 1.0f,         1.0f,         0.0f,
                           -1.98072743f, -1.99190795f, 0.0f, 0.980836093f, 0.99201721f,  0.0f};
    const float output[] = {0.986410797f, 1.0f,         0.0f, -1.97282159f, -2.0f,       0.0f,
                            0.986410797f, 1.0f,         0.0f, 1.0f,         1.0f,        0.0f,
                            -1.98072743f, -1.99190795f, 0.0f, 0.980836093f, 0.99201721f, 0.0f};
    for (int i = 0; i < kSectionMatrixFloats; ++i) {
        EXPECT_EQ(set.lowpassSos[i], lowpass[i]) << i;
        EXPECT_EQ(set.inputHighpassSos[i], input[i]) << i;
        EXPECT_EQ(set.outputHighpassSos[i], output[i]) << i;
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
