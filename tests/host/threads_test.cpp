// Playback and initialisation while two threads set, ask and turn the volume; worth most under the thread sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

#include "tests/host/engine.h"

using namespace android;

namespace {

// Bounded by work done, so that a busy machine neither stretches the test nor empties it.
constexpr int kLeastBlocks = 100, kMostBlocks = 100000, kLeastHeadphoneBlocks = 40;
constexpr int kLeastStrings = 200;

std::atomic<bool> stop;
std::atomic<int> device, strings[2];

// Sets two bands of its own to one value over and over, with the settings both storms share and the current
// device, and checks the answers: its own band as just set, a shared setting as either storm or an initialisation,
// which does not take a negative boost, may have set it.
void storm(const std::string& band, std::atomic<int>& count, int& wrongAnswers) {
    for (unsigned n = 0; !stop.load(); ++n) {
        const std::string value = n % 2 == 0 ? "3" : "-4";
        engine::set((band + "=" + value + ";Headphone_" + band + "=" + value + ";VB_boostlin=" + value +
                     ";EQ_trebleBoost=30;DS_stereoWidth=" + (n % 5 == 0 ? "0" : "80") +
                     ";HP_SurroundWidth=90;DEN_centspeechgain=50;CompressionGain=70" +
                     ";Headphone_CompressionGain=" + value +
                     ";output_device=" + std::to_string(device.load()) + ";HIFIPARA=STEREOWIDEN_Enable=true")
                        .c_str());
        const std::string answer = ZOQ_PARAMS_GET(String8((band + ";VB_boostlin;HIFIPARA").c_str())).string();
        const std::string on = ";HIFIPARA=STEREOWIDEN_Enable=true;VB_boostlin=";
        const std::string own = band + "=" + value + ".000000" + on;
        wrongAnswers +=
            answer == own + "3.000000" || answer == own + "-4.000000" || answer == own + "25.000000" ? 0 : 1;
        ZOQ_update_volume(static_cast<int>(n % 30), AUDIO_STREAM_MUSIC);
        ++count;
    }
}

TEST(Threads, SettingsMayChangeWhileBlocksPlay) {
    engine::fresh_engine();
    stop = false;
    device = 2;
    int wrong[2] = {};
    std::thread first(storm, "EQ_16khzgain", std::ref(strings[0]), std::ref(wrong[0]));
    std::thread second(storm, "EQ_62hzgain", std::ref(strings[1]), std::ref(wrong[1]));
    int processed = 0, headphone = 0;
    const auto enough = [&](int blocks) {
        return blocks >= kLeastBlocks && headphone >= kLeastHeadphoneBlocks && strings[0] >= kLeastStrings &&
               strings[1] >= kLeastStrings;
    };
    for (int b = 0; b < kMostBlocks && !enough(b); ++b) {
        device = b < kLeastBlocks / 2 ? 2 : 8;
        if (b % 9 == 8) {
            ZOQ_OUTPROC_PLAY_INIT();
        }
        const engine::Pcm block = engine::noise(static_cast<uint32_t>(b % 7), 1024);
        processed += engine::played(block) != block ? 1 : 0;
        headphone += b_parameterMEM.headphoneMode;
    }
    stop = true;
    first.join();
    second.join();
    EXPECT_EQ(wrong[0], 0);
    EXPECT_EQ(wrong[1], 0);
    EXPECT_GT(processed, 0);
    EXPECT_GE(headphone, kLeastHeadphoneBlocks);
    EXPECT_GE(std::min(strings[0].load(), strings[1].load()), kLeastStrings);
}

}  // namespace
