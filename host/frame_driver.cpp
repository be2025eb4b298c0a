#include "host/frame_driver.h"

#include <algorithm>

#include "dsp/pcm.h"
#include "dsp/shared_value.h"

namespace android {

namespace {

// Full compression in dB: headphones, and the loudspeaker below and above the volume threshold.
constexpr float kHeadphoneFullDb = 20.0f;
constexpr float kSpeakerFullDb = 18.0f;
constexpr float kSpeakerLoudFullDb = 21.0f;

float compression_gain_db() {
    const parameterMEM& mem = b_parameterMEM;
    if (mem.headphoneMode == 1) {
        return load_shared(mem.headphoneCompressionGain) * kHeadphoneFullDb / 100.0f;
    }
    const bool loud = load_shared(mem.volumeIndex) > load_shared(mem.volumeIndexSwitch);
    return load_shared(mem.compressionGain) * (loud ? kSpeakerLoudFullDb : kSpeakerFullDb) / 100.0f;
}

void select_band_gains(int headphone) {
    const float* gains = headphone != 0 ? b_parameterMEM.headphoneEqBandGain : b_parameterMEM.eqBandGain;
    for (int k = 0; k < kGeqBands; ++k) {
        b_parameterGEQ.bandGainDb[k] = load_shared(gains[k]);
    }
}

void append_history(const PcmFrame& frame) {
    float(*histories)[kFrameSamples] = b_parameterMEM.frameHistory;
    for (int c = 0; c < frame.channels; ++c) {
        std::copy_n(histories[c] + kHopSamples, kHopSamples, histories[c]);
    }
    if (frame.is_whole_stereo()) {
        from_pcm(frame.values, histories[0] + kHopSamples, histories[1] + kHopSamples);
        return;
    }
    for (int c = 0; c < frame.channels; ++c) {
        float* history = histories[c];
        for (int i = 0; i < kHopSamples; ++i) {
            history[kHopSamples + i] = float(frame.get(i * frame.channels + c)) * kFromInt16;
        }
    }
}

// Both channels in one, for a loudspeaker without any stereo width.
void fold_to_mono() {
    parameterMEM& mem = b_parameterMEM;
    for (int j = 0; j < kFrameSamples; ++j) {
        mem.frameIn[0][j] = (mem.frameHistory[0][j] + mem.frameHistory[1][j]) * 0.5f;
        mem.frameIn[1][j] = 0.0f;
    }
}

void copy_to_chain() {
    parameterMEM& mem = b_parameterMEM;
    std::copy_n(mem.frameHistory[0], kFrameSamples, mem.frameIn[0]);
    std::copy_n(mem.frameHistory[1], kFrameSamples, mem.frameIn[1]);
}

// Stores in ascending order: with one channel the second value of a pair is overwritten by the next sample
// frame.
void store_output(const PcmFrame& frame, int chainChannels) {
    const float* left = b_parameterMEM.frameOut[0];
    const float* right = chainChannels > 1 ? b_parameterMEM.frameOut[1] : left;
    if (frame.is_whole_stereo()) {
        to_pcm(left, right, frame.values);
        return;
    }
    for (int i = 0; i < kHopSamples; ++i) {
        const int base = i * frame.channels;
        frame.put(base, to_int16(left[i] * kToInt16));
        frame.put(base + 1, to_int16(right[i] * kToInt16));
        for (int c = 2; c < (chainChannels > 1 ? frame.channels : 2); ++c) {
            frame.put(base + c, 0);
        }
    }
}

}  // namespace

void process_frame(int headphone, const PcmFrame& frame) {
    parameterMEM& mem = b_parameterMEM;
    const float gainDb = compression_gain_db();
    select_band_gains(headphone);
    if (load_shared(mem.stereoWidenEnable) != 1 && mem.mixRamp == 0) {
        return;
    }
    append_history(frame);

    const bool fold = load_shared(b_parameterTWS.stereoWidth) == 0.0f && headphone == 0;
    if (fold) {
        fold_to_mono();
    } else {
        copy_to_chain();
    }
    const int chainChannels = fold ? 1 : frame.channels;
    initialize_dynamicRangeCompression_C(
        gainDb, !fold && headphone == 1 ? &b_parameterX2B.headphoneDrc : &b_parameterDRC);
    stereoWidening_frame(mem.frameIn[0], float(chainChannels), static_cast<uint8_t>(mem.headphoneMode),
                         &b_parameterDEN, &b_parameterTWS, &b_parameterEQ, &b_parameterDRC, &b_parameterVB,
                         &b_parameterX2B, &b_parameterGEQ, mem.frameOut[0]);
    store_output(frame, chainChannels);
}

void widening_frame(int /*enable*/, int headphone, int16_t* frame, int /*length*/, int /*sampleRate*/,
                    int channels) {
    if (frame == nullptr || channels < 1 || channels > kMaxHostChannels) {
        return;
    }
    // The second value of a one-channel pair reaches one value behind the 512 sample frames.
    process_frame(headphone, PcmFrame{frame, kHopSamples * channels + (channels == 1 ? 1 : 0), channels});
}

}  // namespace android
