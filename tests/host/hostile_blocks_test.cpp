// Blocks no host should hand over, and hosts that write into the engine's books: nothing outside the block and
// the rings is touched, and the stream goes on. Worth most under the address sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

#include "tests/host/engine.h"

using namespace android;
using engine::Pcm;

namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max(), kMin = std::numeric_limits<int32_t>::min();

// A block between guards.
class Guarded {
  public:
    explicit Guarded(const Pcm& block) : length_(block.size()), memory_(length_ + 2 * kGuard, kPattern) {
        std::copy(block.begin(), block.end(), memory_.begin() + kGuard);
    }
    int16_t* data() { return memory_.data() + kGuard; }
    Pcm block() const { return {memory_.begin() + kGuard, memory_.end() - kGuard}; }
    bool guards_stand() const {
        const auto pattern = [](int16_t value) { return value == kPattern; };
        return std::all_of(memory_.begin(), memory_.begin() + kGuard, pattern) &&
               std::all_of(memory_.end() - kGuard, memory_.end(), pattern);
    }

  private:
    static constexpr int16_t kPattern = 0x5AA5;
    static constexpr ptrdiff_t kGuard = 64;
    size_t length_;
    Pcm memory_;
};

class HostileBlocks : public ::testing::Test {
  protected:
    HostileBlocks() { engine::fresh_engine(); }
    parameterMEM& mem = b_parameterMEM;
};

struct BadBlock {
    bool null;
    int bytes, channels;
};

// 960-value blocks of noise, processed, with a bad block before each of them.
std::vector<Pcm> stream_with(const std::vector<BadBlock>& badBlocks) {
    engine::fresh_engine();
    engine::enable(true);
    engine::play_through_settling(960);
    std::vector<Pcm> answers;
    for (uint32_t b = 0; b < 30; ++b) {
        if (!badBlocks.empty()) {
            const BadBlock& bad = badBlocks[b % badBlocks.size()];
            const auto only = std::make_unique<int16_t>(int16_t{77});
            ZOQ_OUTPROC_PLAY_SAMPLES(bad.null ? nullptr : only.get(), bad.bytes, 48000, bad.channels);
            EXPECT_EQ(*only, 77);
        }
        answers.push_back(engine::played(engine::noise(b, 960)));
    }
    return answers;
}

TEST_F(HostileBlocks, UnplayableBlocksLeaveTheStreamAsItWas) {
    const std::vector<BadBlock> bad = {{true, 1920, 2},   {false, 1920, 0},    {false, 1920, -1},
                                       {false, 1920, 7},  {false, 1920, kMin}, {false, 1920, kMax},
                                       {false, 73730, 2}, {false, kMax, 2},    {true, kMax, 0},
                                       {false, 73731, 6}, {true, 1920, 6},     {false, kMin, -1}};
    const std::vector<Pcm> undisturbed = stream_with({});
    const std::vector<Pcm> disturbed = stream_with(bad);
    EXPECT_EQ(disturbed, undisturbed);
    EXPECT_GT(*std::max_element(undisturbed.back().begin(), undisturbed.back().end()), 0);
}

TEST_F(HostileBlocks, ByteCountsOfNothingAreBookedAsStreamChanges) {
    const struct {
        int bytes, channels, times;
        int32_t countdown;
    } cases[] = {{0, 2, 1, 6000},           {1, 2, 3, 6000},          {-1, 2, 2, 6000},   {3, 2, 2, 6000},
                 {-8, 2, 1, 6002},          {-8, 2, 5, 6010},         {-8, 0, 3, 6000},   {-12, 6, 2, 6002},
                 {kMin, 1, 1, 1073747824},  {kMin, 1, 2, kMax},       {kMin, 1, 3, kMax}, {1920, 0, 99, 6000},
                 {1920, 1, 2, 6000 - 1920}, {1920, 6, 2, 6000 - 320}, {73729, 2, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.bytes << " bytes, " << c.channels << " channels");
        engine::fresh_engine();
        engine::play_through_settling(512);
        engine::played(Pcm(512));
        ASSERT_LE(mem.settleCountdown, 0);
        Guarded block(engine::noise(1, std::max(c.bytes / 2, 1)));
        const Pcm given = block.block();
        for (int n = 0; n < c.times; ++n) {
            ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), c.bytes, 48000, c.channels);
        }
        EXPECT_EQ(block.block(), given);
        EXPECT_TRUE(block.guards_stand());
        if (c.times > 0) {
            EXPECT_EQ(mem.settleCountdown, c.countdown);
            EXPECT_EQ(mem.blockBytes, c.bytes);
        }
        // The next initialisation and a good stream start over.
        ZOQ_OUTPROC_PLAY_INIT();
        engine::play_through_settling(1024);
        const Pcm good = engine::noise(2, 1024);
        EXPECT_EQ(engine::played(good), good);
        EXPECT_LE(mem.settleCountdown, 0);
    }
}

// A block that never counts down but meets a settled engine: initialisation forgives the long countdown and
// the stored byte count matches.
TEST_F(HostileBlocks, NegativeCountsAreNeverPlayed) {
    int16_t value = 77;
    for (int n = 0; n < 3; ++n) {
        ZOQ_OUTPROC_PLAY_SAMPLES(&value, -200000, 48000, 1);
    }
    ZOQ_OUTPROC_PLAY_INIT();
    ASSERT_EQ(mem.settleCountdown, 0);
    ZOQ_OUTPROC_PLAY_SAMPLES(&value, -200000, 48000, 1);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(mem.inFill, 0);
    EXPECT_EQ(mem.outFill, 4096);
}

TEST_F(HostileBlocks, OddByteCountsPlayTheWholeValues) {
    engine::enable(true);
    std::array<std::vector<Pcm>, 2> answers;
    for (const int odd : {0, 1}) {
        engine::fresh_engine();
        engine::enable(true);
        for (uint32_t b = 0; b < 40; ++b) {
            Guarded block(engine::noise(b, 961));
            const int16_t last = block.data()[960];
            ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), 1920 + odd, 48000, 2);
            ASSERT_TRUE(block.guards_stand());
            ASSERT_EQ(block.data()[960], last);
            answers[size_t(odd)].push_back(block.block());
        }
    }
    EXPECT_EQ(answers[0], answers[1]);
}

// The longest blocks, behind the fullest queue: frames of six channels would reach past the ring's end, into
// the words behind it.
TEST_F(HostileBlocks, EveryChannelCountStaysInsideTheRings) {
    for (int channels = 1; channels <= kMaxHostChannels; ++channels) {
        for (const int values : {kMaxBlockValues, 36863, 3072, 1000, 1}) {
            SCOPED_TRACE(::testing::Message() << channels << " channels, " << values << " values");
            engine::fresh_engine();
            mem.blockBytes = 2 * values;
            mem.prevHeadphoneMode = 0;
            engine::enable(true);
            for (int b = 0; b < 4; ++b) {
                Guarded block(engine::noise(uint32_t(b), values));
                ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), 2 * values, 48000, channels);
                ASSERT_TRUE(block.guards_stand());
            }
            EXPECT_EQ(mem.inFill, 4 * values % 1024);
            EXPECT_EQ(mem.inFill + mem.outFill, 4096);
            EXPECT_EQ(mem.settleCountdown, 0);
            EXPECT_EQ(mem.sampleRate, 48000);
            EXPECT_EQ(mem.blockBytes, 2 * values);
            EXPECT_EQ(mem.mixRamp, std::min(5120, 512 * (4 * values / 1024)));
            EXPECT_EQ(mem.volumeIndex, 15);
            EXPECT_EQ(mem.volumeIndexSwitch, 15);

            engine::enable(false);
            mem.mixRamp = 0;
            const Pcm queue(mem.outRing, mem.outRing + mem.outFill), in = engine::noise(9, 512);
            mem.blockBytes = 1024;
            EXPECT_EQ(engine::played(in, 48000, channels), Pcm(queue.begin(), queue.begin() + 512));
        }
    }
}

TEST_F(HostileBlocks, BooksWrittenByTheHostDoNoHarm) {
    std::mt19937 generator(7);
    const int32_t values[] = {0,    1,     -1,   2,    512,   1023,  1024, 5119, 5120,
                              5121, 36864, 4096, 4097, 40960, 40961, kMin, kMax, 0x7F000000};
    const auto any = [&] { return values[generator() % std::size(values)]; };
    for (int n = 0; n < 400; ++n) {
        int32_t parameterMEM::*const books[] = {
            &parameterMEM::inFill,        &parameterMEM::outFill,         &parameterMEM::mixRamp,
            &parameterMEM::headphoneMode, &parameterMEM::settleCountdown, &parameterMEM::stereoWidenEnable,
            &parameterMEM::blockBytes,    &parameterMEM::sampleRate,      &parameterMEM::volumeIndex};
        for (int32_t parameterMEM::*const book : books) {
            if (generator() % 2 == 0) {
                mem.*book = any();
            }
        }
        gCurOutputDevice = any();
        const int length = n % 8 == 0 ? kMaxBlockValues : static_cast<int>(generator() % 4000);
        if (n % 4 != 0) {
            mem.blockBytes = 2 * length;
            mem.sampleRate = 48000;
        }
        Guarded block(engine::noise(uint32_t(n), length));
        ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), 2 * length, 48000, 1 + n % kMaxHostChannels);
        ASSERT_TRUE(block.guards_stand());
    }
    EXPECT_EQ(stream_with({}), stream_with({}));
}

}  // namespace
