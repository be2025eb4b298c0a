// Playback while two threads set, ask and turn the volume; worth most under the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/host/engine.h"

using namespace android;

namespace {

constexpr int kBlocks = 600;

std::atomic<bool> stop;
std::atomic<int> device;

// Sets two bands of its own to one value over and over, with the settings both storms share and the current
// device, and checks the answers: its own band as just set, a shared setting as either storm may have set it.
void storm(const std::string& band, int& wrongAnswers) {
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
        wrongAnswers += answer == own + "3.000000" || answer == own + "-4.000000" ? 0 : 1;
        ZOQ_update_volume(static_cast<int>(n % 30), AUDIO_STREAM_MUSIC);
    }
}

TEST(Threads, SettingsMayChangeWhileBlocksPlay) {
    engine::fresh_engine();
    stop = false;
    device = 2;
    int wrong[2] = {};
    std::thread first(storm, "EQ_16khzgain", std::ref(wrong[0]));
    std::thread second(storm, "EQ_62hzgain", std::ref(wrong[1]));
    int processed = 0, headphone = 0;
    for (int b = 0; b < kBlocks; ++b) {
        device = b < kBlocks / 2 ? 2 : 8;
        const engine::Pcm block = engine::noise(static_cast<uint32_t>(b % 7), 2048);
        processed += engine::played(block) != block ? 1 : 0;
        headphone += b_parameterMEM.headphoneMode;
    }
    stop = true;
    first.join();
    second.join();
    EXPECT_EQ(wrong[0], 0);
    EXPECT_EQ(wrong[1], 0);
    EXPECT_GT(processed, 0);
    EXPECT_GT(headphone, 0);
}

}  // namespace
