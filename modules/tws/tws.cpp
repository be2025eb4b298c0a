#include "modules/tws/tws.h"

#include <algorithm>

#include "dsp/complex.h"
#include "dsp/fft.h"
#include "dsp/shared_value.h"
#include "modules/tws/tws_tables.h"

namespace android {

namespace {

constexpr float kDirectDelay = 180.0f;  // samples; the filters' responses peak near 183 and 189

// What the centre keeps: beside the filtered pair, whose level lies below the input's, and beside the direct
// pair (3 dB into each of two channels).
constexpr float kCentreInWidened = 0.5568f;
constexpr float kCentreInDirect = 0.7071f;

// The pair as half spectra.
struct Pair {
    creal32_T left[kBins], right[kBins];
};

void filter_pair(const parameterTWS* parameters, const Pair& in, Pair& out) {
    for (int k = 0; k < kBins; ++k) {
        const creal32_T same = parameters->sameSideFilter[k], cross = parameters->crossFeedFilter[k];
        const creal32_T l = in.left[k], r = in.right[k];
        out.left[k] = same * l + cross * r;
        out.right[k] = cross * l + same * r;
    }
}

// The first half of the frame carries the wrap-around of the circular convolution.
void current_hop(const Pair& spectra, float* out) {
    creal32_T frame[kFrameSamples];
    merge_stereo_spectrum(spectra.left, spectra.right, frame);
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
        const float c = kCentreInWidened * centre[delayed_position(i, delay)];
        out[i] = out[i] + c;
        out[kHopSamples + i] = out[kHopSamples + i] + c;
    }
}

void blend_with_direct(const float* in, float delay, float gain, float* out) {
    const float directGain = 1.0f - gain;
    for (int i = 0; i < kHopSamples; ++i) {
        const int p = delayed_position(i, delay);
        const float c = kCentreInDirect * in[2 * kFrameSamples + p];
        out[i] = directGain * (in[p] + c) + gain * out[i];
        out[kHopSamples + i] = directGain * (in[kFrameSamples + p] + c) + gain * out[kHopSamples + i];
    }
}

}  // namespace

void factory_contents(parameterTWS* record) {
    record->widthGain = 1.0f;
    store_shared(record->stereoWidth, 1.0f);
    record->directDelay = kDirectDelay;
    std::copy(kSameSideFilter, kSameSideFilter + kBins, record->sameSideFilter);
    std::copy(kCrossFeedFilter, kCrossFeedFilter + kBins, record->crossFeedFilter);
}

void TWSmobile_freq(const float* in, const parameterTWS* parameters, float* out) {
    Pair spectra, widened;
    split_stereo_spectrum(in, in + kFrameSamples, spectra.left, spectra.right);
    filter_pair(parameters, spectra, widened);
    current_hop(widened, out);
    add_centre(in, parameters->directDelay, out);
    if (parameters->widthGain < 1.0f) {
        blend_with_direct(in, parameters->directDelay, parameters->widthGain, out);
    }
}

}  // namespace android
