#include "modules/x2b/x2b.h"

#include <algorithm>
#include <cstring>

#include "dsp/complex.h"
#include "dsp/fft.h"
#include "dsp/kernel_level.h"
#include "dsp/shared_value.h"
#include "modules/x2b/x2b_kernels.h"
#include "modules/x2b/x2b_tables.h"

namespace android {

namespace {

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

// Rows of an accumulator, each on whole cache lines.
constexpr int kRowBins = (kBins + 7) / 8 * 8;

// binauralAccumulator: a row per ear and hop to come.
struct State {
    alignas(64) creal32_T accumulator[kX2bEars][kX2bPartitions][kRowBins];  // reset: 0
};

State state;

// The row of the hop that is put out now, in one hop, ...; the contents of a row stay where they are.
int rowOf[kX2bPartitions] = {0, 1, 2, 3};  // no reset: any order of empty rows is as good

X2bSlots slots() {
    X2bSlots result;
    for (int ear = 0; ear < kX2bEars; ++ear) {
        for (int q = 0; q < kX2bPartitions; ++q) {
            result.slot[ear][q] = state.accumulator[ear][rowOf[q]];
        }
    }
    return result;
}

int channel_count(float channels) {
    if (!(channels >= 1.0f)) {
        return 1;
    }
    return channels < float(kX2bMaxChannels) ? int(channels) : kX2bMaxChannels;
}

int partition_count(float partitions) {
    if (!(partitions >= 1.0f)) {
        return 0;
    }
    return partitions < float(kX2bPartitions) ? int(partitions) : kX2bPartitions;
}

void analyse(const float* in, int channels, X2bInputs& x) {
    if (channels == 1) {
        c_fft(in, x.channel[0]);
    } else {
        split_stereo_spectrum(in, in + kFrameSamples, x.channel[0], x.channel[1]);
    }
    if (channels == kX2bMaxChannels) {
        c_fft(in + kX2bCentreChannel * kFrameSamples, x.channel[kX2bCentreChannel]);
    }
}

X2bRendering rendering_of(float w, int channels) {
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

void add_crossfaded(float gain, const X2bRendering& r, const creal32_T (*responses)[kBins],
                    const creal32_T* x, creal32_T* slot) {
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
void add_fading_path(int ear, int p, int channel, const parameterX2B* parameters, const X2bRendering& r,
                     const creal32_T* x, creal32_T* slot) {
    if (channel == kX2bCentreChannel) {
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

void add_full_path(int ear, int p, int channel, const parameterX2B* parameters, const X2bRendering& r,
                   const creal32_T* x, creal32_T* slot) {
    if (channel == kX2bCentreChannel) {
        add_scaled(r.centre[p], parameters->ipsiResponse[p][kFrontResponse], x, slot);
    } else if (channel == ear) {
        add_crossfaded(1.0f, r, parameters->ipsiResponse[p], x, slot);
    } else {
        add_crossfaded(r.opposite[p], r, parameters->contraResponse[p], x, slot);
    }
}

}  // namespace

namespace scalar {

void x2b_accumulate(const X2bInputs& x, int channels, int partitions, const parameterX2B* parameters,
                    const X2bRendering& r, const X2bSlots& slots) {
    for (int ear = 0; ear < kX2bEars; ++ear) {
        for (int p = 0; p < partitions; ++p) {
            for (int c = 0; c < channels; ++c) {
                if (r.fading) {
                    add_fading_path(ear, p, c, parameters, r, x.channel[c], slots.slot[ear][p]);
                } else {
                    add_full_path(ear, p, c, parameters, r, x.channel[c], slots.slot[ear][p]);
                }
            }
        }
    }
}

// The first half of the frame carries the wrap-around of the circular convolution.
void x2b_current_hop(const creal32_T* frame, float* out) {
    for (int i = 0; i < kHopSamples; ++i) {
        out[i] = frame[kHopSamples + i].re;
        out[kHopSamples + i] = frame[kHopSamples + i].im;
    }
}

}  // namespace scalar

ZOQ_KERNEL(x2b_accumulate, const X2bInputs& x, int channels, int partitions, const parameterX2B* parameters,
           const X2bRendering& r, const X2bSlots& slots);
ZOQ_KERNEL(x2b_current_hop, const creal32_T* frame, float* out);

namespace {

void current_hop(const X2bSlots& slots, float* out) {
    creal32_T frame[kFrameSamples];
    merge_stereo_spectrum(slots.slot[0][0], slots.slot[1][0], frame);
    x2b_current_hop_kernel.run({{out, 2 * kHopSamples * sizeof(float)}}, frame, out);
}

// The row that was put out becomes the farthest of the partitions in use, empty.
void advance(int partitions) {
    if (partitions == 0) {
        return;
    }
    std::rotate(rowOf, rowOf + 1, rowOf + partitions);
    for (auto& rows : state.accumulator) {
        std::memset(rows[rowOf[partitions - 1]], 0, sizeof rows[0]);
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
    store_shared(record->surroundWidth, 0.0f);
}

void X2Binaural_v1(const float* in, float channels, const parameterX2B* parameters, float* out) {
    X2Binaural_v1(in, channels, parameters, load_shared(parameters->surroundWidth), out);
}

void X2Binaural_v1(const float* in, float channels, const parameterX2B* parameters, float surroundWidth,
                   float* out) {
    const int channelCount = channel_count(channels);
    const int partitions = partition_count(parameters->numPartitions);
    const X2bRendering rendering = rendering_of(surroundWidth, channelCount);
    X2bInputs x;
    analyse(in, channelCount, x);
    x2b_accumulate_kernel.run({{&state, sizeof state}}, x, channelCount, partitions, parameters, rendering,
                              slots());
    current_hop(slots(), out);
    advance(partitions);
}

void X2Binaural_v1_init() {
    state = State{};
}

}  // namespace android
