// One frame of interleaved PCM through the chain. Audio thread only.
#pragma once

#include "host/engine_state.h"

namespace android {

// What the frame driver may touch: sample frame i of channel c lies at i x channels + c. Values behind
// available read as 0 and are not written, so that a frame of many channels ends where its queue ends.
struct PcmFrame {
    int16_t* values;
    int available;  // int16 values
    int channels;   // 1..6

    bool is_whole_stereo() const { return channels == 2 && available >= 2 * kHopSamples; }
    int16_t get(int index) const { return index < available ? values[index] : int16_t{0}; }
    void put(int index, int16_t value) const {
        if (index < available) {
            values[index] = value;
        }
    }
};

// Processes 512 sample frames in place; nothing happens while processing is off and faded out.
void process_frame(int headphone, const PcmFrame& frame);

}  // namespace android
