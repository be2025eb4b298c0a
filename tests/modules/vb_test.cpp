#include "modules/vb/vb.h"

#include <gtest/gtest.h>

#include "tests/support/hops.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/section_model.h"

using namespace android;
using signals::Stereo;

namespace {

constexpr double kPi = std::numbers::pi;

parameterVB factory(float cutoffHz = 80.0f) {
    parameterVB record;
    factory_contents(cutoffHz, &record);
    return record;
}

parameterVB all_stages() {
    parameterVB record = factory();
    record.inputHighpassSections = 2.0f;
    record.bandHighpassSections = record.harmonicLowpassSections = 1.0f;
    return record;
}

Stereo play(const Stereo& x, const parameterVB& vb, float channels = 2.0f) {
    return signals::play(x, [&](float* io) { virtualbassFunction_monoLC(io, channels, &vb); });
}

// Before any reset of the process.
const Stereo kFresh = play(signals::stereo_noise(1, 8), all_stages());

// --- Section sets ---

using Matrix = std::array<float, kSectionMatrixFloats>;

enum Kind { kLowpass, kHighpass };

// Butterworth by its poles: each of the prototype's, scaled to the corner, goes to (1 + s) / (1 - s).
Matrix butterworth(Kind kind, int order, double frequencyHz) {
    const double K = std::tan(kPi * frequencyHz / 48000.0), sign = kind == kLowpass ? 1.0 : -1.0;
    Matrix matrix{};
    double gain = 1.0;
    for (int s = 0; s < order / 2; ++s) {
        const std::complex<double> pole = std::polar(K, kPi - kPi * (2 * s + 1) / (2 * order));
        const std::complex<double> z = (1.0 + pole) / (1.0 - pole);
        gain *= std::norm(1.0 - sign * z) / 4.0;
        const double rows[6] = {1.0, 2.0 * sign, 1.0, 1.0, -2.0 * z.real(), std::norm(z)};
        for (int j = 0; j < 6; ++j) {
            matrix[size_t(3 * j + s)] = float(rows[j]);
        }
    }
    matrix[0] = matrix[6] = float(gain);
    matrix[3] = float(2.0 * sign * gain);
    return matrix;
}

Matrix matrix_of(const float* sos) {
    Matrix matrix;
    std::copy_n(sos, kSectionMatrixFloats, matrix.begin());
    return matrix;
}

// The given values that replace the rule's.
Matrix input_highpass(int cutoffHz) {
    Matrix matrix = butterworth(kHighpass, 4, cutoffHz);
    const auto numerators = [&](std::array<float, 3> first, std::array<float, 3> second) {
        for (size_t j = 0; j < 3; ++j) {
            matrix[3 * j] = first[j];
            matrix[3 * j + 1] = second[j];
        }
    };
    switch (cutoffHz) {
        case 80:
            matrix[3] = -1.97282171f;
            matrix[4] = -1.99999988f;
            break;
        case 100:
            numerators({0.98304242f, -1.9663692f, 0.98332673f}, {1.0f, -1.9997108f, 0.99971086f});
            break;
        case 120:
            numerators({0.97968549f, -1.9596826f, 0.9799971f}, {1.0f, -1.9996819f, 0.99968201f});
            break;
        case 200:
            numerators({0.96637154f, -1.932963f, 0.96659148f}, {1.0f, -1.9997724f, 0.99977249f});
            break;
        case 220:
            numerators({0.96307129f, -1.9264299f, 0.96335864f}, {1.0f, -1.9997017f, 0.99970174f});
            break;
    }
    return matrix;
}

TEST(VirtualBass, SectionSetsFollowTheRuleAndTheSelector) {
    const struct {
        float selector;
        int cutoffHz, bandHz;
    } kSelectors[] = {
        {60.0f, 60, 30},     {70.0f, 70, 30},   {80.0f, 80, 30},   {80.9f, 80, 30},   {100.0f, 100, 50},
        {120.0f, 120, 50},   {150.0f, 150, 70}, {180.0f, 180, 80}, {200.0f, 200, 80}, {220.0f, 220, 80},
        {250.0f, 250, 80},   {250.9f, 250, 80}, {251.0f, 120, 50}, {79.9f, 120, 50},  {59.9f, 120, 50},
        {0.0f, 120, 50},     {-80.0f, 120, 50}, {NAN, 120, 50},    {3e9f, 120, 50},   {-1e30f, 120, 50},
        {INFINITY, 120, 50},
    };
    for (const auto& [selector, cutoffHz, bandHz] : kSelectors) {
        const parameterVB record = factory(selector);
        Matrix lowpass = butterworth(kLowpass, 4, cutoffHz);
        if (cutoffHz == 80) {
            lowpass[4] = 1.99999988f;
        }
        EXPECT_EQ(matrix_of(record.lowpassSos), lowpass) << selector;
        EXPECT_EQ(matrix_of(record.inputHighpassSos), input_highpass(cutoffHz)) << selector;
        EXPECT_EQ(matrix_of(record.bandHighpassSos), butterworth(kHighpass, 2, bandHz)) << selector;
        EXPECT_EQ(matrix_of(record.harmonicLowpassSos), butterworth(kLowpass, 2, 420.0)) << selector;
        EXPECT_EQ(matrix_of(record.outputHighpassSos), butterworth(kHighpass, 4, cutoffHz)) << selector;
    }
}

TEST(VirtualBass, FactoryScalars) {
    const parameterVB p = factory();
    const auto coefficient = [](double seconds) { return float(std::exp(-1.0 / (16000.0 * seconds))); };
    EXPECT_FLOAT_EQ(p.fastAttack, coefficient(10e-6));
    EXPECT_FLOAT_EQ(p.fastRelease, coefficient(1e-3));
    EXPECT_FLOAT_EQ(p.slowAttack, coefficient(100e-3));
    EXPECT_FLOAT_EQ(p.slowRelease, coefficient(100e-3));
    EXPECT_FLOAT_EQ(p.gainSmoothing, coefficient(10e-3));
    EXPECT_FLOAT_EQ(p.harmonicGain, float(std::pow(10.0, 6.0 / 20.0)));
    EXPECT_FLOAT_EQ(p.boostLin, p.harmonicGain);
    EXPECT_FLOAT_EQ(p.outputGain, float(std::pow(10.0, 2.4 / 20.0)));
    EXPECT_EQ(p.compSlope, 0.2f);
    EXPECT_EQ(p.compOffsetDb, 12.0f);
    const float counts[] = {p.lowpassSections, p.inputHighpassSections, p.bandHighpassSections,
                            p.harmonicLowpassSections, p.outputHighpassSections};
    const float expected[] = {2.0f, 0.0f, 0.0f, 0.0f, 2.0f};
    EXPECT_TRUE(std::equal(counts, counts + 5, expected));
}

// --- The signal path ---

struct Model {
    struct Channel {
        CascadeModel in, out;
    };
    const parameterVB& p;
    CascadeModel lowpass{p.lowpassSos, 2}, band{p.bandHighpassSos, 1}, harmonic{p.harmonicLowpassSos, 1};
    Channel channel[2] = {{{p.inputHighpassSos, 2}, {p.outputHighpassSos, 2}},
                          {{p.inputHighpassSos, 2}, {p.outputHighpassSos, 2}}};
    double fast = 0.0, slow = 0.0, gain = 1.0;

    explicit Model(const parameterVB& record) : p(record) {}

    // One point of the control grid: harmonics of the bass, compressed and boosted.
    double grid_point(double x) {
        const double h = x + double(p.harmonicGain) * x * x, level = std::fabs(h);
        fast += (1.0 - double(level > fast ? p.fastAttack : p.fastRelease)) * (level - fast);
        slow += (1.0 - double(level > slow ? p.slowAttack : p.slowRelease)) * (level - slow);
        const double overDb = 20.0 * std::log10((fast + 1e-10) / (slow + 1e-10)) + double(p.compOffsetDb);
        const double target = std::pow(10.0, -0.05 * double(p.compSlope) * std::max(overDb, 0.0));
        gain += (1.0 - double(p.gainSmoothing)) * (target - gain);
        return double(p.boostLin) * gain * double(p.outputGain) * h;
    }

    // One hop of the given channels, planar.
    void process(std::vector<double>& io, int channels) {
        std::vector<double> grid;
        for (size_t n = 0; n < kHopSamples; ++n) {
            const double mono = channels == 2 ? 0.5 * (io[n] + io[kHopSamples + n]) : io[n];
            const double bass = band(lowpass(mono));
            if (n % 3 == 0) {
                grid.push_back(grid_point(bass));
            }
        }
        grid.push_back(2.0 * grid[170] - grid[169]);
        for (size_t n = 0; n < kHopSamples; ++n) {
            const double along = double(n % 3) / 3.0;
            const double bass = harmonic((1.0 - along) * grid[n / 3] + along * grid[n / 3 + 1]);
            for (int c = 0; c < channels; ++c) {
                double& sample = io[size_t(c) * kHopSamples + n];
                sample = channel[c].out(channel[c].in(sample) + bass);
            }
        }
    }
};

TEST(VirtualBass, FollowsTheModelThroughBoostChangesSilenceAndSingleChannelHops) {
    parameterVB record = all_stages();
    Model model(record);
    constexpr size_t kHops = 120;
    Stereo x = signals::stereo_noise(2, kHops, 0.3f);
    const std::vector<float> bass = signals::sine(55.0, x.left.size(), 0.5f);
    const std::vector<float> speech = signals::speech_like(3, x.left.size(), 2.0f);
    for (size_t n = 0; n < x.left.size(); ++n) {
        const size_t hop = n / kHopSamples;
        const bool silent = hop >= 40 && hop < 60;
        x.left[n] = silent ? 0.0f : x.left[n] + bass[n];
        x.right[n] = silent ? 0.0f : x.right[n] + speech[n];
    }
    virtualbassFunction_monoLC_init();
    std::vector<double> exact(2 * kHopSamples);
    double error = 0.0, power = 0.0;
    size_t hop = 0;
    signals::play(x, [&](float* io) {
        const int channels = hop >= 80 && hop < 90 ? 1 : 2;
        record.boostLin = hop < 30 ? 2.5f : hop < 70 ? 5.0f : hop < 75 ? 0.0f : 1.0f;
        std::copy_n(io, exact.size(), exact.begin());
        model.process(exact, channels);
        virtualbassFunction_monoLC(io, float(channels), &record);
        for (size_t n = 0; n < exact.size(); ++n) {
            error += std::pow(double(io[n]) - exact[n], 2.0);
            power += exact[n] * exact[n];
        }
        ++hop;
    });
    // An 80 Hz section rounds 2.5 values of its size to 2^-25 rms per sample and amplifies that by
    // noise_gain(). Six of them in a row, two low-pass and four high-pass, make sqrt 6 times as much; twice
    // that is allowed.
    const double tolerance = 12.0 * 0x1p-25 * CascadeModel(record.lowpassSos, 2)[1].noise_gain();
    EXPECT_LT(std::sqrt(error / power), tolerance);
}

TEST(VirtualBass, SilenceStaysSilent) {
    virtualbassFunction_monoLC_init();
    const std::vector<float> zeros(4 * kHopSamples);
    EXPECT_EQ(play({zeros, zeros}, all_stages()), (Stereo{zeros, zeros}));
}

TEST(VirtualBass, ResetEqualsFresh) {
    play(signals::stereo_noise(5, 10), all_stages());
    EXPECT_NE(play(signals::stereo_noise(1, 8), all_stages()), kFresh);
    virtualbassFunction_monoLC_init();
    EXPECT_EQ(play(signals::stereo_noise(1, 8), all_stages()), kFresh);
}

TEST(VirtualBass, HostileCountsStayInside) {
    const Stereo x = signals::stereo_noise(6, 2);
    parameterVB record = factory();
    for (float count : {-1e30f, -1.0f, NAN, 4.0f, 1e30f, INFINITY}) {
        record.lowpassSections = record.inputHighpassSections = record.bandHighpassSections =
            record.harmonicLowpassSections = record.outputHighpassSections = count;
        for (float channels : {count, 1.0f, 2.0f}) {
            virtualbassFunction_monoLC_init();
            const Stereo y = play(x, record, channels);
            if (!(channels >= 2.0f)) {
                EXPECT_EQ(y.right, x.right) << count;
            }
        }
    }
    virtualbassFunction_monoLC_init();
}

TEST(VirtualBass, EveryLevelGivesTheSameBits) {
    const Stereo x = signals::all_kinds(20);
    for (float sections : {0.0f, 1.0f, 3.0f}) {
        kernels::expect_same_bits([&] {
            virtualbassFunction_monoLC_init();
            int hop = 0;
            return signals::one_after_the_other(signals::play(x, [&](float* io) {
                parameterVB vb;
                factory_contents(hop % 3 == 0 ? 60.0f : 200.0f, &vb);
                vb.inputHighpassSections = vb.bandHighpassSections = vb.harmonicLowpassSections = sections;
                vb.compSlope = 0.1f * float(hop % 4);
                virtualbassFunction_monoLC(io, hop % 4 == 3 ? 1.0f : 2.0f, &vb);
                ++hop;
            }));
        });
    }
}

}  // namespace
