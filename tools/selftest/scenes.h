// A deterministic set of scenes through the entry points, and a hash of every 16-bit sample that comes back.
//
// The signals are made with integer arithmetic alone, so every target feeds the engine the same bits; a hash
// that differs from the committed one means that this build computes other samples.
#pragma once

#include <cstdint>

namespace selftest {

struct Change {
    int block;             // before which block
    const char* settings;  // a parameter string; null ends a list
    int volume = 0;        // a volume index above 0 is notified
};

struct Scene {
    const char* name;
    void (*signal)(int sampleFrame, int16_t* pair);
    int blockFrames;
    int blocks;
    const Change* changes;
    uint64_t expected;  // the committed hash
};

extern const Scene kScenes[];
extern const int kSceneCount;

// Initialises the engine, plays the scene and returns the FNV-1a hash of the output.
uint64_t play(const Scene& scene);

}  // namespace selftest
