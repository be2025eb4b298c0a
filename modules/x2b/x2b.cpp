#include "modules/x2b/x2b.h"

#include <algorithm>

#include "dsp/complex.h"
#include "dsp/fft.h"
#include "dsp/shared_value.h"
#include "modules/x2b/x2b_tables.h"

namespace android {

namespace {

constexpr int kMaxChannels = 3;
constexpr int kEars = 2;
constexpr int kCentreChannel = 2;  // counted from 0; channels 0 and 1 lie on the sides of ears 0 and 1

// Rows of the response tables.
constexpr int kFrontResponse = 0, kNarrowResponse = 1, kWideResponse = 2;

// Below this width the rendering fades out: its share falls from 0.8 to nothing while the plain input's rises
// from 0.2 to 1, times its level.
constexpr double kFadeWidth = 0.2;
constexpr float kFadeSlope = 4.0f;
constexpr float kDryLevel = 0.707f;

// The wide response's share rises with the width from 0.2 to 1.
constexpr float kWideSlope = 0.8f, kLeastWide = 0.2f;

// A compression gain of 6 dB, gentler than the loudspeaker's.
constexpr parameterDRC kHeadphoneDrc = {
    .compThreshold = -9.375f,
    .compKnee = 4.6875f,
    .compMakeup = 1.9952623f,
    .compSlope = -0.75f,
    .compAttack = 0.9793822f,
    .compRelease = 0.99996096f,
    .limThreshold = -1.0f,
    .limKnee = 0.5f,
    .limMakeup = 1.0f,
    .limSlope = -0.9f,
    .limAttack = 0.40948412f,
    .limRelease = 0.9394131f,
    .expThreshold = -60.0f,
    .expSlope = 0.5f,
};

// binauralAccumulator: slot 0 is put out in the current hop, slot q in q hops.
struct State {
    creal32_T accumulator[kEars][kX2bPartitions][kBins];  // reset: 0
};

State state;

// Half spectra of the channels; the transform of one real frame fills all its bins.
struct Inputs {
    creal32_T channel[kMaxChannels][kFrameSamples];
};

// What a width means, formed once per call.
struct Rendering {
    bool fading;
    float filtered, dry;             // shares while fading
    float wide, narrow;              // shares of the lateral responses
    float opposite[kX2bPartitions];  // gains of the other ear's paths: a wide image has more room in it
    float centre[kX2bPartitions];    // gains of the centre: a narrow image has no tail
    int narrowResponse, wideResponse;
};

int channel_count(float channels) {
    if (!(channels >= 1.0f)) {
        return 1;
    }
    return channels < float(kMaxChannels) ? int(channels) : kMaxChannels;
}

int partition_count(float partitions) {
    if (!(partitions >= 1.0f)) {
        return 0;
    }
    return partitions < float(kX2bPartitions) ? int(partitions) : kX2bPartitions;
}

void analyse(const float* in, int channels, Inputs& x) {
    if (channels == 1) {
        c_fft(in, x.channel[0]);
    } else {
        split_stereo_spectrum(in, in + kFrameSamples, x.channel[0], x.channel[1]);
    }
    if (channels == kMaxChannels) {
        c_fft(in + kCentreChannel * kFrameSamples, x.channel[kCentreChannel]);
    }
}

Rendering rendering_of(float w, int channels) {
    const float wide = w * kWideSlope + kLeastWide;
    const float filtered = w * kFadeSlope;
    return {
        .fading = double(w) < kFadeWidth,
        .filtered = filtered,
        .dry = (1.0f - filtered) * kDryLevel,
        .wide = wide,
        .narrow = 1.0f - wide,
        .opposite = {1.0f, w + 1.0f, w + 1.0f, 2.0f * ((w + 1.0f) * w)},
        .centre = {1.0f, 1.0f, w, w},
        .narrowResponse = channels == 1 ? kFrontResponse : kNarrowResponse,
        .wideResponse = channels == 1 ? kFrontResponse : kWideResponse,
    };
}

void add_scaled(float gain, const creal32_T* response, const creal32_T* x, creal32_T* slot) {
    for (int k = 0; k < kBins; ++k) {
        slot[k] = slot[k] + (response[k] * gain) * x[k];
    }
}

void add_crossfaded(float gain, const Rendering& r, const creal32_T (*responses)[kBins], const creal32_T* x,
                    creal32_T* slot) {
    const creal32_T* wide = responses[r.wideResponse];
    const creal32_T* narrow = responses[r.narrowResponse];
    for (int k = 0; k < kBins; ++k) {
        const creal32_T h = (wide[k] * r.wide + narrow[k] * r.narrow) * gain;
        slot[k] = slot[k] + h * x[k];
    }
}

void add_dry(float gain, const creal32_T* x, creal32_T* slot) {
    for (int k = 0; k < kBins; ++k) {
        slot[k] = slot[k] + x[k] * gain;
    }
}

// Toward the plain input: each ear has its own side and the centre, the other side is off.
void add_fading_path(int ear, int p, int channel, const parameterX2B* parameters, const Rendering& r,
                     const creal32_T* x) {
    creal32_T* slot = state.accumulator[ear][p];
    if (channel == kCentreChannel) {
        add_scaled(r.filtered * r.centre[p], parameters->ipsiResponse[p][kFrontResponse], x, slot);
    } else if (channel == ear) {
        add_scaled(r.filtered, parameters->ipsiResponse[p][r.narrowResponse], x, slot);
    } else {
        return;
    }
    if (p == 0) {
        add_dry(r.dry, x, slot);
    }
}

void add_full_path(int ear, int p, int channel, const parameterX2B* parameters, const Rendering& r,
                   const creal32_T* x) {
    creal32_T* slot = state.accumulator[ear][p];
    if (channel == kCentreChannel) {
        add_scaled(r.centre[p], parameters->ipsiResponse[p][kFrontResponse], x, slot);
    } else if (channel == ear) {
        add_crossfaded(1.0f, r, parameters->ipsiResponse[p], x, slot);
    } else {
        add_crossfaded(r.opposite[p], r, parameters->contraResponse[p], x, slot);
    }
}

void accumulate(const Inputs& x, int channels, int partitions, const parameterX2B* parameters,
                const Rendering& r) {
    for (int ear = 0; ear < kEars; ++ear) {
        for (int p = 0; p < partitions; ++p) {
            for (int c = 0; c < channels; ++c) {
                if (r.fading) {
                    add_fading_path(ear, p, c, parameters, r, x.channel[c]);
                } else {
                    add_full_path(ear, p, c, parameters, r, x.channel[c]);
                }
            }
        }
    }
}

// The first half of the frame carries the wrap-around of the circular convolution.
void current_hop(float* out) {
    creal32_T frame[kFrameSamples];
    merge_stereo_spectrum(state.accumulator[0][0], state.accumulator[1][0], frame);
    for (int i = 0; i < kHopSamples; ++i) {
        out[i] = frame[kHopSamples + i].re;
        out[kHopSamples + i] = frame[kHopSamples + i].im;
    }
}

void advance(int partitions) {
    if (partitions == 0) {
        return;
    }
    for (auto& slots : state.accumulator) {
        std::copy(slots[1], slots[partitions - 1] + kBins, slots[0]);
        std::fill_n(slots[partitions - 1], kBins, creal32_T{});
    }
}

}  // namespace

void factory_contents(parameterX2B* record) {
    constexpr int kTableBins = kX2bPartitions * kX2bResponses * kBins;
    record->numPartitions = float(kX2bPartitions);
    std::copy(&kIpsiResponse[0][0][0], &kIpsiResponse[0][0][0] + kTableBins, &record->ipsiResponse[0][0][0]);
    std::copy(&kContraResponse[0][0][0], &kContraResponse[0][0][0] + kTableBins,
              &record->contraResponse[0][0][0]);
    record->headphoneDrc = kHeadphoneDrc;
    record->surroundWidth = 0.0f;
}

void X2Binaural_v1(const float* in, float channels, const parameterX2B* parameters, float* out) {
    const int channelCount = channel_count(channels);
    const int partitions = partition_count(parameters->numPartitions);
    const Rendering rendering = rendering_of(load_shared(parameters->surroundWidth), channelCount);
    Inputs x;
    analyse(in, channelCount, x);
    accumulate(x, channelCount, partitions, parameters, rendering);
    current_hop(out);
    advance(partitions);
}

void X2Binaural_v1_init() {
    state = State{};
}

}  // namespace android
