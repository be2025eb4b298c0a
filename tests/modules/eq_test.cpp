#include "modules/eq/eq.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/hops.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/section_model.h"

using namespace android;
using signals::Stereo;

namespace {

parameterEQ factory() {
    parameterEQ record;
    factory_contents(&record);
    return record;
}

// Every stage at work, with denominators that ask for normalisation.
parameterEQ all_stages() {
    parameterEQ record = factory();
    record.peakSectionCount = 3.0f;
    record.trebleSectionCount = 2.0f;
    record.finalPassCount = 2.0f;
    constexpr float kPeak[6][3] = {{1.1f, 0.8f, 2.0f}, {-1.6f, -0.2f, 0.4f}, {0.6f, 0.1f, -0.6f},
                                   {1.0f, 1.0f, 2.0f}, {-1.6f, 0.3f, -1.2f}, {0.7f, 0.2f, 0.8f}};
    std::memcpy(record.peakSos, kPeak, sizeof kPeak);
    constexpr float kSecondTreble[6] = {0.7f, 0.2f, 0.1f, 4.0f, -0.8f, 0.4f};
    constexpr float kFinal[6] = {0.9f, -0.5f, 0.2f, 2.0f, -0.6f, 0.5f};
    for (int j = 0; j < 6; ++j) {
        record.trebleSos[3 * j + 1] = kSecondTreble[j];
        record.finalSos[j] = kFinal[j];
    }
    return record;
}

Stereo play(const Stereo& x, const parameterEQ& eq, float channels = 2.0f) {
    return signals::play(x, [&](float* io) {
        equalization_peak(io, channels, eq.peakSectionCount, eq.peakSos, eq.trebleSectionCount, eq.trebleSos,
                          eq.trebleGain, eq.finalSos, eq.finalPassCount);
    });
}

// Before any reset of the process.
const Stereo kFresh = play(signals::stereo_noise(1, 8), all_stages());

TEST(PeakingEqualizer, TrebleLift) {
    const std::vector<float> impulse = signals::impulse(0, 2 * kHopSamples);
    for (double gain : {0.05, 0.3, 0.5, 1.0}) {
        parameterEQ record = factory();
        record.trebleGain = float(gain);
        equalization_peak_init();
        const Stereo h = play({impulse, impulse}, record);
        for (double frequencyHz : {100.0, 1000.0, 5000.0, 10000.0, 15000.0, 20000.0}) {
            const std::complex<double> s = signals::analog(frequencyHz, 10000.0);
            // The three coefficients hold seven digits.
            EXPECT_NEAR(signals::db(signals::response(h.left, frequencyHz)),
                        signals::db(1.0 + gain * s / (s + 1.0)), 2e-6)
                << frequencyHz;
        }
    }
}

TEST(PeakingEqualizer, AllStagesFollowTheModel) {
    const parameterEQ record = all_stages();
    const Stereo x = signals::stereo_noise(2, 20);
    equalization_peak_init();
    const Stereo y = play(x, record);
    for (const auto& [in, out] : {std::pair{x.left, y.left}, {x.right, y.right}}) {
        CascadeModel peak(record.peakSos, 3), treble(record.trebleSos, 2);
        SectionModel last(record.finalSos, record.finalSos + 3);
        std::vector<double> hop(kHopSamples);
        for (size_t at = 0; at < in.size(); at += hop.size()) {
            for (size_t n = 0; n < hop.size(); ++n) {
                hop[n] = peak(double(in[at + n]));
                hop[n] += double(record.trebleGain) * treble(hop[n]);
            }
            for (int pass = 0; pass < 2; ++pass) {  // both passes over a hop use one state
                for (double& sample : hop) {
                    sample = last(sample);
                }
            }
            for (size_t n = 0; n < hop.size(); ++n) {
                ASSERT_NEAR(double(out[at + n]), hop[n], 5e-6)
                    << at + n;  // some tens of roundings of values near 1
            }
        }
    }
}

TEST(PeakingEqualizer, ZeroGainAndCountsPassTheSignalAndKeepTheState) {
    const Stereo a = signals::stereo_noise(3, 1), b = signals::stereo_noise(4, 1),
                 c = signals::stereo_noise(5, 1);
    const parameterEQ on = all_stages();
    parameterEQ off = on;
    off.peakSectionCount = off.trebleGain = off.finalPassCount = 0.0f;
    equalization_peak_init();
    const Stereo whole = play(signals::joined(a, c), on);
    equalization_peak_init();
    const Stereo first = play(a, on);
    EXPECT_EQ(play(b, off), b);
    off.trebleGain = -1.0f;
    EXPECT_EQ(play(b, off), b);
    EXPECT_EQ(signals::joined(first, play(c, on)), whole);
}

TEST(PeakingEqualizer, ASingleChannelLeavesTheOtherAlone) {
    const Stereo x = signals::stereo_noise(6, 4);
    equalization_peak_init();
    const Stereo both = play(x, all_stages());
    equalization_peak_init();
    const Stereo mono = play(x, all_stages(), 1.0f);
    EXPECT_EQ(mono.left, both.left);
    EXPECT_EQ(mono.right, x.right);
    EXPECT_EQ(play(x, all_stages()).right, both.right);
}

TEST(PeakingEqualizer, RecordsAreReadOnlyAndResetEqualsFresh) {
    const parameterEQ record = all_stages();
    parameterEQ used = record;
    play(signals::stereo_noise(7, 3), used);
    EXPECT_EQ(std::memcmp(&used, &record, sizeof used), 0);
    equalization_peak_init();
    EXPECT_EQ(play(signals::stereo_noise(1, 8), used), kFresh);
}

TEST(PeakingEqualizer, CountsAreTruncatedAndBounded) {
    const Stereo x = signals::stereo_noise(8, 1);
    const auto counts = [&](float sections, float passes) {
        parameterEQ record = all_stages();
        record.peakSectionCount = record.trebleSectionCount = sections;
        record.finalPassCount = passes;
        constexpr float kAllPass[6] = {0.25f, -0.3f, 1.0f,
                                       1.0f,  -0.3f, 0.25f};  // lasts through any number of passes
        std::copy_n(kAllPass, 6, record.finalSos);
        equalization_peak_init();
        return play(x, record);
    };
    for (float none : {-1e30f, -1.0f, 0.99f, NAN}) {
        EXPECT_EQ(counts(none, none), counts(0.0f, 0.0f)) << none;
    }
    EXPECT_EQ(counts(2.99f, 4.99f), counts(2.0f, 4.0f));
    EXPECT_NE(counts(2.0f, 4.0f), counts(2.0f, 5.0f));
    EXPECT_NE(counts(3.0f, 1023.0f), counts(3.0f, 1024.0f));
    EXPECT_EQ(counts(1e30f, INFINITY), counts(3.0f, 1024.0f));
}

TEST(PeakingEqualizer, EveryLevelGivesTheSameBits) {
    const Stereo x = signals::all_kinds(20);
    for (const parameterEQ& fixed : {factory(), all_stages()}) {
        kernels::expect_same_bits([&] {
            equalization_peak_init();
            int hop = 0;
            return signals::one_after_the_other(signals::play(x, [&](float* io) {
                parameterEQ eq = fixed;
                eq.trebleGain = 0.3f * float(hop % 3);
                eq.finalPassCount += float(hop / 2 % 2);
                equalization_peak(io, hop % 4 == 3 ? 1.0f : 2.0f, eq.peakSectionCount, eq.peakSos,
                                  eq.trebleSectionCount, eq.trebleSos, eq.trebleGain, eq.finalSos,
                                  eq.finalPassCount);
                ++hop;
            }));
        });
    }
}

}  // namespace
