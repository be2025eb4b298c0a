#include "dsp/section.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/kernel_levels.h"
#include "tests/support/section_model.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

constexpr size_t kHop = kHopSamples;

using Coefficients = SectionCoefficients;

// Low-pass at 80 Hz, peak at 1 kHz, high-pass at 10 kHz: the kinds the modules run.
constexpr Coefficients kSections[] = {
    {{2.72e-5f, 5.44e-5f, 2.72e-5f}, {1.0f, -1.99190795f, 0.99201721f}},
    {{1.0432f, -1.8949f, 0.8677f}, {1.0f, -1.8949f, 0.9109f}},
    {{0.5658262f, -0.5658262f, 0.0f}, {1.0f, -0.1316525f, 0.0f}},
};

// All of x, hop by hop, from zero delays.
std::vector<float> run(Coefficients c, const std::vector<float>& x) {
    std::vector<float> y(x.size());
    float z[2] = {};
    for (size_t at = 0; at < x.size(); at += kHop) {
        filter(c.b, c.a, &x[at], z, &y[at], z);
    }
    return y;
}

TEST(Section, FollowsTheDifferenceEquationAcrossHops) {
    const std::vector<float> x = signals::noise(1, 40 * kHop);
    for (const Coefficients& c : kSections) {
        const std::vector<float> y = run(c, x);
        SectionModel model(c.b, c.a);
        std::vector<float> error;
        for (size_t n = 0; n < x.size(); ++n) {
            error.push_back(float(double(y[n]) - model(double(x[n]))));
        }
        // Each sample rounds five products and sums to 2^-25 of values of the size of the output and of a1
        // times it; the recursion amplifies them as it does white noise.
        const double level = std::max(signals::rms(y), signals::rms(x) * double(c.b[0]));
        EXPECT_LT(signals::rms(error), 5.0 * 0x1p-25 * model.noise_gain() * level);
    }
}

TEST(Section, WorksInPlaceAndUnderBothNames) {
    std::vector<float> x = signals::noise(2, kHop), y(kHop), second(kHop);
    Coefficients c = kSections[1];
    float before[2] = {0.25f, -0.5f}, after[2], z[2] = {0.25f, -0.5f};
    filter(c.b, c.a, x.data(), before, y.data(), after);
    EXPECT_EQ(before[0], 0.25f);
    b_filter(c.b, c.a, x.data(), before, second.data(), after);
    EXPECT_EQ(second, y);
    filter(c.b, c.a, x.data(), z, x.data(), z);
    EXPECT_EQ(x, y);
    EXPECT_EQ(z[0], after[0]);
    EXPECT_EQ(z[1], after[1]);
}

TEST(Section, NormalisesByA0UnlessItIsZeroOrOne) {
    const std::vector<float> x = signals::noise(4, kHop);
    const std::vector<float> expected = run(kSections[1], x);
    for (float a0 : {0.0f, 1.0f, 2.0f}) {
        Coefficients c = kSections[1];
        const float scale = a0 == 2.0f ? 2.0f : 1.0f;
        for (int j = 0; j < 3; ++j) {
            c.b[j] *= scale;
            c.a[j] *= scale;
        }
        c.a[0] = a0;
        std::vector<float> y(kHop);
        const float zero[2] = {};
        float z[2];
        filter(c.b, c.a, x.data(), zero, y.data(), z);
        EXPECT_EQ(y, expected) << a0;
        EXPECT_EQ(c.a[0], a0 == 0.0f ? 0.0f : 1.0f);
        for (int j = 0; j < 3; ++j) {
            EXPECT_EQ(c.b[j], kSections[1].b[j]);
            EXPECT_EQ(c.a[j], j == 0 ? c.a[0] : kSections[1].a[j]);
        }
    }
}

TEST(Section, AMatrixRunsItsFirstSectionsInOrder) {
    float matrix[kSectionMatrixFloats];
    for (int s = 0; s < kMaxSections; ++s) {
        for (int j = 0; j < 3; ++j) {
            matrix[3 * j + s] = kSections[s].b[j];
            matrix[3 * j + 9 + s] = kSections[s].a[j];
        }
    }
    const std::vector<float> x = signals::noise(5, kHop);
    std::vector<float> expected = x;
    const float hostile[] = {-1e30f, -1.0f, 0.99f, NAN, 1.99f, 2.5f, 3.0f, 4.0f, 1e30f, INFINITY};
    const int sections[] = {0, 0, 0, 0, 1, 2, 3, 3, 3, 3};
    for (int i = 0, ran = 0; i < 10; ++i) {
        for (; ran < sections[i]; ++ran) {
            expected = run(kSections[ran], expected);
        }
        std::vector<float> io = x;
        StereoDelays delays[kMaxSections] = {};
        Cascade cascade(1);
        cascade.append_matrix(matrix, hostile[i], delays);
        cascade.run(io.data());
        EXPECT_EQ(io, expected) << hostile[i];
        for (int s = sections[i]; s < kMaxSections; ++s) {
            EXPECT_EQ(delays[s].channel[0].z[0], 0.0f);
            EXPECT_EQ(delays[s].channel[0].z[1], 0.0f);
        }
    }
}

// Sections with poles and zeros all over the unit disc; every third is to be divided by its a0.
Coefficients any_section(int seed) {
    const std::vector<float> u = signals::noise(unsigned(seed), 4);
    const float r = 0.5f + 0.49f * std::fabs(u[0]), q = 0.9f * std::fabs(u[1]);
    Coefficients c = {{1.0f, 2.0f * q * u[3], q * q}, {1.0f, -2.0f * r * u[2], r * r}};
    for (float& value : c.b) {
        value *= seed % 3 == 0 ? 1.7f : 0.6f;
    }
    for (float& value : c.a) {
        value *= seed % 3 == 0 ? 1.7f : 1.0f;
    }
    return c;
}

// Five hops through a cascade; then what the delays hold.
std::vector<float> through_cascade(int sections, int channels, std::vector<float> io) {
    std::vector<StereoDelays> delays(kMaxCascade);
    for (StereoDelays& d : delays) {
        d = {{{{-0.0f, 0.25f}}, {{1e-3f, -0.0f}}}};
    }
    for (size_t at = 0; at < io.size(); at += 2 * kHop) {
        Cascade cascade(channels);
        for (int s = 0; s < sections; ++s) {
            cascade.append(any_section(s + int(at)), delays[size_t(s)]);
        }
        cascade.run(&io[at]);
    }
    for (const StereoDelays& d : delays) {
        for (const Delays& channel : d.channel) {
            io.insert(io.end(), channel.z, channel.z + 2);
        }
    }
    return io;
}

TEST(Section, ACascadeHasTheSameBitsAtEveryLevel) {
    std::vector<std::vector<float>> signals;
    for (float scale : {1.0f, 1e30f, 1e-30f, -0.0f}) {
        signals.push_back(signals::noise(6, 10 * kHop));
        for (float& value : signals.back()) {
            value *= scale;
        }
    }
    signals.push_back(signals::noise(7, 10 * kHop));
    std::vector<float>& changing = signals.back();
    std::fill_n(changing.begin() + 100, 3 * kHop, -0.0f);
    changing[4 * kHop + 1] = 3e38f;
    changing[7 * kHop + 9] = INFINITY;
    for (const std::vector<float>& x : signals) {
        for (int sections = 0; sections <= kMaxCascade; ++sections) {
            for (int channels : {1, 2}) {
                SCOPED_TRACE(testing::Message() << sections << " sections, " << channels << " channels");
                kernels::expect_same_bits([&] { return through_cascade(sections, channels, x); });
            }
        }
    }
}

TEST(Section, ACascadeIsOneSectionAfterTheOtherAndLeavesTheSecondChannelAlone) {
    const std::vector<float> x = signals::noise(8, 2 * kHop);
    for (int sections : {1, 4, kMaxCascade}) {
        for (int channels : {1, 2}) {
            std::vector<float> expected = x;
            std::vector<StereoDelays> model(kMaxCascade), delays(kMaxCascade);
            Cascade cascade(channels);
            for (int s = 0; s < sections; ++s) {
                for (int c = 0; c < channels; ++c) {
                    Coefficients section = any_section(s);
                    float *hop = &expected[size_t(c) * kHop], *z = model[size_t(s)].channel[c].z;
                    filter(section.b, section.a, hop, z, hop, z);
                }
                cascade.append(any_section(s), delays[size_t(s)]);
            }
            std::vector<float> io = x;
            cascade.run(io.data());
            EXPECT_EQ(io, expected);
            EXPECT_EQ(std::memcmp(delays.data(), model.data(), delays.size() * sizeof delays[0]), 0);
        }
    }
}

}  // namespace
