// What the host tests share: a fresh engine and blocks of PCM. The engine is process-wide, so every test
// starts with fresh_engine().
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "zoq2processing.h"

namespace engine {

using Pcm = std::vector<int16_t>;

// As after loading the library and initialising it once.
inline void fresh_engine() {
    android::b_parameterMEM = {};
    android::gCurOutputDevice = 2;
    ZOQ_OUTPROC_PLAY_INIT();
}

inline void set(const char* pairs) {
    ZOQ_PARAMS_SET(android::String8(pairs));
}

inline void enable(bool on) {
    set(on ? "HIFIPARA=STEREOWIDEN_Enable=true" : "HIFIPARA=STEREOWIDEN_Enable=false");
}

inline Pcm noise(uint32_t seed, int values) {
    std::mt19937 generator(seed);
    Pcm pcm(static_cast<size_t>(values));
    for (int16_t& value : pcm) {
        value = static_cast<int16_t>(static_cast<uint16_t>(generator() >> 16));
    }
    return pcm;
}

// The block as it comes back.
inline Pcm played(Pcm block, int sampleRate = 48000, int channels = 2) {
    ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), static_cast<int>(block.size() * 2), sampleRate, channels);
    return block;
}

// Plays silence in stereo blocks of this length until the next block is the one that ends the settling.
inline void play_through_settling(int values) {
    const Pcm silence(static_cast<size_t>(values));
    do {
        played(silence);
    } while (android::b_parameterMEM.settleCountdown > values / 2);
}

}  // namespace engine
