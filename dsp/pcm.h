// 16-bit samples and floats.
#pragma once

#include "dsp/frame.h"

namespace android {

inline constexpr float kFromInt16 = 1.0f / 32768.0f;
inline constexpr float kToInt16 = 32768.0f;

// Truncates toward zero to 32 bits, saturating there, not-a-number giving 0; the low 16 bits are the result, so +1.0 x
// 32768 wraps to -32768.
int16_t to_int16(float value);

// A hop of interleaved stereo to full scale 1 and back, by the two factors above and to_int16().
//        values           512 x 2        left, right, left, ...
//        left, right      512 samples    may be one array where they are read
void from_pcm(const int16_t* values, float* left, float* right);
void to_pcm(const float* left, const float* right, int16_t* values);

}  // namespace android
