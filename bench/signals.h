// Music-like stereo material made of integers and a few decaying partials, the same on every run.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace bench {

// Interleaved 16-bit values: a beating chord, a kick every half second, and noise at -36 dB, about -16 dBFS.
inline std::vector<int16_t> music(int sampleFrames) {
    std::vector<int16_t> values(2 * static_cast<size_t>(sampleFrames));
    uint32_t seed = 1;
    for (int i = 0; i < sampleFrames; ++i) {
        const double t = i / 48000.0, beat = std::fmod(t, 0.5);
        const double kick = 0.4 * std::exp(-12.0 * beat) * std::sin(6.2832 * 55.0 * beat);
        for (int c = 0; c < 2; ++c) {
            seed = seed * 1664525u + 1013904223u;
            const double noise = 0.016 * (static_cast<double>(seed >> 8) / 8388608.0 - 1.0);
            const double chord = 0.1 * (std::sin(6.2832 * 220.0 * t) + std::sin(6.2832 * (277.2 + c) * t) +
                                        std::sin(6.2832 * (3300.0 + 40.0 * c) * t));
            values[2 * static_cast<size_t>(i) + static_cast<size_t>(c)] =
                static_cast<int16_t>(32767.0 * (kick + noise + chord));
        }
    }
    return values;
}

}  // namespace bench
