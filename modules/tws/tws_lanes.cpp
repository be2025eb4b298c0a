// The fast forms of stereo widening.
#include "dsp/complex_lanes.h"
#include "modules/tws/tws_kernels.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr int kLastBin = kBins - 1;  // the one behind the whole vectors

struct Ears {
    Lanes left, right;
};

ZOQ_INLINE Ears filtered(Lanes same, Lanes cross, Lanes l, Lanes r) {
    const Factor left = factor_of(l), right = factor_of(r);
    return {product(same, left) + product(cross, right), product(cross, left) + product(same, right)};
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
    const creal32_T *same = parameters->sameSideFilter, *cross = parameters->crossFeedFilter;
    for (int k = 0; k < kLastBin; k += kPairs) {
        const Ears ears = filtered(load(same + k), load(cross + k), load(in.left + k), load(in.right + k));
        store(out.left + k, ears.left);
        store(out.right + k, ears.right);
    }
    const int k = kLastBin;
    const Ears ears =
        filtered(load_one(same + k), load_one(cross + k), load_one(in.left + k), load_one(in.right + k));
    store_one(out.left + k, ears.left);
    store_one(out.right + k, ears.right);
}

void tws_mix(const creal32_T* frame, const float* in, float delay, float gain, float* out) {
    float copies[3][kHopSamples];
    const float* left = delayed_hop(in, delay, copies[0]);
    const float* right = delayed_hop(in + kFrameSamples, delay, copies[1]);
    const float* centre = delayed_hop(in + 2 * kFrameSamples, delay, copies[2]);
    const Lanes share = broadcast(gain), directShare = broadcast(1.0f - gain);
    for (int i = 0; i < kHopSamples; i += kLanes) {
        const ComplexLanes widened = load_complex(&frame[kHopSamples + i].re);
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
