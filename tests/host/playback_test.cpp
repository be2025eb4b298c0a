// The block driver, with a chain whose output is known: every value of every block is compared.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>

#include "tests/host/engine.h"
#include "tests/host/fake_chain.h"

using namespace android;
using engine::Pcm;

namespace {

constexpr size_t kFrame = 1024;  // int16 values of one hop in stereo

// The driver from the end of a settling on: input waits in a queue, answers stand in a ring whose leftovers an
// underrun plays again. Single precision is double rounded after each operation.
class Model {
  public:
    explicit Model(size_t queued) : fill_(queued) {}

    Pcm play(const Pcm& block, bool on) {
        input_.insert(input_.end(), block.begin(), block.end());
        size_t end = fill_;
        for (; input_.size() >= kFrame; end += kFrame) {
            Pcm frame(input_.begin(), input_.begin() + kFrame);
            input_.erase(input_.begin(), input_.begin() + kFrame);
            mix(frame, on);
            std::copy(frame.begin(), frame.end(), ring_.begin() + static_cast<ptrdiff_t>(end));
        }
        const auto length = static_cast<ptrdiff_t>(block.size());
        Pcm answer = block;
        ranShort = end < block.size();
        if (!ranShort) {
            std::copy_n(ring_.begin(), length, answer.begin());
        }
        fill_ = ranShort ? kFrame : end - block.size();
        const Pcm kept(ring_.begin() + length, ring_.begin() + length + static_cast<ptrdiff_t>(fill_));
        std::copy(kept.begin(), kept.end(), ring_.begin());
        return answer;
    }

    bool ranShort = false;
    int ramp = 0, resets = 0;

  private:
    static double rounded(double x) { return static_cast<double>(static_cast<float>(x)); }

    void mix(Pcm& frame, bool on) {
        if (!on && ramp == 0) {
            return;
        }
        resets += ramp == 0 ? 1 : 0;
        const Pcm dry = frame;
        for (size_t i = 0; i < kFrame; ++i) {
            const double wet = std::trunc((i % 2 == 0 ? -0.5 : 0.25) * before_[i]);
            const double g = rounded(ramp / 5120.0);
            const double dryPart = rounded(rounded(1.0 - g) * dry[i]);
            frame[i] = static_cast<int16_t>(rounded(dryPart + rounded(g * wet)));
            if (i % 2 == 1) {
                ramp = on ? std::min(ramp + 1, 5120) : std::max(ramp - 1, 0);
            }
        }
        before_ = dry;
    }

    std::deque<int16_t> input_;
    Pcm ring_ = Pcm(40960), before_ = Pcm(kFrame);
    size_t fill_;
};

// Plays noise from the block that ends the settling on; on(block) is the switch's position. Returns the block
// of the first underrun, counted from 1, or 0.
template <typename On>
int expect_like_model(Model& model, int values, int blocks, On on) {
    int firstShort = 0;
    for (int b = 0; b < blocks; ++b) {
        engine::enable(on(b));
        const Pcm block = engine::noise(static_cast<uint32_t>(values + b), values);
        EXPECT_EQ(engine::played(block), model.play(block, on(b))) << "block " << b << " of " << values;
        EXPECT_EQ(b_parameterMEM.mixRamp, model.ramp);
        firstShort = firstShort == 0 && model.ranShort ? b + 1 : firstShort;
        if (::testing::Test::HasFailure()) {
            break;
        }
    }
    return firstShort;
}

constexpr auto kOff = [](int) { return false; };

class Playback : public ::testing::Test {
  protected:
    Playback() { start(); }

    static void start() {
        engine::fresh_engine();
        b_parameterTWS.stereoWidth = 0.5f;
        fake_chain::calls.clear();
        fake_chain::resets = 0;
    }

    parameterMEM& mem = b_parameterMEM;
};

TEST_F(Playback, SettlesFor6000SampleFramesThenDelaysByTheBlocksRemainder) {
    Pcm last;
    for (int b = 1; b <= 16; ++b) {
        const Pcm block = engine::noise(static_cast<uint32_t>(b), 960);
        const Pcm expected = b <= 12 ? block : b == 13 ? Pcm(960) : last;
        ASSERT_EQ(engine::played(block), expected) << "block " << b;
        EXPECT_EQ(mem.settleCountdown, 6000 - 480 * std::min(b, 13));
        last = block;
    }
    EXPECT_EQ(mem.inFill + mem.outFill, 960);
}

TEST_F(Playback, RunsShortWhereTheArithmeticSaysAndNeverAgain) {
    const struct {
        int values, firstShort;
    } cases[] = {{960, 0},  {1024, 0}, {882, 8},   {600, 3}, {2, 2},
                 {2048, 0}, {8192, 0}, {36864, 0}, {1026, 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.values);
        engine::play_through_settling(c.values);
        Model model(static_cast<size_t>(c.values) % kFrame);
        EXPECT_EQ(expect_like_model(model, c.values, std::clamp(400000 / c.values, 20, 400), kOff),
                  c.firstShort);
        EXPECT_TRUE(fake_chain::calls.empty());
    }
}

// The dry path as a delay line: the input delayed by H mod 1024 values up to the underrun, one block as it
// came, one frame of leftovers, and from there on the input delayed by a frame and what was pending.
void expect_delay_line(const Pcm& in, const Pcm& out, size_t h) {
    size_t delay = h % kFrame, leftoversEnd = 0;
    for (size_t start = 0; start < in.size(); start += h) {
        const size_t pending = start % kFrame;
        const bool shortOfValues = leftoversEnd == 0 && pending > 0 && pending < kFrame - delay;
        for (size_t i = start; i < start + h; ++i) {
            if (shortOfValues) {
                ASSERT_EQ(out[i], in[i]) << "value " << i;
            } else if (i >= leftoversEnd) {
                ASSERT_EQ(out[i], i < delay ? 0 : in[i - delay]) << "value " << i;
            }
        }
        if (shortOfValues) {
            leftoversEnd = start + h + kFrame;
            delay = kFrame + (start + h) % kFrame;
        }
    }
}

TEST_F(Playback, DryPathLosesAndRepeatsNothingAtAnyBlockSize) {
    std::mt19937 generator(20);
    std::vector<int> sizes = {1, 2, 511, 512, 513, 4096};  // sample frames
    for (int n = 0; n < 40; ++n) {
        sizes.push_back(1 + static_cast<int>(generator() % 4096));
    }
    std::shuffle(sizes.begin(), sizes.end(), generator);
    for (const int frames : sizes) {
        SCOPED_TRACE(frames);
        engine::play_through_settling(2 * frames);
        Model model(static_cast<size_t>(2 * frames) % kFrame);
        Pcm in, out;
        for (int b = 0; b < std::max(24, 6000 / frames); ++b) {
            const Pcm block = engine::noise(static_cast<uint32_t>(1000 * frames + b), 2 * frames);
            const Pcm answer = engine::played(block);
            ASSERT_EQ(answer, model.play(block, false)) << "block " << b;
            in.insert(in.end(), block.begin(), block.end());
            out.insert(out.end(), answer.begin(), answer.end());
        }
        ASSERT_NO_FATAL_FAILURE(expect_delay_line(in, out, static_cast<size_t>(2 * frames)));
    }
}

TEST_F(Playback, FadesInAndOutOver5120PairsAndResetsTheChainOnceFromDry) {
    for (const int values : {1024, 960, 882, 2500, 4100}) {
        SCOPED_TRACE(values);
        start();
        engine::play_through_settling(values);
        Model model(static_cast<size_t>(values) % kFrame);
        // Dry, wet, briefly off and on again within the fade, wet, off to the end, on again.
        const int unit = 1 + 10240 / values;
        expect_like_model(model, values, 12 * unit, [unit](int b) {
            const int t = 4 * b / unit;
            return (t >= 2 && t < 14) || (t >= 15 && t < 28) || t >= 40;
        });
        EXPECT_EQ(fake_chain::resets, model.resets);
        EXPECT_EQ(model.resets, 2);
    }
}

TEST_F(Playback, StartsAnewOnAnyChangeOfStreamOrOutputClass) {
    struct Change {
        const char* what;
        int values, rate;
        int32_t device;
        bool restarts;
    };
    const Change changes[] = {
        {"same", 960, 48000, 2, false},
        {"rate", 960, 44100, 2, true},
        {"size", 962, 44100, 2, true},
        {"headset", 962, 44100, 4, true},
        {"headphone", 962, 44100, 8, false},
        {"A2DP", 962, 44100, 0x80, false},
        {"earpiece", 962, 44100, 1, true},
        {"A2DP headphones", 962, 44100, 0x102, true},
        {"A2DP speaker", 962, 44100, 0x200, true},
        {"all", 962, 44100, -1, true},
    };
    engine::enable(true);
    engine::play_through_settling(960);
    for (const Change& c : changes) {
        SCOPED_TRACE(c.what);
        while (mem.mixRamp < 5120) {
            engine::played(Pcm(static_cast<size_t>(mem.blockBytes / 2)), mem.sampleRate);
        }
        gCurOutputDevice = c.device;
        const Pcm block = engine::noise(1, c.values);
        const bool untouched = engine::played(block, c.rate) == block;
        EXPECT_EQ(untouched, c.restarts);
        EXPECT_EQ(mem.settleCountdown > 0, c.restarts);
        EXPECT_EQ(mem.headphoneMode, (c.device & 0x18C) != 0 ? 1 : 0);
        EXPECT_EQ(mem.sampleRate, c.rate);
        EXPECT_EQ(mem.blockBytes, 2 * c.values);
        for (int b = 1; c.restarts && b < 12; ++b) {
            ASSERT_EQ(engine::played(block, c.rate), block);
        }
        EXPECT_EQ(mem.mixRamp, 5120);
        if (c.restarts) {
            EXPECT_EQ(engine::played(block, c.rate), Pcm(static_cast<size_t>(c.values)));
            EXPECT_EQ(mem.mixRamp, 0);
        }
    }
}

TEST_F(Playback, InitialisationPlays4096ZerosWhenTheStreamIsKnown) {
    engine::play_through_settling(960);
    engine::played(engine::noise(1, 960));
    ZOQ_OUTPROC_PLAY_INIT();
    Model model(4096);
    EXPECT_EQ(expect_like_model(model, 960, 40, kOff), 0);
}

}  // namespace
