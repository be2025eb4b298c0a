// A host's life: blocks of any size, rate and channel count between settings, devices, volumes and restarts.
#include <fuzzer/FuzzedDataProvider.h>

#include <string>

#include "fuzz/engine.h"
#include "host/settings.h"

using namespace android;

namespace {

constexpr int kMostSteps = 200;

std::string any_setting(FuzzedDataProvider& choose) {
    static constexpr const char* kValues[] = {"0",     "50",    "100",   "-1",
                                              "1e39",  "-1e39", "nan",   "-inf",
                                              "1e-39", "24",    "-24.5", "STEREOWIDEN_Enable=true"};
    const Setting& setting = settings()[choose.ConsumeIntegralInRange<int>(0, kSettings - 1)];
    const char* key = setting.stringKey != nullptr ? setting.stringKey : setting.fileKey;
    return std::string(key) + "=" + choose.PickValueInArray(kValues);
}

// Sizes are those of real hosts, or anything; what cannot be a block keeps a block of one value.
void play_any(FuzzedDataProvider& choose) {
    const int values = choose.ConsumeBool()
                           ? choose.PickValueInArray({1024, 960, 882, 2048, 512, 36864, 36866, 2})
                           : choose.ConsumeIntegralInRange<int>(0, 40000);
    const int bytes =
        choose.ConsumeIntegralInRange<int>(0, 15) == 0 ? choose.ConsumeIntegral<int>() : 2 * values;
    const int rate = choose.PickValueInArray({48000, 48000, 48000, 44100, 8000, 0, -1});
    const int channels = choose.PickValueInArray({2, 2, 2, 1, 6, 3, 0, 7, -1});
    // A block may not be larger than its memory: that is the caller's promise.
    const bool honest = bytes <= 2 * values;
    fuzz::play(fuzz::noise(static_cast<size_t>(values)), honest ? bytes : 2 * values, rate, channels);
}

void step(FuzzedDataProvider& choose) {
    switch (choose.ConsumeIntegralInRange<int>(0, 9)) {
        case 0:
        case 1:
            ZOQ_PARAMS_SET(String8(any_setting(choose).c_str()));
            break;
        case 2:
            ZOQ_PARAMS_SET(
                String8(("output_device=" + std::to_string(choose.ConsumeIntegral<int>())).c_str()));
            break;
        case 3:
            ZOQ_update_volume(choose.ConsumeIntegral<int>(), AUDIO_STREAM_MUSIC);
            break;
        case 4:
            ZOQ_PARAMS_SET(String8(choose.ConsumeBool() ? "HIFIPARA=STEREOWIDEN_Enable=true"
                                                        : "HIFIPARA=STEREOWIDEN_Enable=false"));
            break;
        case 5:
            ZOQ_OUTPROC_PLAY_INIT();
            break;
        default:
            play_any(choose);
            fuzz::require_sound_books();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider choose(data, size);
    fuzz::start();
    for (int steps = 0; steps < kMostSteps && choose.remaining_bytes() > 0; ++steps) {
        step(choose);
    }
    return 0;
}
