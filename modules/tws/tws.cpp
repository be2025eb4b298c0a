#include "modules/tws/tws.h"

#include <algorithm>

#include "dsp/complex.h"
#include "dsp/fft.h"
#include "dsp/kernel_level.h"
#include "dsp/shared_value.h"
#include "modules/tws/tws_kernels.h"
#include "modules/tws/tws_tables.h"

namespace android {

namespace {

constexpr float kDirectDelay = 180.0f;  // samples; the filters' responses peak near 183 and 189

// The first half of the frame carries the wrap-around of the circular convolution.
void current_hop(const creal32_T* frame, float* out) {
    for (int i = 0; i < kHopSamples; ++i) {
        out[i] = frame[kHopSamples + i].re;
        out[kHopSamples + i] = frame[kHopSamples + i].im;
    }
}

// Where in the frame output sample i finds the direct signal.
int delayed_position(int i, float delay) {
    const float t = (float(i) + 1.0f) + float(kHopSamples) - delay;
    if (!(t >= 1.0f)) {
        return 0;
    }
    return (t < float(kFrameSamples) ? int(t) : kFrameSamples) - 1;
}

void add_centre(const float* in, float delay, float* out) {
    const float* centre = in + 2 * kFrameSamples;
    for (int i = 0; i < kHopSamples; ++i) {
        const float c = kTwsCentreInWidened * centre[delayed_position(i, delay)];
        out[i] = out[i] + c;
        out[kHopSamples + i] = out[kHopSamples + i] + c;
    }
}

void blend_with_direct(const float* in, float delay, float gain, float* out) {
    const float directGain = 1.0f - gain;
    for (int i = 0; i < kHopSamples; ++i) {
        const int p = delayed_position(i, delay);
        const float c = kTwsCentreInDirect * in[2 * kFrameSamples + p];
        out[i] = directGain * (in[p] + c) + gain * out[i];
        out[kHopSamples + i] = directGain * (in[kFrameSamples + p] + c) + gain * out[kHopSamples + i];
    }
}

}  // namespace

namespace scalar {

void tws_filter(const parameterTWS* parameters, const TwsPair& in, TwsPair& out) {
    for (int k = 0; k < kBins; ++k) {
        const creal32_T same = parameters->sameSideFilter[k], cross = parameters->crossFeedFilter[k];
        const creal32_T l = in.left[k], r = in.right[k];
        out.left[k] = same * l + cross * r;
        out.right[k] = cross * l + same * r;
    }
}

void tws_mix(const creal32_T* frame, const float* in, float delay, float gain, float* out) {
    current_hop(frame, out);
    add_centre(in, delay, out);
    if (gain < 1.0f) {
        blend_with_direct(in, delay, gain, out);
    }
}

}  // namespace scalar

ZOQ_KERNEL(tws_filter, const parameterTWS* parameters, const TwsPair& in, TwsPair& out);
ZOQ_KERNEL(tws_mix, const creal32_T* frame, const float* in, float delay, float gain, float* out);

void factory_contents(parameterTWS* record) {
    record->widthGain = 1.0f;
    store_shared(record->stereoWidth, 1.0f);
    record->directDelay = kDirectDelay;
    std::copy(kSameSideFilter, kSameSideFilter + kBins, record->sameSideFilter);
    std::copy(kCrossFeedFilter, kCrossFeedFilter + kBins, record->crossFeedFilter);
}

void TWSmobile_freq(const float* in, const parameterTWS* parameters, float* out) {
    TwsPair spectra, widened;
    creal32_T frame[kFrameSamples];
    split_stereo_spectrum(in, in + kFrameSamples, spectra.left, spectra.right);
    tws_filter_kernel.run({{&widened, sizeof widened}}, parameters, spectra, widened);
    merge_stereo_spectrum(widened.left, widened.right, frame);
    tws_mix_kernel.run({{out, 2 * kHopSamples * sizeof(float)}}, frame, in, parameters->directDelay,
                       parameters->widthGain, out);
}

}  // namespace android
