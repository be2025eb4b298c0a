// The state at load, its validation and what an initialisation sets and leaves alone.
#include "host/engine_state.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "host/configuration.h"
#include "host/settings.h"

using namespace android;

namespace {

bool all_zero(const void* record, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(record);
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

// Looked at before main.
const bool kZeroAtLoad = all_zero(&b_parameterMEM, sizeof b_parameterMEM) &&
                         all_zero(&b_parameterDEN, sizeof b_parameterDEN) &&
                         all_zero(&b_parameterX2B, sizeof b_parameterX2B);
const int32_t kDeviceAtLoad = gCurOutputDevice;

TEST(EngineState, IsZeroAtLoadWithTheLoudspeakerSelected) {
    EXPECT_TRUE(kZeroAtLoad);
    EXPECT_EQ(kDeviceAtLoad, 2);
    EXPECT_STREQ(zoq_switch, "HIFIPARA");
    EXPECT_STREQ(settings()[0].stringKey, zoq_switch);
    EXPECT_EQ(pthread_mutex_trylock(&glock_ZOQ), 0);
    EXPECT_EQ(pthread_mutex_unlock(&glock_ZOQ), 0);
}

TEST(EngineState, RangeTestTakesNotANumberAsInRange) {
    EXPECT_EQ(parameter_out_of_range(0.0f, 0.0f, 100.0f), 0);
    EXPECT_EQ(parameter_out_of_range(100.0f, 0.0f, 100.0f), 0);
    EXPECT_EQ(parameter_out_of_range(100.00001f, 0.0f, 100.0f), 1);
    EXPECT_EQ(parameter_out_of_range(-1e-30f, 0.0f, 100.0f), 1);
    EXPECT_EQ(parameter_out_of_range(NAN, 0.0f, 100.0f), 0);
    EXPECT_EQ(parameter_out_of_range(0.0f, NAN, NAN), 0);
}

template <typename Value>
void expect_validated(Value parameterMEM::*field, Value given, Value expected) {
    parameterMEM& mem = b_parameterMEM;
    std::memset(&mem, 0x55, sizeof mem);
    mem.stereoWidenEnable = mem.headphoneMode = mem.settleCountdown = 1;
    mem.sampleRate = 44100;
    mem.compressionGain = mem.vbBoostlin = mem.eqTrebleBoost = mem.dsStereoWidth = mem.denCentSpeechGain =
        1.0f;
    mem.*field = given;
    parameterMEM wanted = mem;
    wanted.*field = expected;
    validate_state();
    EXPECT_EQ(std::memcmp(&mem, &wanted, sizeof mem), 0) << given << " is to become " << expected;
}

TEST(EngineState, ValidationReplacesWhatIsOutOfRangeAndNothingElse) {
    using M = parameterMEM;
    const std::pair<float M::*, float> percents[] = {{&M::compressionGain, 70.0f},
                                                     {&M::vbBoostlin, 25.0f},
                                                     {&M::eqTrebleBoost, 15.0f},
                                                     {&M::dsStereoWidth, 80.0f},
                                                     {&M::denCentSpeechGain, 100.0f}};
    for (const auto& [field, fallback] : percents) {
        for (const float kept : {0.0f, -0.0f, 33.3f, 100.0f, NAN}) {
            expect_validated(field, kept, kept);
        }
        for (const float replaced : {-0.01f, 100.00001f, 100.5f, HUGE_VALF, -HUGE_VALF}) {
            expect_validated(field, replaced, fallback);
        }
    }
    for (float M::*const unchecked : {&M::headphoneCompressionGain, &M::hpSurroundWidth}) {
        expect_validated(unchecked, 250.0f, 250.0f);
    }
    for (int32_t M::*const flag : {&M::stereoWidenEnable, &M::headphoneMode}) {
        for (const auto& [given, expected] : {std::pair{0, 0}, {1, 1}, {2, 0}, {-1, 0}, {INT32_MIN, 0}}) {
            expect_validated(flag, given, expected);
        }
    }
    const std::pair<int32_t, int32_t> rates[] = {{8000, 8000},   {48000, 48000}, {7999, 48000},
                                                 {48001, 48000}, {96000, 48000}, {0, 48000},
                                                 {-44100, 48000}};
    for (const auto& [given, expected] : rates) {
        expect_validated(&M::sampleRate, given, expected);
    }
    const std::pair<int32_t, int32_t> countdowns[] = {{0, 0},         {6000, 6000},  {32768, 32768},
                                                      {32769, 0},     {40000, 0},    {-1, 0},
                                                      {INT32_MIN, 0}, {INT32_MAX, 0}};
    for (const auto& [given, expected] : countdowns) {
        expect_validated(&M::settleCountdown, given, expected);
    }
}

TEST(EngineState, InitialisationSetsDefaultsAndKeepsSettingsAndFrames) {
    if (access(kConfigurationPath, F_OK) == 0) {
        GTEST_SKIP() << "this machine has a configuration file";
    }
    for (const bool again : {false, true}) {
        parameterMEM& mem = b_parameterMEM;
        std::memset(&mem, 0x55, sizeof mem);
        mem.compressionGain = mem.vbBoostlin = mem.eqTrebleBoost = mem.dsStereoWidth = mem.denCentSpeechGain =
            again ? 50.0f : 101.0f;
        ZOQ_OUTPROC_PLAY_INIT();

        EXPECT_EQ(mem.compressionGain, again ? 50.0f : 70.0f);
        EXPECT_EQ(b_parameterDEN.centerSpeechGain, 1.0f);
        EXPECT_EQ(b_parameterDEN.baseGain, 1.0f);
        EXPECT_EQ(b_parameterDEN.stereoOutput, 0.0f);
        EXPECT_EQ(b_parameterTWS.stereoWidth, 0.5f);
        EXPECT_EQ(b_parameterX2B.surroundWidth, 0.7f);
        EXPECT_EQ(b_parameterVB.boostLin, 2.5f);
        EXPECT_EQ(b_parameterEQ.trebleGain, 0.0f);
        EXPECT_TRUE(all_zero(b_parameterGEQ.bandGainDb, sizeof b_parameterGEQ.bandGainDb));
        EXPECT_EQ(mem.volumeIndex, 15);
        EXPECT_EQ(mem.volumeIndexSwitch, 15);

        EXPECT_TRUE(all_zero(mem.inRing, sizeof mem.inRing));
        EXPECT_TRUE(all_zero(mem.outRing, sizeof mem.outRing));
        EXPECT_EQ(mem.inFill, 0);
        EXPECT_EQ(mem.outFill, 4096);
        EXPECT_EQ(mem.mixRamp, 0);
        EXPECT_EQ(mem.sampleRate, 48000);
        EXPECT_EQ(mem.settleCountdown, 0);

        EXPECT_EQ(mem.prevHeadphoneMode, 0x55555555);
        EXPECT_EQ(mem.blockBytes, 0x55555555);
        for (const float kept : {mem.headphoneCompressionGain, mem.hpSurroundWidth, mem.eqBandGain[8],
                                 mem.headphoneEqBandGain[0], mem.frameHistory[0][0],
                                 mem.frameHistory[5][1023], mem.frameIn[0][0], mem.frameOut[5][511]}) {
            EXPECT_EQ(std::bit_cast<uint32_t>(kept), 0x55555555u);
        }
    }
}

}  // namespace
