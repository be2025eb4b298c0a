// The engine as fuzz targets drive it: from a known start, with what must hold after every block.
#pragma once

#include <cstdint>
#include <vector>

#include "fuzz/require.h"
#include "host/configuration.h"
#include "zoq2processing.h"

namespace fuzz {

// The address sanitizer guards both ends of the block: it has memory of its own.
inline void play(const std::vector<int16_t>& samples, int bytes, int rate, int channels) {
    std::vector<int16_t> block(samples);
    ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), bytes, rate, channels);
}

// The books of the rings, whatever came before.
inline void require_sound_books() {
    const android::parameterMEM& mem = android::b_parameterMEM;
    require(mem.inFill >= 0 && mem.inFill < 2 * android::kHopSamples * android::kMaxHostChannels, "inFill");
    require(mem.outFill >= 0 && mem.outFill <= android::kRingValues, "outFill");
    require(mem.mixRamp >= 0 && mem.mixRamp <= 5120, "mixRamp");
}

// The state before the first initialisation, and the initialisation without the device's own file.
inline void start() {
    android::b_parameterMEM = {};
    android::gCurOutputDevice = AUDIO_DEVICE_OUT_SPEAKER;
    ZOQ_OUTPROC_PLAY_INIT();
}

inline std::vector<int16_t> noise(size_t values) {
    std::vector<int16_t> block(values);
    uint32_t random = 1;
    for (int16_t& value : block) {
        random = random * 1664525u + 1013904223u;
        value = static_cast<int16_t>(random >> 16);
    }
    return block;
}

// Through settling and some hops, on both routes, so that what was set reaches every module.
inline void listen() {
    const std::vector<int16_t> block = noise(2 * 512);
    for (const char* device : {"output_device=4", "output_device=2"}) {
        ZOQ_PARAMS_SET(android::String8(device));
        for (int i = 0; i < 14; ++i) {
            play(block, 2048, android::kSampleRateHz, 2);
            require_sound_books();
        }
    }
}

}  // namespace fuzz
