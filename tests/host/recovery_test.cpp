// Hostile settings come and go: once they are gone, the engine sounds as if they had never been.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <string>
#include <thread>

#include "dsp/poison.h"
#include "dsp/shared_value.h"
#include "host/configuration.h"
#include "tests/host/engine.h"
#include "tests/host/setting_rows.h"
#include "tests/support/signals.h"

using namespace android;
using engine::Pcm;

namespace {

constexpr int kWarmUp = 20, kHostile = 10, kCompared = 10;  // hops
constexpr int kHealing = 84;  // with the compared ones a second of audio: half the time that is promised
constexpr double kLeastRatioDb = 40.0;

const std::string kTypical =
    "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=70;Headphone_CompressionGain=60;VB_boostlin=50;"
    "EQ_trebleBoost=15;DS_stereoWidth=80;HP_SurroundWidth=90;DEN_centspeechgain=50;EQ_62hzgain=3;"
    "EQ_125hzgain=2;EQ_250hzgain=0;EQ_500hzgain=-1.5;EQ_1khzgain=0;EQ_2khzgain=0;EQ_4khzgain=1;EQ_8khzgain=0;"
    "EQ_16khzgain=2.5;Headphone_EQ_62hzgain=2;Headphone_EQ_125hzgain=0;Headphone_EQ_250hzgain=0;"
    "Headphone_EQ_500hzgain=0;Headphone_EQ_1khzgain=-2;Headphone_EQ_2khzgain=0;Headphone_EQ_4khzgain=0;"
    "Headphone_EQ_8khzgain=3;Headphone_EQ_16khzgain=0";

// Speech in the middle, noise at the sides and a bass tone.
const Pcm& music() {
    static const Pcm pcm = [] {
        constexpr size_t kCount = size_t(kHopSamples) * (kWarmUp + kHostile + kHealing + kCompared);
        const auto voice = signals::speech_like(1, kCount), bass = signals::sine(70.0, kCount, 0.2f);
        const auto left = signals::noise(2, kCount, 0.03f), right = signals::noise(3, kCount, 0.03f);
        Pcm out(2 * kCount);
        for (size_t i = 0; i < kCount; ++i) {
            out[2 * i] = static_cast<int16_t>(20000.0f * (voice[i] + bass[i] + left[i]));
            out[2 * i + 1] = static_cast<int16_t>(20000.0f * (voice[i] + bass[i] + right[i]));
        }
        return out;
    }();
    return pcm;
}

// What is heard at the end of the second behind the hostile time.
Pcm heard(int device, const std::function<void()>& poison, const std::function<void()>& heal) {
    engine::fresh_engine();
    engine::set((kTypical + ";output_device=" + std::to_string(device)).c_str());
    engine::play_through_settling(1024);
    Pcm end;
    for (int hop = 0; hop < kWarmUp + kHostile + kHealing + kCompared; ++hop) {
        if (hop == kWarmUp) {
            poison();
        } else if (hop == kWarmUp + kHostile) {
            heal();
        }
        const auto block =
            engine::played(Pcm(music().begin() + 1024 * hop, music().begin() + 1024 * (hop + 1)));
        if (hop >= kWarmUp + kHostile + kHealing) {
            end.insert(end.end(), block.begin(), block.end());
        }
    }
    return end;
}

double ratio_db(const Pcm& expected, const Pcm& heard) {
    double power = 0.0, error = 1e-9;
    for (size_t i = 0; i < expected.size(); ++i) {
        const double e = expected[i], d = e - heard[i];
        power += e * e;
        error += d * d;
    }
    return 10.0 * std::log10(power / error);
}

void set_typical() {
    engine::set(kTypical.c_str());
}

class Recovery : public ::testing::TestWithParam<int> {
  protected:
    bool uses(const float& setting, bool headphones) const {
        return headphones == (GetParam() == AUDIO_DEVICE_OUT_WIRED_HEADPHONE) ||
               &setting == &mem.denCentSpeechGain;
    }
    parameterMEM& mem = b_parameterMEM;
    const Pcm undisturbed = heard(
        GetParam(), [] {}, set_typical);
};

TEST_P(Recovery, FollowsEveryHostileSettingWithinASecond) {
#ifdef ZOQ_FEWER_CASES
    const std::vector<std::string> any = {"nan", "-1e38"};  // each a way of its own through the arithmetic
#else
    const std::vector<std::string> any = {"nan", "inf", "-inf", "1e38", "-1e38", "1e9", "-1e4", "1000"};
#endif
    int kinds = 0, lasting = 0;
    for (const SettingRow& row : setting_rows()) {
        if (!uses(*row.stored, row.stringKey[0] == 'H')) {
            continue;
        }
        // Just beyond the ranges; the loudspeaker's compression ends at 117 % while the volume is low.
        const bool band = row.stringKey.find("hzgain") != std::string::npos;
        std::vector<std::string> values = {band ? "25" : "120"};
        values.insert(values.end(), any.begin(), any.end());
        for (const std::string& value : values) {
            const bool asText = ++kinds % 2 == 0;
            const std::string text = row.fileKey + " " + value;
            const std::string string = row.stringKey + "=" + value;
            const Pcm after = heard(
                GetParam(),
                [&] {
                    asText ? apply_configuration_text(text.data(), text.size()) : engine::set(string.c_str());
                },
                set_typical);
            const double ratio = ratio_db(undisturbed, after);
            EXPECT_GE(ratio, kLeastRatioDb) << (asText ? text : string);
            lasting += ratio < kLeastRatioDb ? 1 : 0;
        }
    }
    EXPECT_EQ(lasting, 0) << "of " << kinds << " kinds";
}

// The gain that a reset leaves behind as the one last seen is one that a band may be given: so deep a cut is wide.
TEST_P(Recovery, FollowsAHostileGainIntoADeepCut) {
    const std::string key = GetParam() == AUDIO_DEVICE_OUT_SPEAKER ? "EQ_62hzgain" : "Headphone_EQ_62hzgain";
    const auto loudest = [](const Pcm& pcm) {
        return std::max(-*std::min_element(pcm.begin(), pcm.end()),
                        +*std::max_element(pcm.begin(), pcm.end()));
    };
    const Pcm after = heard(
        GetParam(), [&] { engine::set((key + "=60").c_str()); },
        [&] { engine::set((key + "=-100").c_str()); });
    EXPECT_LT(100 * loudest(after), loudest(undisturbed));
}

// Set and withdrawn by another thread in less than a hop.
TEST_P(Recovery, FollowsSettingsThatComeAndGoWithinAHop) {
    for (const SettingRow& row : setting_rows()) {
        if (row.derived == nullptr || !uses(*row.stored, row.stringKey[0] == 'H')) {
            continue;
        }
        float* setting = const_cast<float*>(row.derived);
        std::atomic<bool> stop = false;
        std::thread flicker;
        const auto comeAndGo = [&] {
            const float sane = *setting;
            flicker = std::thread([&stop, setting, sane] {
                while (!stop) {
                    store_shared(*setting, 1e6f);
                    store_shared(*setting, sane);
                }
            });
        };
        const auto end = [&] {
            stop = true;
            flicker.join();
        };
        EXPECT_GE(ratio_db(undisturbed, heard(GetParam(), comeAndGo, end)), kLeastRatioDb) << row.stringKey;
    }
}

// Hosts can write the records as well; what they restore is all they need to touch.
TEST_P(Recovery, FollowsRecordsThatAHostHasPoisonedAndRestored) {
    parameterVB& vb = b_parameterVB;
    float* const both[] = {&b_parameterGEQ.bandQ, &b_parameterGEQ.bandWarp[0], &b_parameterGEQ.bandWarp[8],
                           &b_parameterDEN.smoothFactor};
    float* const headphones[] = {&b_parameterX2B.ipsiResponse[3][1][5].re,
                                 &b_parameterX2B.headphoneDrc.expThreshold};
    float* const speaker[] = {&b_parameterEQ.trebleSos[12],
                              &b_parameterEQ.trebleSos[0],
                              &b_parameterEQ.trebleSectionCount,
                              &vb.lowpassSos[0],
                              &vb.outputHighpassSos[16],
                              &vb.slowRelease,
                              &vb.gainSmoothing,
                              &b_parameterTWS.sameSideFilter[9].im,
                              &b_parameterDRC.expSlope};
    std::vector<float*> fields(std::begin(both), std::end(both));
    GetParam() == AUDIO_DEVICE_OUT_SPEAKER
        ? fields.insert(fields.end(), std::begin(speaker), std::end(speaker))
        : fields.insert(fields.end(), std::begin(headphones), std::end(headphones));
    int kinds = 0, lasting = 0;
    for (float* field : fields) {
        for (const float value : {NAN, 0.0f, -1.0f, 1e38f}) {
            float restored = 0.0f;
            const Pcm after = heard(
                GetParam(), [&] { restored = std::exchange(*field, value == -1.0f ? -*field : value); },
                [&] { *field = restored; });
            EXPECT_GE(ratio_db(undisturbed, after), kLeastRatioDb)
                << "field " << std::find(fields.begin(), fields.end(), field) - fields.begin() << " = "
                << value;
            lasting += ratio_db(undisturbed, after) < kLeastRatioDb ? 1 : 0;
            ++kinds;
        }
    }
    EXPECT_EQ(lasting, 0) << "of " << kinds << " kinds";
}

INSTANTIATE_TEST_SUITE_P(Routes, Recovery,
                         ::testing::Values(AUDIO_DEVICE_OUT_SPEAKER, AUDIO_DEVICE_OUT_WIRED_HEADPHONE));

// Nothing that settings within their ranges make of full-scale signals is taken for poison.
TEST(Poison, IsNeverSeenInLegalExtremes) {
    const std::string all =
        "CompressionGain=100;Headphone_CompressionGain=100;VB_boostlin=100;EQ_trebleBoost=100;";
    const std::string wide = "DS_stereoWidth=100;HP_SurroundWidth=100;DEN_centspeechgain=100;";
    const std::string narrow = "DS_stereoWidth=0;HP_SurroundWidth=0;DEN_centspeechgain=0;";
    for (const int device : {2, 8}) {
        for (const std::string& settings : {all + wide, all + narrow, wide}) {
            for (const int period : {2, 12, 97, 768, 1500}) {
                engine::fresh_engine();
                const uint32_t before = poisonResets;
                engine::set(
                    (settings + "HIFIPARA=STEREOWIDEN_Enable=true;output_device=" + std::to_string(device))
                        .c_str());
                for (int block = 0; block < 36; ++block) {
                    for (const SettingRow& row : setting_rows()) {
                        const bool loud = block < 28 || row.stringKey.find("1") != std::string::npos;
                        if (row.stringKey.find("hzgain") != std::string::npos &&
                            (block == 0 || block == 28)) {
                            engine::set((row.stringKey + (loud ? "=24" : "=-24")).c_str());
                        }
                    }
                    Pcm square(1024);
                    for (int i = 0; i < 512; ++i) {
                        const int16_t value = (512 * block + i) / (period / 2) % 2 == 0 ? 32767 : -32768;
                        square[size_t(2 * i)] = value;
                        square[size_t(2 * i + 1)] = block % 3 == 0 ? value : static_cast<int16_t>(-1 - value);
                    }
                    engine::played(square);
                }
                ASSERT_EQ(b_parameterMEM.headphoneMode, device == 8 ? 1 : 0);
                ASSERT_EQ(b_parameterMEM.mixRamp, 5120);
                EXPECT_EQ(poisonResets, before) << settings << device << " period " << period;
            }
        }
    }
}

}  // namespace
