#include "tools/zoq/engine_session.h"

#include <algorithm>
#include <chrono>
#include <numeric>

#include "zoq2processing.h"

namespace zoq {

namespace {

using android::b_parameterMEM;
using android::String8;

static_assert(kEngineRate == android::kSampleRateHz && kMaxBlockFrames * 2 == android::kMaxBlockValues &&
              kDefaultBlockFrames == android::kHopSamples);

constexpr int kFrameValues = 2 * android::kHopSamples;
constexpr int kRampEnd = 5120;  // of the crossfade: all processed

bool passes_through() {
    return b_parameterMEM.settleCountdown > 0;
}

// int16 values between the input and the output; it changes only where the queue runs short.
int queued_values() {
    return b_parameterMEM.inFill + b_parameterMEM.outFill;
}

// True for block sizes with which the queue never runs short. What a block leaves over steps through the
// multiples of the greatest common divisor; the queue, which holds the remainder of one block, is short when
// less than the rest of a hop is left over.
bool never_short(int blockValues) {
    const int remainder = blockValues % kFrameValues;
    return remainder == 0 || std::gcd(remainder, kFrameValues) >= kFrameValues - remainder;
}

}  // namespace

EngineSession::EngineSession(int blockFrames) : blockFrames_(blockFrames) {
    ZOQ_OUTPROC_PLAY_INIT();
    set_processing(false);
    set_route(Route::kSpeaker);
    // A block of another size, so that the first one of this session is a change of stream even when the last
    // session had the same: a repeated initialisation alone leaves 2048 sample frames in the queue.
    int16_t other[4] = {};
    ZOQ_OUTPROC_PLAY_SAMPLES(other, blockFrames == 1 ? 8 : 4, kEngineRate, 2);
}

void EngineSession::set(const std::string& keyValuePairs) {
    ZOQ_PARAMS_SET(String8(keyValuePairs.c_str()));
}

std::string EngineSession::get(const std::string& keys) const {
    return ZOQ_PARAMS_GET(String8(keys.c_str())).string();
}

void EngineSession::set_processing(bool on) {
    set(std::string(android::zoq_switch) + "=STEREOWIDEN_Enable=" + (on ? "true" : "false"));
}

void EngineSession::set_route(Route route) {
    const int device =
        route == Route::kHeadphone ? AUDIO_DEVICE_OUT_WIRED_HEADPHONE : AUDIO_DEVICE_OUT_SPEAKER;
    set("output_device=" + std::to_string(device));
}

void EngineSession::set_volume(int index) {
    android::ZOQ_update_volume(index, AUDIO_STREAM_MUSIC);
}

void EngineSession::play(int16_t* block) {
    const bool wasQueueing = !passes_through();
    const int before = queued_values();
    const auto start = std::chrono::steady_clock::now();
    ZOQ_OUTPROC_PLAY_SAMPLES(block, blockFrames_ * 4, kEngineRate, 2);
    seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    // A short queue is refilled to a whole hop, which no reset does.
    if (wasQueueing && !passes_through() && before < kFrameValues && queued_values() >= kFrameValues) {
        shortBlocks_.push_back(blocks_);
    }
    ++blocks_;
}

void EngineSession::settle() {
    std::vector<int16_t> silence(2 * static_cast<size_t>(blockFrames_));
    do {
        std::fill(silence.begin(), silence.end(), int16_t{0});
        play(silence.data());
    } while (!steady());
}

bool EngineSession::steady() const {
    const int rampEnd = b_parameterMEM.stereoWidenEnable == 1 ? kRampEnd : 0;
    return !passes_through() && b_parameterMEM.mixRamp == rampEnd &&
           (never_short(2 * blockFrames_) || queued_values() >= kFrameValues);
}

Latency EngineSession::latency() const {
    Latency latency;
    if (passes_through()) {
        return latency;
    }
    latency.queue = queued_values() / 2;
    if (b_parameterMEM.stereoWidenEnable != 1) {
        return latency;
    }
    latency.chain = android::kHopSamples;
    // Without any width the loudspeaker gets both channels in one, and a negative width turns widening off.
    if (b_parameterMEM.headphoneMode == 0 && android::b_parameterTWS.stereoWidth > 0.0f) {
        latency.widening = static_cast<int>(android::b_parameterTWS.directDelay);
    }
    return latency;
}

}  // namespace zoq
