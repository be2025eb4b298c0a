// What is played: loops of stereo PCM, made once.
#pragma once

#include <cstdint>
#include <vector>

namespace soak {

enum class Signal { kMusic, kSilence, kNoise, kSquare, kImpulses, kConstant, kLeastBit, kCount };

// Copies sample frames from position on; channels above 2 repeat the pair.
void fill(Signal signal, int64_t position, int channels, std::vector<int16_t>& block);

}  // namespace soak
