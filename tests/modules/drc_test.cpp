#include "modules/drc/drc.h"

#include <gtest/gtest.h>

#include "tests/support/hops.h"
#include "tests/support/kernel_levels.h"

using namespace android;
using signals::Stereo;

namespace {

parameterDRC record_with(float gainDb) {
    parameterDRC record;
    factory_contents(&record);
    initialize_dynamicRangeCompression_C(gainDb, &record);
    return record;
}

void process(float* io, float channels, const parameterDRC& drc) {
    dynamicRangeCompression_LC(io, channels, &drc.compThreshold, &drc.limThreshold, &drc.expThreshold);
}

Stereo play(const Stereo& x, const parameterDRC& drc, float channels = 2.0f) {
    return signals::play(x, [&](float* io) { process(io, channels, drc); });
}

// Before any reset of the process.
const Stereo kFresh = play(signals::stereo_noise(1, 8), record_with(12.0f));

// dB of reduction at rest for a level d above the threshold.
double reduction_db(double d, double knee, double slope) {
    const double bent =
        knee > 0.0 && std::fabs(d) < knee / 2 ? std::pow(d + knee / 2, 2) / (2 * knee) : std::max(d, 0.0);
    return -slope * bent;
}

// The whole compressor in dB and double precision, point after point.
struct Model {
    struct Channel {
        double level = -50.0, comp = 0.0, lim = 0.0;
    } channel[2];

    static double smooth(double last, double target, float attack, float release) {
        const double c = double(target > last ? attack : release);
        return target + c * (last - target);
    }

    // Advances one channel to a peak; returns its reduction in dB.
    double reduction(Channel& c, double peak, const parameterDRC& p, double makeupDb) {
        const double levelDb = 20.0 * std::log10(peak + 1e-10);
        // As floats the two weights do not quite add up to 1, which shows at -200 dB.
        c.level = levelDb > c.level ? (levelDb + c.level) / 2
                                    : double(0.0001f) * levelDb + double(0.9999f) * c.level;
        c.comp = smooth(
            c.comp, reduction_db(levelDb - double(p.compThreshold), double(p.compKnee), double(p.compSlope)),
            p.compAttack, p.compRelease);
        const double made = levelDb + makeupDb - c.comp - double(p.limThreshold);
        c.lim = smooth(c.lim, reduction_db(made, double(p.limKnee), double(p.limSlope)), p.limAttack,
                       p.limRelease);
        return c.comp + c.lim;
    }

    void process(std::vector<double>& io, int channels, const parameterDRC& p) {
        const double makeupDb = 20.0 * std::log10(double(p.compMakeup));
        std::vector<double> gain;
        for (int j = 0; j < kGridPoints; ++j) {
            double reductionDb = -HUGE_VAL, smoothedDb = -HUGE_VAL;
            for (int c = 0; c < channels; ++c) {
                double peak = 0.0;
                for (int n = std::max(3 * j - 1, 0); n <= 3 * j + 1; ++n) {
                    peak = std::max(peak, std::fabs(io[size_t(c * kHopSamples + n)]));
                }
                reductionDb = std::max(reductionDb, reduction(channel[c], peak, p, makeupDb));
                smoothedDb = std::max(smoothedDb, channel[c].level);
            }
            const double belowDb = std::min(smoothedDb - makeupDb - double(p.expThreshold), 0.0);
            gain.push_back(std::pow(10.0, (makeupDb - reductionDb + belowDb * double(p.expSlope)) / 20.0));
        }
        gain.push_back(2.0 * gain[170] - gain[169]);
        for (int n = 0; n < channels * kHopSamples; ++n) {
            const size_t j = size_t(n % kHopSamples / 3);
            const double along = n % kHopSamples % 3 / 3.0;
            double& sample = io[size_t(n)];
            sample = std::clamp(sample * ((1.0 - along) * gain[j] + along * gain[j + 1]), -0.999, 0.999);
        }
    }
};

TEST(Compressor, FollowsTheModel) {
    constexpr size_t kHops = 400;
    constexpr float kGainsDb[] = {12.6f, 3.0f, 21.0f, 7.5f, 18.0f};
    constexpr float kLevels[] = {0.3f, 1.0f, 0.01f, 0.0f, 2e-4f, 0.8f, 0.05f};
    Stereo x = signals::stereo_noise(2, kHops);
    for (size_t n = 0; n < x.left.size(); ++n) {
        const size_t hop = n / kHopSamples;
        x.left[n] *= kLevels[hop / 8 % 7];
        x.right[n] *= kLevels[hop / 11 % 7];
    }
    state_not_empty_init();
    Model model;
    std::vector<double> exact(2 * kHopSamples);
    size_t hop = 0;
    signals::play(x, [&](float* io) {
        const parameterDRC record = record_with(kGainsDb[hop / 50 % 5]);
        const int channels = hop / 30 % 3 == 1 ? 1 : 2;
        std::copy_n(io, exact.size(), exact.begin());
        model.process(exact, channels, record);
        process(io, float(channels), record);
        for (size_t n = 0; n < exact.size(); ++n) {
            // In dB, levels of 50 to 200 are rounded to 2e-6..8e-6, and the smoothed level gathers 1e4 of
            // them: some 1e-4 dB in all, 1.2e-5 of the gain.
            ASSERT_NEAR(double(io[n]), exact[n], 3e-5 * std::fabs(exact[n])) << hop << " " << n;
        }
        ++hop;
    });
}

TEST(Compressor, BracketsStepAtTheirLowerEnds) {
    const struct {
        float gainDb;
        double c, ratio, releaseSeconds, attackSeconds;
    } kBrackets[] = {
        {-3.0f, 0.75, 3, 0.5, 0.005},   {4.999f, 0.75, 3, 0.5, 0.005},   {5.0f, 0.8, 4, 0.4, 0.003},
        {9.999f, 0.8, 4, 0.4, 0.003},   {10.0f, 0.82, 6, 0.3, 0.002},    {12.6f, 0.82, 6, 0.3, 0.002},
        {14.999f, 0.82, 6, 0.3, 0.002}, {15.0f, 0.85, 8, 0.2, 0.0015},   {20.999f, 0.85, 8, 0.2, 0.0015},
        {21.0f, 0.88, 10, 0.08, 0.001}, {100.0f, 0.88, 10, 0.08, 0.001},
    };
    for (const auto& [gainDb, c, ratio, releaseSeconds, attackSeconds] : kBrackets) {
        const parameterDRC p = record_with(gainDb);
        const double thresholdDb = -double(gainDb) / c * (1.0 + ratio) / ratio;
        EXPECT_FLOAT_EQ(p.compThreshold, float(thresholdDb)) << gainDb;
        EXPECT_FLOAT_EQ(p.compKnee, float(std::fabs(thresholdDb) / 2));
        EXPECT_FLOAT_EQ(p.compMakeup, float(std::exp(double(gainDb) * std::log(10.0) / 20.0)));
        EXPECT_FLOAT_EQ(p.compSlope, float((1.0 - ratio) / ratio));
        EXPECT_EQ(p.compAttack, float(1.0 / std::exp(1.0 / (attackSeconds * 48000.0))));
        EXPECT_EQ(p.compRelease, float(1.0 / std::exp(1.0 / (releaseSeconds * 48000.0))));
        const float second[] = {p.limThreshold, p.limKnee,   p.limMakeup,
                                p.limSlope,     p.limAttack, p.limRelease};
        const float expected[] = {-1.0f, 0.5f, 1.0f, -0.95f, 0.8928125f, 0.9775794f};
        EXPECT_TRUE(std::equal(second, second + 6, expected));
        EXPECT_EQ(p.expThreshold, -60.0f);
        EXPECT_EQ(p.expSlope, 0.5f);
    }
}

TEST(Compressor, ResetEqualsFresh) {
    play(signals::stereo_noise(8, 20), record_with(21.0f));
    EXPECT_NE(play(signals::stereo_noise(1, 8), record_with(12.0f)), kFresh);
    state_not_empty_init();
    EXPECT_EQ(play(signals::stereo_noise(1, 8), record_with(12.0f)), kFresh);
}

TEST(Compressor, HostileChannelCountsStayInside) {
    const Stereo x = signals::stereo_noise(9, 1);
    for (float none : {-1e30f, -1.0f, 0.0f, 0.99f, NAN}) {
        EXPECT_EQ(play(x, record_with(12.0f), none), x) << none;
    }
    state_not_empty_init();
    const Stereo two = play(x, record_with(12.0f));
    for (float many : {3.0f, 1e30f, INFINITY}) {
        state_not_empty_init();
        EXPECT_EQ(play(x, record_with(12.0f), many), two) << many;
    }
}

TEST(Compressor, EveryLevelGivesTheSameBits) {
    const Stereo x = signals::all_kinds(20);
    for (float kneeDb : {-1.0f, 0.0f, 6.0f}) {
        kernels::expect_same_bits([&] {
            state_not_empty_init();
            int hop = 0;
            return signals::one_after_the_other(signals::play(x, [&](float* io) {
                parameterDRC drc = record_with(hop % 5 == 0 ? 3.0f : 21.0f);
                drc.compKnee = kneeDb;
                drc.expThreshold = hop % 3 == 0 ? -20.0f : -60.0f;
                process(io, hop % 4 == 3 ? 1.0f : 2.0f, drc);
                ++hop;
            }));
        });
    }
}

}  // namespace
