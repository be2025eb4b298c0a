// The fast forms of stereo widening.
#include "dsp/complex_lanes.h"
#include "modules/tws/tws_kernels.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr int kLastBin = kBins - 1;  // the one behind the whole vectors

template <typename Access>
ZOQ_INLINE void filter_bins(const parameterTWS* parameters, const TwsPair& in, TwsPair& out, int k) {
    const Bins same = Access::bins(parameters->sameSideFilter + k);
    const Bins cross = Access::bins(parameters->crossFeedFilter + k);
    const Factor left = factor_of(Access::bins(in.left + k)), right = factor_of(Access::bins(in.right + k));
    Access::put(out.left + k, product(same, left) + product(cross, right));
    Access::put(out.right + k, product(cross, left) + product(same, right));
}

// Where in the frame a sample of the hop finds the direct signal; outside the frame the nearest sample.
int delayed_position(int i, float delay) {
    const float t = (float(i) + 1.0f) + float(kHopSamples) - delay;
    if (!(t >= 1.0f)) {
        return 0;
    }
    return (t < float(kFrameSamples) ? int(t) : kFrameSamples) - 1;
}

// The delayed hop of a channel: the frame itself from some sample on, while the delay is a whole one within it.
const float* delayed_hop(const float* channel, float delay, float* copy) {
    if (delay >= 0.0f && delay <= float(kHopSamples) && float(int(delay)) == delay) {
        return channel + kHopSamples - int(delay);
    }
    for (int i = 0; i < kHopSamples; ++i) {
        copy[i] = channel[delayed_position(i, delay)];
    }
    return copy;
}

}  // namespace

void tws_filter(const parameterTWS* parameters, const TwsPair& in, TwsPair& out) {
    for (int k = 0; k < kLastBin; k += Bins::kCount) {
        filter_bins<Whole>(parameters, in, out, k);
    }
    filter_bins<Single>(parameters, in, out, kLastBin);
}

void tws_mix(const creal32_T* frame, const float* in, float delay, float gain, float* out) {
    float copies[3][kHopSamples];
    const float* left = delayed_hop(in, delay, copies[0]);
    const float* right = delayed_hop(in + kFrameSamples, delay, copies[1]);
    const float* centre = delayed_hop(in + 2 * kFrameSamples, delay, copies[2]);
    const Lanes share = broadcast(gain), directShare = broadcast(1.0f - gain);
    for (int i = 0; i < kHopSamples; i += kLanes) {
        const ComplexLanes widened = load_apart(&frame[kHopSamples + i].re);
        const Lanes c = load(centre + i), inWidened = broadcast(kTwsCentreInWidened) * c;
        Lanes l = widened.re + inWidened, r = widened.im + inWidened;
        if (gain < 1.0f) {
            const Lanes inDirect = broadcast(kTwsCentreInDirect) * c;
            l = directShare * (load(left + i) + inDirect) + share * l;
            r = directShare * (load(right + i) + inDirect) + share * r;
        }
        store(out + i, l);
        store(out + kHopSamples + i, r);
    }
}

}  // namespace android::ZOQ_LEVEL
