// The fast forms of binaural rendering: all partitions in one pass over the bins.
//
// The responses of a width are formed anew in every call, from the record as it is: keeping them would mean reading
// the record all the same, to see that nobody has changed it.
#include "dsp/complex_lanes.h"
#include "modules/x2b/x2b_kernels.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr int kFrontResponse = 0;
constexpr int kLastBin = kBins - 1;  // the one behind the whole vectors

// The rows that a partition reads and writes, and its gains.
struct Partition {
    const creal32_T *front, *narrow, *wide, *otherNarrow, *otherWide;
    float oppositeGain, centreGain;
    creal32_T* ear[kX2bEars];
};

struct Plan {
    Partition partition[kX2bPartitions];
};

Plan plan_of(int partitions, const parameterX2B* parameters, const X2bRendering& r, const X2bSlots& slots) {
    Plan plan;
    for (int p = 0; p < partitions; ++p) {
        const auto &same = parameters->ipsiResponse[p], &other = parameters->contraResponse[p];
        plan.partition[p] = {same[kFrontResponse],  same[r.narrowResponse],
                             same[r.wideResponse],  other[r.narrowResponse],
                             other[r.wideResponse], r.opposite[p],
                             r.centre[p],           {slots.slot[0][p], slots.slot[1][p]}};
    }
    return plan;
}

// How a bin is read and written: with those behind it, or alone.
struct Whole {
    static constexpr int kBinsAtOnce = kPairs;
    ZOQ_INLINE Lanes read(const creal32_T* x) { return load(x); }
    ZOQ_INLINE void write(creal32_T* y, Lanes a) { store(y, a); }
};
struct Single {
    ZOQ_INLINE Lanes read(const creal32_T* x) { return load_one(x); }
    ZOQ_INLINE void write(creal32_T* y, Lanes a) { store_one(y, a); }
};

// Both ears of all partitions at bin k; the channels come in their order in every sum.
template <int kChannels, typename Bins>
ZOQ_INLINE void add_full(const Plan& plan, int partitions, const X2bRendering& r, const X2bInputs& x, int k) {
    const Lanes wide = broadcast(r.wide), narrow = broadcast(r.narrow);
    const Factor left = factor_of(Bins::read(x.channel[0] + k));
    const Factor right = kChannels > 1 ? factor_of(Bins::read(x.channel[1] + k)) : left;
    const Factor middle = kChannels > 2 ? factor_of(Bins::read(x.channel[2] + k)) : left;
    ZOQ_UNROLL for (int p = 0; p < partitions; ++p) {
        const Partition& rows = plan.partition[p];
        const Lanes same = Bins::read(rows.wide + k) * wide + Bins::read(rows.narrow + k) * narrow;
        const Lanes other =
            (Bins::read(rows.otherWide + k) * wide + Bins::read(rows.otherNarrow + k) * narrow) *
            broadcast(rows.oppositeGain);
        Lanes first = Bins::read(rows.ear[0] + k) + product(same, left);
        Lanes second = Bins::read(rows.ear[1] + k) + product(other, left);
        if constexpr (kChannels > 1) {
            first = first + product(other, right);
            second = second + product(same, right);
        }
        if constexpr (kChannels > 2) {
            const Lanes centre = product(Bins::read(rows.front + k) * broadcast(rows.centreGain), middle);
            first = first + centre;
            second = second + centre;
        }
        Bins::write(rows.ear[0] + k, first);
        Bins::write(rows.ear[1] + k, second);
    }
}

template <int kChannels, typename Bins>
ZOQ_INLINE void add_fading(const Plan& plan, int partitions, const X2bRendering& r, const X2bInputs& x,
                           int k) {
    Lanes channel[kX2bMaxChannels];
    Factor factor[kX2bMaxChannels];
    for (int c = 0; c < kChannels; ++c) {
        channel[c] = Bins::read(x.channel[c] + k);
        factor[c] = factor_of(channel[c]);
    }
    ZOQ_UNROLL for (int p = 0; p < partitions; ++p) {
        const Partition& rows = plan.partition[p];
        const Lanes same = Bins::read(rows.narrow + k) * broadcast(r.filtered);
        const Lanes front = Bins::read(rows.front + k) * broadcast(r.filtered * rows.centreGain);
        for (int ear = 0; ear < (kChannels > 1 ? kX2bEars : 1); ++ear) {
            Lanes sum = Bins::read(rows.ear[ear] + k) + product(same, factor[ear]);
            if (p == 0) {
                sum = sum + channel[ear] * broadcast(r.dry);
            }
            if constexpr (kChannels > 2) {
                sum = sum + product(front, factor[kX2bCentreChannel]);
                if (p == 0) {
                    sum = sum + channel[kX2bCentreChannel] * broadcast(r.dry);
                }
            }
            Bins::write(rows.ear[ear] + k, sum);
        }
    }
}

template <int kChannels>
ZOQ_INLINE void add_bins(const Plan& plan, int partitions, const X2bRendering& r, const X2bInputs& x) {
    if (r.fading) {
        for (int k = 0; k < kLastBin; k += kPairs) {
            add_fading<kChannels, Whole>(plan, partitions, r, x, k);
        }
        add_fading<kChannels, Single>(plan, partitions, r, x, kLastBin);
    } else {
        for (int k = 0; k < kLastBin; k += kPairs) {
            add_full<kChannels, Whole>(plan, partitions, r, x, k);
        }
        add_full<kChannels, Single>(plan, partitions, r, x, kLastBin);
    }
}

// The usual number of partitions is known beforehand, so that their loop unrolls.
template <int kChannels>
void add_channels(const Plan& plan, int partitions, const X2bRendering& r, const X2bInputs& x) {
    if (partitions == kX2bPartitions) {
        add_bins<kChannels>(plan, kX2bPartitions, r, x);
    } else {
        add_bins<kChannels>(plan, partitions, r, x);
    }
}

}  // namespace

void x2b_accumulate(const X2bInputs& x, int channels, int partitions, const parameterX2B* parameters,
                    const X2bRendering& r, const X2bSlots& slots) {
    const Plan plan = plan_of(partitions, parameters, r, slots);
    if (channels == 1) {
        add_channels<1>(plan, partitions, r, x);
    } else if (channels == 2) {
        add_channels<2>(plan, partitions, r, x);
    } else {
        add_channels<3>(plan, partitions, r, x);
    }
}

void x2b_current_hop(const creal32_T* frame, float* out) {
    for (int i = 0; i < kHopSamples; i += kLanes) {
        const ComplexLanes ears = load_complex(&frame[kHopSamples + i].re);
        store(out + i, ears.re);
        store(out + kHopSamples + i, ears.im);
    }
}

}  // namespace android::ZOQ_LEVEL
