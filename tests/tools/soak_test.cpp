// The watch of the soak sees every kind of fault, and nothing where there is none.
#include <gtest/gtest.h>

#include <functional>

#include "dsp/poison.h"
#include "tests/host/engine.h"
#include "tools/soak/episode.h"
#include "tools/soak/recovery.h"

using namespace android;

namespace {

constexpr int kFrames = 1024;

// An engine on modest settings and music, watched from its start, for about five seconds.
class SoakWatch : public ::testing::Test {
  protected:
    SoakWatch() { engine::fresh_engine(); }

    // Plays blocks until one is found faulty and returns what was said of it.
    std::string play(int blocks, const std::function<void(int, soak::GuardedBlock&)>& harm) {
        std::vector<int16_t> given(2 * kFrames);
        for (int n = 0; n < blocks; ++n) {
            soak::fill(phase.signal, int64_t{kFrames} * n, 2, given);
            soak::GuardedBlock block(given, static_cast<size_t>(n % 8));
            ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), static_cast<int>(2 * block.size()), 48000, 2);
            harm(n, block);
            const std::string fault = watch->check_block(phase, given, block);
            if (!fault.empty()) {
                return fault;
            }
        }
        return watch->check_records();
    }

    std::string fault_of(const std::function<void(int, soak::GuardedBlock&)>& harm) {
        engine::fresh_engine();
        engine::set("HIFIPARA=STEREOWIDEN_Enable=true;VB_boostlin=20;DS_stereoWidth=60");
        watch = std::make_unique<soak::Watch>();
        watch->begin_phase(phase);
        return play(240, harm);
    }

    soak::Phase phase{.temper = soak::Temper::kModest,
                      .stream = {kFrames, 2, 48000},
                      .signal = soak::Signal::kMusic,
                      .sampleFrames = 0,
                      .volume = 5,
                      .initialise = false,
                      .badBlocks = false,
                      .recovers = true,
                      .strings = {},
                      .text = {}};
    std::unique_ptr<soak::Watch> watch;
};

TEST_F(SoakWatch, SeesEveryKindOfFault) {
    EXPECT_EQ(fault_of([](int, auto&) {}), "");
    const auto at = [](int when, auto harm) {
        return [=](int n, soak::GuardedBlock& block) {
            if (n == when) {
                harm(block);
            }
        };
    };
    const std::string outside = "a value outside the block was written";
    EXPECT_EQ(fault_of(at(9, [](auto& block) { block.data()[-1] = 0; })), outside);
    EXPECT_EQ(fault_of(at(9, [](auto& block) { block.data()[block.size()] = 0; })), outside);
    EXPECT_EQ(fault_of(at(2, [](auto& block) { block.data()[5] = 99; })),
              "a block that passes through while the stream settles was changed");
    EXPECT_EQ(fault_of(at(30, [](auto& block) { block.data()[5] = -32736; })),
              "a processed sample lies beyond the clip");
    EXPECT_EQ(fault_of(at(30, [](auto&) { ++poisonResets; })), "memories were reset under legal settings");
    EXPECT_NE(fault_of(at(30, [](auto&) { b_parameterMEM.outFill = 5000; })), "");
    EXPECT_NE(fault_of(at(30, [](auto&) { b_parameterMEM.mixRamp = 5121; })), "");
    EXPECT_NE(fault_of(at(30, [](auto&) { b_parameterMEM.headphoneMode = 1; })), "");
    EXPECT_NE(fault_of(at(30, [](auto&) { b_parameterMEM.frameHistory[3][7] = NAN; })), "");
    EXPECT_EQ(fault_of(at(30, [](auto&) { b_parameterGEQ.bandWarp[3] += 0.1f; })),
              "a record's tables were changed");
    phase.signal = soak::Signal::kSilence;
    EXPECT_EQ(fault_of(at(200, [](auto& block) { block.data()[5] = 1; })),
              "silence does not come out as silence");
    EXPECT_EQ(fault_of(at(9, [](auto&) {})), "");
}

// A band of the loudspeaker's is hostile, or one that it does not use; then something sounds otherwise for a while.
TEST_F(SoakWatch, ComparesWhatFollowsHostileSettings) {
    const auto sane = [] {
        engine::set("VB_boostlin=20;DS_stereoWidth=60;EQ_62hzgain=2;Headphone_EQ_62hzgain=0");
    };
    const auto fault = [&](const char* hostile, int from, int to) {
        phase.temper = soak::Temper::kHostile;
        EXPECT_EQ(fault_of([&](int n, auto&) { n == 100 ? engine::set(hostile) : void(); }), "");
        phase.temper = soak::Temper::kModest;
        watch->begin_phase(phase);
        soak::Recovery recovery;
        recovery.begin(phase);
        sane();
        play(240, [&](int n, auto& block) {
            recovery.hear(block);
            engine::set(n >= from && n < to ? "EQ_1khzgain=1" : "EQ_1khzgain=0");
        });
        return !recovery.follows() ? "not followed" : recovery.fault([&](soak::Recovery& again) {
            sane();
            play(240, [&](int, auto& block) { again.hear(block); });
        });
    };
    EXPECT_EQ(fault("EQ_62hzgain=1e38", 0, 0), "");
    EXPECT_EQ(fault("EQ_62hzgain=1e38", 0, 70), "");
    EXPECT_NE(fault("EQ_62hzgain=1e38", 0, 240), "");
    EXPECT_EQ(fault("Headphone_EQ_62hzgain=1e38", 0, 0), "not followed");
}

TEST(Soak, ASeedIsAnEpisode) {
    const soak::Outcome first = soak::play_episode(3, 48000 * 20), other = soak::play_episode(4, 48000 * 20),
                        again = soak::play_episode(3, 48000 * 20);
    EXPECT_EQ(first.fault, "");
    EXPECT_EQ(first.circumstances, again.circumstances);
    EXPECT_EQ(first.totals.blocks, again.totals.blocks);
    EXPECT_EQ(first.totals.processed[0], again.totals.processed[0]);
    EXPECT_NE(first.circumstances, other.circumstances);
    EXPECT_GT(first.totals.hostilePhases, 0);
}

}  // namespace
