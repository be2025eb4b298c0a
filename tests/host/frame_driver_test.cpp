// One frame through the driver, with a chain whose output is known: what the chain gets and what comes back.
#include "host/frame_driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "dsp/pcm.h"
#include "tests/host/engine.h"
#include "tests/host/fake_chain.h"

using namespace android;
using engine::Pcm;

namespace {

constexpr int kStereoValues = 1024;

class FrameDriver : public ::testing::Test {
  protected:
    FrameDriver() {
        engine::fresh_engine();
        mem.stereoWidenEnable = 1;
        b_parameterTWS.stereoWidth = 0.5f;
        fake_chain::calls.clear();
        fake_chain::inside = nullptr;
    }

    static Pcm driven(Pcm frame, int headphone = 0, int channels = 2) {
        widening_frame(7, headphone, frame.data(), -1, -1, channels);
        return frame;
    }

    parameterMEM& mem = b_parameterMEM;
};

TEST_F(FrameDriver, TurnsSamplesToIntegersByTruncationAndWraps) {
    const std::pair<float, int> cases[] = {{32768.0f, -32768},   {-32768.0f, -32768}, {32767.99f, 32767},
                                           {-32768.99f, -32768}, {-32769.0f, 32767},  {-0.999f, 0},
                                           {-1.999f, -1},        {65541.0f, 5},       {2147483520.0f, -128},
                                           {2147483648.0f, -1},  {3e30f, -1},         {HUGE_VALF, -1},
                                           {-2147483648.0f, 0},  {-HUGE_VALF, 0},     {NAN, 0}};
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(to_int16(value), expected) << value;
    }
    fake_chain::inside = [](float* out) {
        out[0] = 1.0f;
        out[1] = -1.0f;
        out[512] = 0.99999f;
        out[513] = NAN;
    };
    const Pcm frame = driven(Pcm(kStereoValues));
    EXPECT_EQ(Pcm(frame.begin(), frame.begin() + 4), (Pcm{-32768, 32767, -32768, 0}));
}

TEST_F(FrameDriver, HandsOverThePreviousAndTheNewHopAtFullScaleOne) {
    const Pcm first = engine::noise(1, kStereoValues), second = engine::noise(2, kStereoValues);
    driven(first);
    driven(second);
    const fake_chain::Call& call = fake_chain::calls.at(1);
    for (size_t i = 0; i < 512; ++i) {
        ASSERT_EQ(call.left[i], std::ldexp(float(first[2 * i]), -15));
        ASSERT_EQ(call.right[i], std::ldexp(float(first[2 * i + 1]), -15));
        ASSERT_EQ(call.left[512 + i], std::ldexp(float(second[2 * i]), -15));
        ASSERT_EQ(call.right[512 + i], std::ldexp(float(second[2 * i + 1]), -15));
    }
}

TEST_F(FrameDriver, FoldsALoudspeakerWithoutWidthToMono) {
    const Pcm first = engine::noise(1, kStereoValues), second = engine::noise(2, kStereoValues);
    b_parameterTWS.stereoWidth = -0.0f;
    driven(first);
    const Pcm out = driven(second);
    const fake_chain::Call& call = fake_chain::calls.at(1);
    for (size_t i = 0; i < 512; ++i) {
        ASSERT_EQ(call.left[i], std::ldexp(float(first[2 * i] + first[2 * i + 1]), -16));
        ASSERT_EQ(call.left[512 + i], std::ldexp(float(second[2 * i] + second[2 * i + 1]), -16));
        const auto expected = static_cast<int16_t>(std::trunc(-0.25 * (first[2 * i] + first[2 * i + 1])));
        ASSERT_EQ(out[2 * i], expected);
        ASSERT_EQ(out[2 * i + 1], expected);
    }
    EXPECT_EQ(call.right, std::vector<float>(kFrameSamples));
    EXPECT_EQ(call.channelCount, 1.0f);
}

// Which settings serve a frame, for every reading of the two headphone values.
TEST_F(FrameDriver, TakesEachSettingFromTheOutputClassItBelongsTo) {
    constexpr float kSpeakerPercent = 33.3f, kHeadphonePercent = 77.7f;
    const auto percent_of = [](float percent, float full) {
        const float product = float(double(percent) * double(full));
        return float(double(product) / 100.0);
    };
    const float speakerDb = percent_of(kSpeakerPercent, 18.0f), loudDb = percent_of(kSpeakerPercent, 21.0f);
    const float headphoneDb = percent_of(kHeadphonePercent, 20.0f);
    const struct {
        int stored, argument, volume;
        float width, chainChannels;
        bool headphoneDrc;
        float gainDb;
    } cases[] = {{0, 0, 15, 0.5f, 2.0f, false, speakerDb},  {0, 0, 16, 0.5f, 2.0f, false, loudDb},
                 {0, 0, -9, 0.0f, 1.0f, false, speakerDb},  {1, 1, 16, 0.5f, 2.0f, true, headphoneDb},
                 {1, 1, 15, 0.0f, 2.0f, true, headphoneDb}, {1, 0, 16, 0.0f, 1.0f, false, headphoneDb},
                 {0, 1, 16, 0.0f, 2.0f, true, loudDb},      {2, 2, 7, 0.0f, 2.0f, false, speakerDb}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.stored << c.argument << ' ' << c.volume << ' ' << c.width);
        mem.compressionGain = kSpeakerPercent;
        mem.headphoneCompressionGain = kHeadphonePercent;
        std::fill_n(mem.eqBandGain, kGeqBands, 3.0f);
        std::fill_n(mem.headphoneEqBandGain, kGeqBands, 4.0f);
        b_parameterTWS.stereoWidth = c.width;
        mem.headphoneMode = c.stored;
        ZOQ_update_volume(c.volume, c.volume > 10 ? AUDIO_STREAM_MUSIC : AUDIO_STREAM_RING);

        parameterDRC expected[2] = {b_parameterDRC, b_parameterX2B.headphoneDrc};
        initialize_dynamicRangeCompression_C(c.gainDb, &expected[c.headphoneDrc ? 1 : 0]);
        driven(Pcm(kStereoValues), c.argument);
        EXPECT_EQ(std::memcmp(&b_parameterDRC, &expected[0], sizeof expected[0]), 0);
        EXPECT_EQ(std::memcmp(&b_parameterX2B.headphoneDrc, &expected[1], sizeof expected[1]), 0);
        EXPECT_EQ(fake_chain::calls.back().channelCount, c.chainChannels);
        EXPECT_EQ(fake_chain::calls.back().headphone, c.stored);
        for (const float gain : b_parameterGEQ.bandGainDb) {
            EXPECT_EQ(gain, c.argument != 0 ? 4.0f : 3.0f);
        }
    }
    EXPECT_NEAR(double(b_parameterDRC.compThreshold), -33.3 * 18.0 / 100.0 / 0.8 * 1.25, 1e-5);
}

TEST_F(FrameDriver, LeavesTheFrameAloneWhileOffButSelectsTheBands) {
    std::fill_n(mem.headphoneEqBandGain, kGeqBands, 4.0f);
    const Pcm frame = engine::noise(3, kStereoValues);
    for (const int32_t off : {0, 2, -1}) {
        mem.stereoWidenEnable = off;
        b_parameterGEQ.bandGainDb[8] = 0.0f;
        EXPECT_EQ(driven(frame, 1), frame);
        EXPECT_EQ(b_parameterGEQ.bandGainDb[8], 4.0f);
        EXPECT_TRUE(fake_chain::calls.empty());
        EXPECT_EQ(mem.frameHistory[0][1023], 0.0f);
    }
    mem.mixRamp = 1;
    EXPECT_NE(driven(frame, 1), frame);
    EXPECT_EQ(fake_chain::calls.size(), 1u);
}

TEST_F(FrameDriver, StoresPairsAndSilencesFurtherChannels) {
    fake_chain::inside = [](float* out) {
        for (int i = 0; i < kHopSamples; ++i) {
            out[i] = std::ldexp(float(i), -15);
            out[kHopSamples + i] = std::ldexp(float(-i), -15);
        }
    };
    for (int channels = 1; channels <= kMaxHostChannels; ++channels) {
        for (const bool fold : {false, true}) {
            SCOPED_TRACE(channels);
            b_parameterTWS.stereoWidth = fold ? 0.0f : 0.5f;
            const size_t values = channels == 1 ? 513 : size_t(512 * channels);
            const Pcm in(values, 99), out = driven(in, 0, channels);
            const bool pair = channels > 1 && !fold;
            EXPECT_EQ(fake_chain::calls.back().channelCount, fold ? 1.0f : float(channels));
            for (int i = 0; i < 512; ++i) {
                const int16_t* frame = out.data() + i * channels;
                ASSERT_EQ(frame[0], i);
                ASSERT_EQ(frame[1], pair ? -i : channels == 1 ? std::min(i + 1, 511) : i);
                for (int c = 2; c < channels; ++c) {
                    ASSERT_EQ(frame[c], pair ? 0 : 99);
                    ASSERT_EQ(mem.frameHistory[c][1023], std::ldexp(99.0f, -15));
                }
            }
        }
    }
    fake_chain::calls.clear();
    Pcm frame(1);
    for (const int channels : {0, -1, 7, INT32_MIN, INT32_MAX}) {
        widening_frame(1, 0, frame.data(), 1024, 48000, channels);
    }
    widening_frame(1, 0, nullptr, 1024, 48000, 2);
    EXPECT_TRUE(fake_chain::calls.empty());
}

}  // namespace
