#include "dsp/pcm.h"

#include <limits>

#include "dsp/kernel_level.h"

namespace android {

int16_t to_int16(float value) {
    constexpr float kLimit = 2147483648.0f;  // 2^31
    int32_t integer = 0;
    if (value >= kLimit) {
        integer = std::numeric_limits<int32_t>::max();
    } else if (value <= -kLimit) {
        integer = std::numeric_limits<int32_t>::min();
    } else if (value == value) {
        integer = static_cast<int32_t>(value);
    }
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(integer) & 0xFFFFu));
}

namespace scalar {

void from_pcm(const int16_t* values, float* left, float* right) {
    for (int i = 0; i < kHopSamples; ++i) {
        left[i] = float(values[2 * i]) * kFromInt16;
        right[i] = float(values[2 * i + 1]) * kFromInt16;
    }
}

void to_pcm(const float* left, const float* right, int16_t* values) {
    for (int i = 0; i < kHopSamples; ++i) {
        values[2 * i] = to_int16(left[i] * kToInt16);
        values[2 * i + 1] = to_int16(right[i] * kToInt16);
    }
}

}  // namespace scalar

ZOQ_KERNEL(from_pcm, const int16_t* values, float* left, float* right);
ZOQ_KERNEL(to_pcm, const float* left, const float* right, int16_t* values);

void from_pcm(const int16_t* values, float* left, float* right) {
    constexpr size_t kBytes = kHopSamples * sizeof(float);
    from_pcm_kernel.run({{left, kBytes}, {right, kBytes}}, values, left, right);
}

void to_pcm(const float* left, const float* right, int16_t* values) {
    to_pcm_kernel.run({{values, 2 * kHopSamples * sizeof(int16_t)}}, left, right, values);
}

}  // namespace android
