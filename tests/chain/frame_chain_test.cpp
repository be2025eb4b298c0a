// The frame chain alone: framing, routing, order and arguments, with modules that only take notes.
#include "chain/frame_chain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "tests/chain/fake_modules.h"
#include "tests/support/signals.h"

using namespace android;
using fake_modules::call;
using fake_modules::names;

namespace {

using Signal = std::vector<float>;
using Names = std::vector<std::string>;
constexpr size_t kFrame = kFrameSamples, kHop = kHopSamples;

float rounded(double x) {
    return static_cast<float>(x);
}

Signal part(const Signal& x, size_t start, size_t length) {
    return {x.begin() + static_cast<ptrdiff_t>(start), x.begin() + static_cast<ptrdiff_t>(start + length)};
}

Signal scaled(Signal x, float factor) {
    for (float& sample : x) {
        sample = rounded(double(sample) * double(factor));
    }
    return x;
}

struct Records {
    parameterDEN den{};
    parameterTWS tws{};
    parameterEQ eq{};
    parameterDRC drc{};
    parameterVB vb{};
    parameterX2B x2b{};
    parameterGEQ geq{};
};

class FrameChain : public ::testing::Test {
  protected:
    FrameChain() {
        stereoWidening_frame_init();
        fake_modules::calls.clear();
        fake_modules::enhance = nullptr;
        r.den.stereoOutput = 1.0f;
        r.vb.boostLin = -1.0f;
    }
    ~FrameChain() override { fake_modules::enhance = nullptr; }

    // One hop; the three blocks go in one after another.
    Signal hop(Signal frameIn, float channels = 2.0f, uint8_t headphone = 0) {
        fake_modules::calls.clear();
        Signal frameOut(2 * kHop, -9.0f);
        frameIn.resize(3 * kFrame);
        stereoWidening_frame(frameIn.data(), channels, headphone, &r.den, &r.tws, &r.eq, &r.drc, &r.vb,
                             &r.x2b, &r.geq, frameOut.data());
        return frameOut;
    }

    const std::unique_ptr<Records> owned = std::make_unique<Records>();
    Records& r = *owned;
};

// All hops' second channel blocks overlapped and added, one output hop per frame.
Signal completed(const std::vector<Signal>& frames, size_t block, size_t hopIndex) {
    Signal hop = part(frames[hopIndex], block * kFrame, kHop);
    for (size_t i = 0; i < kHop && hopIndex > 0; ++i) {
        const float before = frames[hopIndex - 1][block * kFrame + kHop + i];
        hop[i] = rounded(double(before) + double(hop[i]));
    }
    return hop;
}

std::vector<Signal> noise_frames(uint32_t seed, size_t count) {
    std::vector<Signal> frames;
    for (size_t n = 0; n < count; ++n) {
        frames.push_back(signals::noise(seed + static_cast<uint32_t>(n), 3 * kFrame));
    }
    return frames;
}

// The centres boosted, as the overlap takes them.
std::vector<Signal> boosted(std::vector<Signal> frames, float boost = 1.414f) {
    for (Signal& frame : frames) {
        const Signal centre = scaled(part(frame, 2 * kFrame, kFrame), boost);
        std::copy(centre.begin(), centre.end(), frame.begin() + 2 * kFrame);
    }
    return frames;
}

TEST_F(FrameChain, DerivesTheControlValuesOfEachHop) {
    const struct {
        float width, wideAmount, widthGain;
    } speaker[] = {{0.0f, 0.0f, 0.0f}, {0.5f, 0.0f, 0.8f}, {-1.0f, 0.0f, -1.6f}, {0.3f, 0.0f, 0.48000002f}};
    for (const auto& c : speaker) {
        r.tws.stereoWidth = c.width;
        r.den.wideAmount = r.tws.widthGain = -9.0f;
        hop({});
        EXPECT_EQ(r.den.wideAmount, c.wideAmount) << c.width;
        EXPECT_EQ(r.tws.widthGain, c.widthGain) << c.width;
        EXPECT_EQ(call("den").numbers.at(3), c.wideAmount);
    }
    for (int n = 1; n <= 1000; ++n) {
        const float s = 0.5f + 0.001f * static_cast<float>(n), over = rounded(double(s) - 0.5);
        const float p = rounded(double(over) * 13421772.0 / 67108864.0);  // one unit below 0.2
        r.tws.stereoWidth = s;
        hop({});
        ASSERT_EQ(r.den.wideAmount, rounded(8.0 * double(over)));
        ASSERT_EQ(r.tws.widthGain, rounded(double(rounded(2.0 * double(p))) + double(0.8f)));
    }
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, float> headphone[] = {
        {0.7f, 0.0f}, {0.8f, 0.0f}, {1.0f, 3.9999998f}, {0.0f, 0.0f}, {nan, 0.0f}};
    for (const auto& [width, wideAmount] : headphone) {
        r.x2b.surroundWidth = width;
        r.den.wideAmount = r.tws.widthGain = -9.0f;
        hop({}, 2.0f, 1);
        EXPECT_EQ(r.den.wideAmount, wideAmount) << width;
        EXPECT_EQ(r.tws.widthGain, -9.0f);
        EXPECT_EQ(call("den").numbers.at(3), wideAmount);
    }
    for (int n = 1; n <= 1000; ++n) {
        r.x2b.surroundWidth = 0.8f + 0.001f * static_cast<float>(n);
        hop({}, 2.0f, 1);
        const float over = rounded(double(r.x2b.surroundWidth) - double(0.8f));
        ASSERT_EQ(r.den.wideAmount, rounded(20.0 * double(over)));
    }
}

TEST_F(FrameChain, AddsOverlappingFramesAndReturnsTheCompletedHop) {
    const std::vector<Signal> frames = noise_frames(1, 6);
    fake_modules::enhance = [](float* io) { std::swap_ranges(io, io + kFrame, io + kFrame); };
    for (size_t n = 0; n < frames.size(); ++n) {
        const Signal out = hop(frames[n]);
        ASSERT_EQ(part(out, 0, kHop), scaled(completed(frames, 1, n), 0.5f)) << "hop " << n;
        ASSERT_EQ(part(out, kHop, kHop), scaled(completed(frames, 0, n), 0.5f)) << "hop " << n;
    }
    // The next hop after a reset is the first half of its frame alone.
    stereoWidening_frame_init();
    EXPECT_EQ(part(hop(frames[0]), 0, kHop), scaled(part(frames[0], kFrame, kHop), 0.5f));
}

TEST_F(FrameChain, MixesTheCentreIntoBothSidesWhereNoWideningRuns) {
    std::vector<Signal> frames = noise_frames(11, 4);
    for (const float threeChannels : {0.0f, 0.99f, 2.0f, std::numeric_limits<float>::quiet_NaN()}) {
        stereoWidening_frame_init();
        r.den.stereoOutput = threeChannels;
        for (size_t n = 0; n < frames.size(); ++n) {
            const Signal out = hop(frames[n]);
            const Signal centre = scaled(scaled(completed(boosted(frames), 2, n), 0.5f), 0.7071f);
            for (size_t side = 0; side < 2; ++side) {
                const Signal direct = scaled(completed(frames, side, n), 0.5f);
                for (size_t i = 0; i < kHop; ++i) {
                    ASSERT_EQ(out[side * kHop + i], rounded(double(direct[i]) + double(centre[i])));
                }
            }
        }
    }
}

// The widening and the binaural stage see the previous hop and the current one, halved by speaker hops only.
TEST_F(FrameChain, HandsTwoCompletedHopsToTheFrequencyDomainStages) {
    const std::vector<Signal> frames = noise_frames(21, 6);
    for (const float channels : {2.0f, 3.0f}) {
        stereoWidening_frame_init();
        r.den.stereoOutput = channels == 2.0f ? 1.0f : 0.0f;
        r.tws.stereoWidth = 0.5f;
        std::vector<Signal> before(3, Signal(kHop));
        const std::vector<Signal> added = boosted(frames, channels == 3.0f ? 1.414f : 0.0f);
        for (size_t n = 0; n < frames.size(); ++n) {
            const bool headphone = n == 2 || n == 3;
            const Signal out = hop(frames[n], 2.0f, headphone ? 255 : 0);
            const Signal& seen = call(headphone ? "x2b" : "tws").buffer;
            ASSERT_EQ(seen.size(), 3 * kFrame);
            for (size_t k = 0; k < 3; ++k) {
                const Signal current = scaled(completed(added, k, n), headphone ? 1.0f : 0.5f);
                ASSERT_EQ(part(seen, k * kFrame, kHop), before[k]) << "hop " << n << " channel " << k;
                ASSERT_EQ(part(seen, k * kFrame + kHop, kHop), current) << "hop " << n << " channel " << k;
                before[k] = current;
            }
            if (headphone) {
                EXPECT_EQ(call("x2b").numbers, (Signal{channels, 0.0f}));
            }
            EXPECT_EQ(out, Signal(2 * kHop, headphone ? 0.75f : 0.25f));
        }
    }
}

TEST_F(FrameChain, OneChannelReplacesTheFrameAndLetsTheOthersDrain) {
    const std::vector<Signal> frames = noise_frames(31, 5);
    r.tws.stereoWidth = 0.8f;
    r.den.stereoOutput = 0.0f;
    for (const float channels : {1.0f, 0.0f, 1.9999999f, 2.0000002f, 3.0f, 6.0f}) {
        stereoWidening_frame_init();
        hop(frames[0]);
        hop(frames[1]);
        Signal out = hop(frames[2], channels);
        EXPECT_EQ(names(), (Names{"geq", "eq", "drc"}));
        EXPECT_EQ(part(out, 0, kHop), scaled(part(frames[2], 0, kHop), 0.5f));
        EXPECT_EQ(part(out, kHop, kHop), scaled(part(frames[1], kFrame + kHop, kHop), 0.5f));
        EXPECT_EQ(call("geq").numbers.at(0), 1.0f);
        EXPECT_EQ(call("eq").numbers.at(0), 1.0f);
        EXPECT_EQ(call("drc").numbers.at(0), 1.0f);

        out = hop(frames[3], channels, 1);
        EXPECT_EQ(names(), (Names{"x2b", "geq", "drc"}));
        EXPECT_EQ(call("x2b").numbers, (Signal{1.0f, 0.0f}));
        EXPECT_EQ(call("geq").numbers.at(0), 2.0f);
        EXPECT_EQ(part(call("x2b").buffer, kHop, kHop), part(frames[3], 0, kHop));
        EXPECT_EQ(part(call("x2b").buffer, kFrame + kHop, kHop), Signal(kHop));
        out = hop(frames[4]);
        EXPECT_EQ(part(call("tws").buffer, kHop, kHop), scaled(completed(frames, 0, 4), 0.5f));
        EXPECT_EQ(part(call("tws").buffer, kFrame, kHop), Signal(kHop));
        EXPECT_EQ(part(call("tws").buffer, kFrame + kHop, kHop), scaled(part(frames[4], kFrame, kHop), 0.5f));
    }
}

TEST_F(FrameChain, CallsTheModulesOfARouteInOrderWithTheirRecords) {
    float number = 100.0f;
    for (float* field :
         {&r.den.smoothFactor, &r.den.centerSpeechGain, &r.den.baseGain, &r.geq.bandCount, &r.geq.bandQ,
          &r.eq.peakSectionCount, &r.eq.trebleSectionCount, &r.eq.trebleGain, &r.eq.finalPassCount}) {
        *field = number += 1.0f;
    }
    r.den.stereoOutput = 0.0f;
    Signal in(3 * kFrame), out(2 * kHop);
    const auto run = [&](uint8_t headphone) {
        fake_modules::calls.clear();
        stereoWidening_frame(in.data(), 2.0f, headphone, &r.den, &r.tws, &r.eq, &r.drc, &r.vb, &r.x2b, &r.geq,
                             out.data());
    };
    using Pointers = std::vector<const void*>;

    r.tws.stereoWidth = 0.6f;
    r.vb.boostLin = -0.99f;
    run(0);
    EXPECT_EQ(names(), (Names{"den", "tws", "geq", "vb", "eq", "drc"}));
    EXPECT_EQ(call("den").numbers, (Signal{101, 102, 103, r.den.wideAmount, 0}));
    EXPECT_EQ(call("den").pointers, (Pointers{in.data(), r.den.wideCurve, r.den.bandEnd, r.den.bandStart}));
    EXPECT_EQ(call("tws").pointers, (Pointers{&r.tws, out.data()}));
    EXPECT_EQ(call("geq").numbers, (Signal{2, kGeqBands, 105}));  // no more than the record holds
    EXPECT_EQ(call("geq").pointers, (Pointers{out.data(), r.geq.bandGainDb, r.geq.bandWarp}));
    EXPECT_EQ(call("vb").numbers, (Signal{2, -0.99f}));
    EXPECT_EQ(call("vb").pointers, (Pointers{out.data(), &r.vb}));
    EXPECT_EQ(call("eq").numbers, (Signal{2, 106, 107, 108, 109}));
    EXPECT_EQ(call("eq").pointers, (Pointers{out.data(), r.eq.peakSos, r.eq.trebleSos, r.eq.finalSos}));
    EXPECT_EQ(call("drc").numbers, Signal{2});
    EXPECT_EQ(call("drc").pointers,
              (Pointers{out.data(), &r.drc.compThreshold, &r.drc.limThreshold, &r.drc.expThreshold}));

    r.tws.stereoWidth = 0.0f;
    for (const float off : {-1.0f, -2.0f, std::numeric_limits<float>::quiet_NaN()}) {
        r.vb.boostLin = off;
        run(0);
        EXPECT_EQ(names(), (Names{"den", "geq", "eq", "drc"}));
    }

    r.vb.boostLin = 2.5f;
    r.x2b.surroundWidth = 0.7f;
    r.geq.bandCount = 7.0f;
    run(1);
    EXPECT_EQ(names(), (Names{"den", "x2b", "geq", "drc"}));
    EXPECT_EQ(call("x2b").numbers, (Signal{3, 0.7f}));
    EXPECT_EQ(call("x2b").pointers, (Pointers{&r.x2b, out.data()}));
    EXPECT_EQ(call("geq").numbers, (Signal{2, 7, 105}));
    EXPECT_EQ(call("drc").numbers, Signal{2});
    const parameterDRC& drc = r.x2b.headphoneDrc;
    EXPECT_EQ(call("drc").pointers,
              (Pointers{out.data(), &drc.compThreshold, &drc.limThreshold, &drc.expThreshold}));
}

// Another thread may set and withdraw an absurd value at any time. A hop uses what it was judged by, so that the one
// behind it knows what the memories hold.
TEST_F(FrameChain, UsesTheSettingsThatItFindsAtTheStartOfAHop) {
    const auto storeAll = [&](float value) {
        for (float* setting : {&r.den.centerSpeechGain, &r.tws.stereoWidth, &r.x2b.surroundWidth,
                               &r.eq.trebleGain, &r.vb.boostLin}) {
            *setting = value;
        }
    };
    r.drc.compMakeup = r.x2b.headphoneDrc.compMakeup = r.geq.bandQ = 1.0f;
    std::fill(std::begin(r.geq.bandWarp), std::end(r.geq.bandWarp), 1.0f);
    float meanwhile = 0.0f;
    fake_modules::enhance = [&](float*) { storeAll(meanwhile); };
    const auto resets = [] {
        const Names all = names();
        return std::count(all.begin(), all.end(), "vb reset");
    };
    for (const uint8_t headphone : {uint8_t{0}, uint8_t{1}}) {
        for (const float first : {1.0f, 1e9f}) {
            storeAll(1.0f);
            meanwhile = 1.0f;
            hop({}, 2.0f, headphone);
            storeAll(first);
            meanwhile = first == 1.0f ? 1e9f : 1.0f;
            hop({}, 2.0f, headphone);
            EXPECT_EQ(call("den").numbers.at(1), first);
            if (headphone != 0) {
                EXPECT_EQ(call("x2b").numbers, (Signal{2.0f, first}));
            } else {
                EXPECT_EQ(call("vb").numbers, (Signal{2.0f, first}));
                EXPECT_EQ(call("eq").numbers.at(3), first);
            }
            storeAll(1.0f);
            hop({}, 2.0f, headphone);
            EXPECT_EQ(resets(), first == 1.0f ? 0 : 1);
        }
    }
}

TEST_F(FrameChain, ResetsEveryModuleAndItsOwnBuffers) {
    hop(signals::noise(1, 3 * kFrame));
    fake_modules::calls.clear();
    stereoWidening_frame_initialize();
    EXPECT_EQ(names(), (Names{"drc reset", "den reset", "vb reset", "eq reset", "geq reset", "x2b reset"}));
    EXPECT_EQ(hop({}), Signal(2 * kHop));
}

}  // namespace
