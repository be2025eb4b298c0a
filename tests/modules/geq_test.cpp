#include "modules/geq/geq.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/hops.h"
#include "tests/support/kernel_levels.h"

using namespace android;
using signals::Stereo;

namespace {

using Gains = std::array<float, kGeqBands>;

constexpr Gains kMixedDb = {6.0f, -4.0f, 3.0f, -12.0f, 0.0f, 9.0f, -2.5f, 12.0f, -7.0f};

parameterGEQ record_with(const Gains& gainsDb) {
    parameterGEQ record;
    factory_contents(&record);
    std::copy(gainsDb.begin(), gainsDb.end(), record.bandGainDb);
    return record;
}

Stereo play(const Stereo& x, const parameterGEQ& geq, float channels = 2.0f) {
    return signals::play(x, [&](float* io) {
        graphicalEQ(io, channels, geq.bandCount, geq.bandGainDb, geq.bandQ, geq.bandWarp);
    });
}

// Before any reset of the process.
const Stereo kFresh = play(signals::stereo_noise(1, 8), record_with(kMixedDb));

// A peaking filter in the analog domain: (s^2 + V s / Q + 1) / (s^2 + s / Q + 1) for a boost, upside down for
// a cut.
double peak_db(double frequencyHz, double centreHz, double gainDb) {
    const std::complex<double> s = signals::analog(frequencyHz, centreHz);
    const double q = std::sqrt(2.0), v = std::pow(10.0, std::fabs(gainDb) / 20.0);
    const double boost = signals::db((s * s + v * s / q + 1.0) / (s * s + s / q + 1.0));
    return gainDb < 0.0 ? -boost : boost;
}

TEST(GraphicEqualizer, ResponseIsThatOfTheAnalogPeaks) {
    for (int k = 0; k < kGeqBands; ++k) {
        const double centre = std::tan(std::numbers::pi * 62.5 * std::exp2(k) / signals::kRateHz);
        EXPECT_FLOAT_EQ(record_with({}).bandWarp[k], float(centre));
    }
    constexpr size_t kSamples = 12 * kHopSamples;  // the lowest band rings for 350 samples per neper
    Gains single{};
    single[0] = 12.0f;
    for (const Gains& gainsDb : {kMixedDb, single}) {
        graphicalEQ_init();
        const std::vector<float> impulse = signals::impulse(0, kSamples);
        const Stereo h = play({impulse, impulse}, record_with(gainsDb));
        EXPECT_EQ(h.left, h.right);
        for (int third = 0; third <= 25; ++third) {
            const double frequencyHz = 62.5 * std::exp2(third / 3.0);
            double expectedDb = 0.0;
            for (int k = 0; k < kGeqBands; ++k) {
                expectedDb += peak_db(frequencyHz, 62.5 * std::exp2(k), double(gainsDb[size_t(k)]));
            }
            // Numerator and denominator, near 4 K^2 here, are sums of coefficients rounded to 6e-8.
            const double K = std::tan(std::numbers::pi * frequencyHz / signals::kRateHz);
            ASSERT_NEAR(signals::db(signals::response(h.left, frequencyHz)), expectedDb,
                        2e-4 + 4e-7 / (K * K))
                << frequencyHz;
        }
    }
}

TEST(GraphicEqualizer, RedesignsOnAChangedGainOnly) {
    const Stereo first = signals::stereo_noise(3, 2), second = signals::stereo_noise(4, 2);
    parameterGEQ record = record_with({0.0f, 0.0f, 3.0f});
    const auto second_part = [&](float gainDb, float Q, float warp) {
        graphicalEQ_init();
        record = record_with({0.0f, 0.0f, 3.0f});
        play(first, record);
        record.bandGainDb[2] = gainDb;
        record.bandQ = Q;
        record.bandWarp[2] = warp;
        return play(second, record);
    };
    const float Q = record.bandQ, warp = record.bandWarp[2];
    const Stereo steady = second_part(3.0f, Q, warp);
    EXPECT_EQ(second_part(3.0f, 0.7f, 0.3f), steady);
    EXPECT_NE(second_part(3.0001f, Q, warp), steady);
    EXPECT_NE(second_part(3.0001f, 0.7f, 0.3f), second_part(3.0001f, Q, warp));
    // After a reset even a gain seen before is designed anew.
    graphicalEQ_init();
    record = record_with({0.0f, 0.0f, 3.0f});
    const Stereo octave = play(first, record);
    graphicalEQ_init();
    record.bandQ = 0.7f;
    EXPECT_NE(play(first, record), octave);
}

TEST(GraphicEqualizer, ABypassedBandKeepsItsState) {
    const Stereo a = signals::stereo_noise(5, 1), b = signals::stereo_noise(6, 1),
                 c = signals::stereo_noise(7, 1);
    graphicalEQ_init();
    const Stereo whole = play(signals::joined(a, c), record_with(kMixedDb));
    graphicalEQ_init();
    Stereo parts = play(a, record_with(kMixedDb));
    EXPECT_EQ(play(b, record_with({})), b);
    EXPECT_EQ(signals::joined(parts, play(c, record_with(kMixedDb))), whole);
}

TEST(GraphicEqualizer, ChannelsAreSeparate) {
    const Stereo x = signals::stereo_noise(8, 4);
    graphicalEQ_init();
    const Stereo both = play(x, record_with(kMixedDb));
    graphicalEQ_init();
    const Stereo swapped = play({x.right, x.left}, record_with(kMixedDb));
    EXPECT_EQ(swapped, (Stereo{both.right, both.left}));
    // A single-channel hop touches neither the samples nor the memory of channel 1.
    graphicalEQ_init();
    const Stereo mono = play(x, record_with(kMixedDb), 1.0f);
    EXPECT_EQ(mono.left, both.left);
    EXPECT_EQ(mono.right, x.right);
    EXPECT_EQ(play(x, record_with(kMixedDb)).right, both.right);
}

TEST(GraphicEqualizer, ResetEqualsFresh) {
    graphicalEQ_init();
    play(signals::stereo_noise(9, 4), record_with({12.0f, 12.0f, 12.0f}));
    graphicalEQ_init();
    EXPECT_EQ(play(signals::stereo_noise(1, 8), record_with(kMixedDb)), kFresh);
}

TEST(GraphicEqualizer, CountsOfBandsAreTruncatedAndBounded) {
    const Stereo x = signals::stereo_noise(10, 1);
    const std::vector<float> gainsDb(kGeqMaxBands, 2.0f), warps(kGeqMaxBands, 0.1f);
    const auto bands = [&](float count) {
        graphicalEQ_init();
        return signals::play(
            x, [&](float* io) { graphicalEQ(io, 2.0f, count, gainsDb.data(), 1.0f, warps.data()); });
    };
    for (float none : {-1e30f, -2.0f, 0.0f, 0.99f, NAN}) {
        EXPECT_EQ(bands(none), x) << none;
    }
    EXPECT_EQ(bands(2.99f), bands(2.0f));
    EXPECT_NE(bands(15.0f), bands(14.0f));
    for (float many : {16.0f, 1e30f, INFINITY}) {
        EXPECT_EQ(bands(many), bands(15.0f)) << many;
    }
}

TEST(GraphicEqualizer, EveryLevelGivesTheSameBits) {
    const Stereo x = signals::all_kinds(20);
    const std::vector<float> warps(kGeqMaxBands, 0.1f);
    for (int bands = 1; bands <= kGeqMaxBands; ++bands) {
        kernels::expect_same_bits([&] {
            graphicalEQ_init();
            int hop = 0;
            return signals::one_after_the_other(signals::play(x, [&](float* io) {
                std::vector<float> gainsDb = signals::noise(uint32_t(hop / 3), kGeqMaxBands, 12.0f);
                gainsDb[size_t(hop % kGeqMaxBands)] = 0.0f;  // bypassed for a hop
                graphicalEQ(io, hop % 4 == 3 ? 1.0f : 2.0f, float(bands), gainsDb.data(), 1.0f, warps.data());
                ++hop;
            }));
        });
    }
}

}  // namespace
