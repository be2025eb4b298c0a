// The least a host does: load once, switch on, hand over every block.
#include <zoq2processing.h>

#include <cstdio>
#include <vector>

int main() {
    constexpr int kFrames = 512, kChannels = 2, kRate = 48000;
    ZOQ_OUTPROC_PLAY_INIT();
    ZOQ_PARAMS_SET(android::String8("HIFIPARA=STEREOWIDEN_Enable=true;DS_stereoWidth=80"));

    std::vector<int16_t> block(kFrames * kChannels);
    for (int n = 0; n < 100; ++n) {
        for (size_t i = 0; i < block.size(); ++i) {
            block[i] = static_cast<int16_t>(i % 96 < 48 ? 3000 : -3000);  // the player's next block
        }
        ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), static_cast<int>(block.size() * sizeof(int16_t)), kRate,
                                 kChannels);
    }
    std::printf("%s\n", ZOQ_PARAMS_GET(android::String8("DS_stereoWidth")).string());
    return block[0] != 3000 ? 0 : 1;  // processed, not passed through
}
