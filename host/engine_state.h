// The engine state's life: values at load, validation, buffer reset. The record is in
// include/zoq2processing.h.
#pragma once

#include "zoq2processing.h"

namespace android {

inline constexpr int kFrameValues = 2 * kHopSamples;  // int16 values of one stereo hop
inline constexpr int kQueueStartValues = 4096;        // zeros ahead of the first block after initialisation
inline constexpr int kRampPairs = 5120;               // length of the dry/wet crossfade
inline constexpr int kSettleSampleFrames = 6000;      // passed through after a change of stream
inline constexpr int32_t kHeadphoneDevices =
    AUDIO_DEVICE_OUT_WIRED_HEADSET | AUDIO_DEVICE_OUT_WIRED_HEADPHONE | AUDIO_DEVICE_OUT_BLUETOOTH_A2DP |
    AUDIO_DEVICE_OUT_BLUETOOTH_A2DP_HEADPHONES;
static_assert(kHeadphoneDevices == 0x18C);

// Start-up: replaces settings outside their ranges by fallback values. Not-a-number counts as in range.
void validate_state();

// Start-up and audio thread: both rings go to zero, the queue is left with outFill zero values, the crossfade
// dry.
void reset_rings(int32_t outFill);

}  // namespace android
