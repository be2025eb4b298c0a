// The entry points of the audio thread: blocks of any size in and out of frames of 512 sample frames.
#include <algorithm>
#include <cstring>
#include <limits>

#include "dsp/pcm.h"
#include "dsp/shared_value.h"
#include "host/engine_state.h"
#include "host/flush_to_zero.h"
#include "host/frame_driver.h"

namespace android {

namespace {

struct Block {
    int16_t* samples;
    int32_t bytes;
    int32_t sampleRate;
    int32_t channels;

    int32_t values() const { return bytes >> 1; }
    bool fits() const { return values() <= kMaxBlockValues && channels >= 0 && channels <= kMaxHostChannels; }
    bool playable() const { return samples != nullptr && bytes >= 0 && channels > 0; }
    int32_t sample_frames() const { return channels != 0 ? bytes / channels / 2 : 0; }
};

void update_output_class() {
    pthread_mutex_lock(&glock_ZOQ);
    b_parameterMEM.prevHeadphoneMode = b_parameterMEM.headphoneMode;
    b_parameterMEM.headphoneMode = (gCurOutputDevice & kHeadphoneDevices) != 0 ? 1 : 0;
    pthread_mutex_unlock(&glock_ZOQ);
}

void detect_stream_change(const Block& block) {
    parameterMEM& mem = b_parameterMEM;
    if (block.sampleRate != mem.sampleRate || block.bytes != mem.blockBytes ||
        mem.headphoneMode != mem.prevHeadphoneMode) {
        mem.sampleRate = block.sampleRate;
        mem.blockBytes = block.bytes;
        mem.settleCountdown = kSettleSampleFrames;
    }
}

// True while blocks pass through untouched. The block that ends the settling starts with empty rings, dry,
// behind as many zeros as the block leaves over after its last whole frame.
bool settling(const Block& block) {
    parameterMEM& mem = b_parameterMEM;
    if (mem.settleCountdown <= 0) {
        return false;
    }
    const int64_t left = int64_t{mem.settleCountdown} - block.sample_frames();
    mem.settleCountdown = static_cast<int32_t>(std::min<int64_t>(left, std::numeric_limits<int32_t>::max()));
    if (mem.settleCountdown > 0) {
        return true;
    }
    reset_rings(block.values() % kFrameValues);
    return false;
}

// The bookkeeping keeps the two fills below 4096 values together; a host that writes into the state may break
// that.
bool rings_hold(const Block& block) {
    const parameterMEM& mem = b_parameterMEM;
    return mem.inFill >= 0 && mem.outFill >= 0 &&
           int64_t{mem.inFill} + mem.outFill + block.values() <= kRingValues;
}

void crossfade(const int16_t* dry, int16_t* wet) {
    parameterMEM& mem = b_parameterMEM;
    if (mem.mixRamp == kRampPairs && load_shared(mem.stereoWidenEnable) == 1) {
        return;  // all wet and to stay so: dry x 0 + wet x 1 is exact
    }
    for (int p = 0; p < kHopSamples; ++p) {
        const float g = float(mem.mixRamp) / float(kRampPairs);
        for (int i = 2 * p; i < 2 * p + 2; ++i) {
            wet[i] = to_int16((1.0f - g) * float(dry[i]) + g * float(wet[i]));
        }
        const int32_t enable = load_shared(mem.stereoWidenEnable);
        if (enable == 1 && mem.mixRamp < kRampPairs) {
            ++mem.mixRamp;
        } else if (enable == 0 && mem.mixRamp > 0) {
            --mem.mixRamp;
        }
    }
}

// Processes every whole frame of the input ring into the queue; returns how many there were.
int process_frames(const Block& block) {
    parameterMEM& mem = b_parameterMEM;
    const int frames = mem.inFill / kFrameValues;
    for (int k = 0; k < frames; ++k) {
        const int16_t* dry = mem.inRing + k * kFrameValues;
        const int start = mem.outFill + k * kFrameValues;
        int16_t* wet = mem.outRing + start;
        std::copy_n(dry, kFrameValues, wet);
        if (load_shared(mem.stereoWidenEnable) == 1 && mem.mixRamp == 0) {
            stereoWidening_frame_initialize();
        }
        process_frame(mem.headphoneMode, PcmFrame{wet, kRingValues - start, block.channels});
        crossfade(dry, wet);
    }
    return frames;
}

// Drops values from the front; what lies behind them up to fill moves up, the rest stays as it stands.
void drop_front(int16_t* ring, int32_t& fill, int32_t values) {
    fill -= values;
    std::memmove(ring, ring + values, static_cast<size_t>(fill) * sizeof(int16_t));
}

// Answers the block from the front of the queue. When the queue is short the block stays as it was and one
// frame's worth of what stands behind it is kept, so the queue never runs short again.
void answer(const Block& block, int frames) {
    parameterMEM& mem = b_parameterMEM;
    const int32_t values = block.values();
    const int32_t available = mem.outFill + frames * kFrameValues;
    if (available >= values) {
        mem.outFill = available;
        std::copy_n(mem.outRing, values, block.samples);
    } else {
        mem.outFill = values + kFrameValues;
    }
    drop_front(mem.outRing, mem.outFill, values);
}

void play(const Block& block) {
    if (!block.fits()) {
        return;
    }
    update_output_class();
    detect_stream_change(block);
    if (settling(block) || !block.playable() || !rings_hold(block)) {
        return;
    }
    parameterMEM& mem = b_parameterMEM;
    std::copy_n(block.samples, block.values(), mem.inRing + mem.inFill);
    mem.inFill += block.values();
    const int frames = process_frames(block);
    drop_front(mem.inRing, mem.inFill, frames * kFrameValues);
    answer(block, frames);
}

}  // namespace

void ZOQ_update_volume(int index, audio_stream_type_t /*stream*/) {
    store_shared(b_parameterMEM.volumeIndex, int32_t{index});
}

}  // namespace android

void ZOQ_OUTPROC_PLAY_INIT() {
    android::validate_state();
    android::widening_initilization();
    android::reset_rings(android::kQueueStartValues);
}

void ZOQ_OUTPROC_PLAY_SAMPLES(int16_t* samples, int bytes, int sampleRate, int channels) {
    const android::FlushToZero scope;
    android::play(android::Block{samples, bytes, sampleRate, channels});
}
