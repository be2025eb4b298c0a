#include "chain/frame_chain.h"

#include <algorithm>
#include <bit>

#include "chain/absurd_settings.h"
#include "dsp/grid.h"
#include "dsp/poison.h"

namespace android {

namespace {

constexpr float kCentreBoost = 1.414f;    // on the extracted centre as it is overlap-added
constexpr float kCentreToSide = 0.7071f;  // centre into left and right where no widening runs
constexpr float kWidthStep = std::bit_cast<float>(0x3E4CCCCCu);  // one unit below 0.2

// One channel's completed past and its pending half.
//   0..511      the hop completed one call earlier
//   512..1023   the second half of the previous frame, then the completed current hop
//   1024..1535  the second half of the current frame
struct Overlap {
    float samples[kFrameSamples + kHopSamples];
    float* current() { return samples + kHopSamples; }
};

Overlap overlap[kChainChannels];  // reset: 0

bool wasAbsurd = false;  // whether the hop before ran under absurd settings; survives a reset

// What they leave in the memories may pass for the work of sane ones, which a compressor takes many seconds to
// forget, so the first sane hop starts afresh.
void reset_after_absurd_settings(bool absurd) {
    if (wasAbsurd && !absurd) {
        stereoWidening_frame_initialize();
        graphicalEQ_forget();
        ++poisonResets;
    }
    wasAbsurd = absurd;
}

void headphone_control_values(float w, parameterDEN& den) {
    den.wideAmount = w >= 0.8f ? (w - 0.8f) * 20.0f : 0.0f;
}

void speaker_control_values(float s, parameterTWS& tws, parameterDEN& den) {
    if (s > 0.5f) {
        const float p = (s - 0.5f) * kWidthStep;
        den.wideAmount = (s - 0.5f) * 8.0f;
        tws.widthGain = p + p + 0.8f;
    } else {
        den.wideAmount = 0.0f;
        tws.widthGain = s * 1.6f;
    }
}

void overlap_add(const float* frame, Overlap& buffer) {
    add_scaled(frame, 1.0f, kFrameSamples, buffer.current());
}

// Returns the working channel count: 1, 2 or 3.
int analyse(float* frameIn, float channelCount, float speechGain, const parameterDEN& den) {
    if (channelCount != 2.0f) {
        std::copy_n(frameIn, kFrameSamples, overlap[0].current());
        return 1;
    }
    DialogueEnhancementWide(frameIn, den.smoothFactor, speechGain, den.baseGain, den.wideAmount,
                            den.stereoOutput, den.wideCurve[0], den.bandEnd, den.bandStart);
    int channels = 2;
    if (den.stereoOutput != 1.0f) {
        float* centre = frameIn + 2 * kFrameSamples;
        scale(kCentreBoost, kFrameSamples, centre);
        channels = 3;
    }
    for (int k = 0; k < channels; ++k) {
        overlap_add(frameIn + k * kFrameSamples, overlap[k]);
    }
    return channels;
}

// The previous hop and the current one of all three channels, one after another.
void gather_completed(float* planar) {
    for (int k = 0; k < kChainChannels; ++k) {
        std::copy_n(overlap[k].samples, kFrameSamples, planar + k * kFrameSamples);
    }
}

void compress(float* hop, float channels, const parameterDRC& drc) {
    dynamicRangeCompression_LC(hop, channels, &drc.compThreshold, &drc.limThreshold, &drc.expThreshold);
}

void equalize(float* hop, float channels, const parameterGEQ& geq) {
    // The module takes more bands than a record holds.
    graphicalEQ(hop, channels, std::min(geq.bandCount, float(kGeqBands)), geq.bandGainDb, geq.bandQ,
                geq.bandWarp);
}

void headphone_route(int channels, float width, const parameterX2B& x2b, const parameterGEQ& geq,
                     float* frameOut) {
    float planar[kChainChannels * kFrameSamples];
    gather_completed(planar);
    X2Binaural_v1(planar, float(channels), &x2b, width, frameOut);
    equalize(frameOut, 2.0f, geq);
    compress(frameOut, 2.0f, x2b.headphoneDrc);
}

// Current hops to the output without widening.
void mix_direct(int channels, float* frameOut) {
    const float* left = overlap[0].current();
    const float* right = overlap[1].current();
    const float* centre = overlap[2].current();
    for (int i = 0; i < kHopSamples; ++i) {
        frameOut[i] = channels > 2 ? left[i] + kCentreToSide * centre[i] : left[i];
        frameOut[kHopSamples + i] = channels > 2 ? right[i] + kCentreToSide * centre[i] : right[i];
    }
}

void widen(int channels, const parameterTWS& tws, float* frameOut) {
    if (channels > 1 && tws.widthGain > 0.0f) {
        float planar[kChainChannels * kFrameSamples];
        gather_completed(planar);
        TWSmobile_freq(planar, &tws, frameOut);
    } else {
        mix_direct(channels, frameOut);
    }
}

void speaker_route(int channels, const HopSettings& hop, const parameterTWS& tws, const parameterEQ& eq,
                   const parameterDRC& drc, const parameterVB& vb, const parameterGEQ& geq, float* frameOut) {
    for (Overlap& buffer : overlap) {
        scale(0.5f, kHopSamples, buffer.current());
    }
    widen(channels, tws, frameOut);
    const float n = channels > 1 ? 2.0f : 1.0f;
    equalize(frameOut, n, geq);
    if (hop.boostLin > -1.0f) {
        virtualbassFunction_monoLC(frameOut, n, &vb, hop.boostLin);
    }
    equalization_peak(frameOut, n, eq.peakSectionCount, eq.peakSos, eq.trebleSectionCount, eq.trebleSos,
                      hop.trebleGain, eq.finalSos, eq.finalPassCount);
    compress(frameOut, n, drc);
}

void shift() {
    for (Overlap& buffer : overlap) {
        std::copy_n(buffer.current(), kFrameSamples, buffer.samples);
        std::fill_n(buffer.samples + kFrameSamples, kHopSamples, 0.0f);
    }
}

}  // namespace

void stereoWidening_frame(float* frameIn, float channelCount, uint8_t headphone, parameterDEN* den,
                          parameterTWS* tws, const parameterEQ* eq, const parameterDRC* drc,
                          const parameterVB* vb, const parameterX2B* x2b, const parameterGEQ* geq,
                          float* frameOut) {
    const HopSettings hop = hop_settings(*den, *tws, *eq, *vb, *x2b);
    reset_after_absurd_settings(headphone != 0 ? headphone_settings_absurd(hop, x2b->headphoneDrc, *geq)
                                               : speaker_settings_absurd(hop, *drc, *geq));
    if (headphone != 0) {
        headphone_control_values(hop.surroundWidth, *den);
    } else {
        speaker_control_values(hop.stereoWidth, *tws, *den);
    }
    const int channels = analyse(frameIn, channelCount, hop.centerSpeechGain, *den);
    if (headphone != 0) {
        headphone_route(channels, hop.surroundWidth, *x2b, *geq, frameOut);
    } else {
        speaker_route(channels, hop, *tws, *eq, *drc, *vb, *geq, frameOut);
    }
    shift();
}

void stereoWidening_frame_init() {
    std::fill_n(overlap, kChainChannels, Overlap{});
}

void stereoWidening_frame_initialize() {
    state_not_empty_init();
    bdiff_sm_not_empty_init();
    stereoWidening_frame_init();
    virtualbassFunction_monoLC_init();
    equalization_peak_init();
    graphicalEQ_init();
    X2Binaural_v1_init();
}

}  // namespace android
