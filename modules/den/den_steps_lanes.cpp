// The fast forms of the steps in den_steps.cpp. Bins stand side by side; a sum over the bins of a band keeps their
// order, so there four sums of one band do.
#include "dsp/complex_lanes.h"
#include "dsp/fft_tables.h"
#include "dsp/quads.h"
#include "modules/den/den_steps.h"

namespace android::ZOQ_LEVEL {

namespace {

// Two kinds of complex values per bin, which are summed together.
struct BinPairs {
    creal32_T first[kDenBinRow], second[kDenBinRow];
};

// re and im of the first kind, then of the second.
struct BandSums {
    float sum[kDenCentreBands][4];
};

void sum_bands(const DenBands& bands, int count, const BinPairs& bins, BandSums& out) {
    for (int j = 0; j < count; ++j) {
        Quad sum = broadcast_quad(0.0f);
        for (int k = bands.band[j].first; k < bands.band[j].end; ++k) {
            sum = sum + load_pairs(&bins.first[k].re, &bins.second[k].re);
        }
        store(out.sum[j], sum);
    }
}

// A gain per re and im of every bin; `behind` in the rest of the last vector.
struct BinGains {
    float gain[2 * kDenBinRow];
};

void spread(const DenBands& bands, int count, const float* bandGain, float behind, BinGains& out) {
    for (int j = 0; j < count; ++j) {
        for (int i = 2 * bands.band[j].first; i < 2 * bands.band[j].end; i += kLanes) {
            store(out.gain + i, broadcast(bandGain[j]));
        }
    }
    store(out.gain + 2 * bands.band[count - 1].end, broadcast(behind));
}

ZOQ_INLINE Lanes clamp_to_unit(Lanes x) {
    const Lanes zero = broadcast(0.0f), one = broadcast(1.0f);
    return select(less(x, zero), zero, select(less(one, x), one, x));
}

struct Gains {
    Lanes left, right;
};

ZOQ_INLINE Gains pan_law_gains(Lanes p) {
    const Lanes x = (p + broadcast(1.0f)) * broadcast(0.5f), curvature = broadcast(-0.8338f);
    const Lanes left = (curvature * x - broadcast(0.2086f)) * x + broadcast(1.0189f);
    const Lanes right = (curvature * x + broadcast(1.8762f)) * x - broadcast(0.0235f);
    return {clamp_to_unit(left), clamp_to_unit(right)};
}

ZOQ_INLINE Lanes squared_magnitude(ComplexLanes a) {
    return a.re * a.re + a.im * a.im;
}

ZOQ_INLINE Lanes pan_index(ComplexLanes l, ComplexLanes r) {
    const Lanes zero = broadcast(0.0f), one = broadcast(1.0f);
    const Lanes leftPower = squared_magnitude(l), rightPower = squared_magnitude(r);
    const ComplexLanes cross{l.re * r.re + l.im * r.im, l.im * r.re - l.re * r.im};
    const Lanes likeness = broadcast(2.0f) * square_root(squared_magnitude(cross)) /
                           (leftPower + rightPower + broadcast(kDenQuotientGuard));
    const Lanes difference = rightPower - leftPower;
    const Lanes side =
        select(less(zero, difference), one, select(less(difference, zero), broadcast(-1.0f), zero));
    return (one - likeness) * side;
}

ZOQ_INLINE Lanes moved_pan_index(const DenCubic& curve, Lanes p) {
    const IntLanes right = less(broadcast(0.0f), p);
    const Lanes u = select(right, p, -p);
    const Lanes moved =
        clamp_to_unit(((broadcast(curve.c0) * u + broadcast(curve.c1)) * u + broadcast(curve.c2)) * u +
                      broadcast(curve.c3));
    return select(right, moved, -moved);
}

ZOQ_INLINE void widen_bins(const DenCubic& curve, creal32_T* left, creal32_T* right) {
    ComplexLanes l = parts_of(load(left), load(left + kPairs));
    ComplexLanes r = parts_of(load(right), load(right + kPairs));
    const Lanes p = pan_index(l, r), guard = broadcast(kDenQuotientGuard);
    const Gains before = pan_law_gains(p), after = pan_law_gains(moved_pan_index(curve, p));
    const Lanes leftGain = after.left / (before.left + guard);
    const Lanes rightGain = after.right / (before.right + guard);
    l = {l.re * leftGain, l.im * leftGain};
    r = {r.re * rightGain, r.im * rightGain};
    store(left, zip_first(l));
    store(left + kPairs, zip_second(l));
    store(right, zip_first(r));
    store(right + kPairs, zip_second(r));
}

// The first bands of a vector that lie before `count`.
ZOQ_INLINE IntLanes bands_before(int count, int j) {
    return lane_numbers() < count - j;
}

// Takes a new hop's powers in, band by band, and leaves the centre's gains.
void smooth_powers(float smoothFactor, const DenPowers& hop, DenPowers& smoothed, float* gain) {
    const Lanes newWeight = broadcast(1.0f - smoothFactor), oldWeight = broadcast(smoothFactor);
    for (int j = 0; j < kDenCentreBands; j += kLanes) {
        const IntLanes used = bands_before(kDenCentreBands, j);
        const Lanes oldSide = load(smoothed.side + j), oldMid = load(smoothed.mid + j);
        const Lanes side = newWeight * load(hop.side + j) + oldWeight * oldSide;
        const Lanes mid = newWeight * load(hop.mid + j) + oldWeight * oldMid;
        store(smoothed.side + j, select(used, side, oldSide));
        store(smoothed.mid + j, select(used, mid, oldMid));
        const Lanes root = square_root(side / (mid + broadcast(kDenPowerGuard)));
        const Lanes share = (broadcast(1.0f) - root) * broadcast(0.5f);
        store(gain + j, select(less(mid, side), broadcast(0.0f), share));
    }
}

void smooth_energies(const DenEnergies& hop, DenEnergies& smoothed, float* share) {
    const Lanes newWeight = broadcast(kDenNewEnergy), oldWeight = broadcast(kDenOldEnergy);
    float all[kDenBandRow];
    for (int j = 0; j < kDenSpeechBands; j += kLanes) {
        const IntLanes used = bands_before(kDenSpeechBands, j);
        const Lanes oldCentre = load(smoothed.centre + j), oldSide = load(smoothed.side + j);
        const Lanes centre = newWeight * load(hop.centre + j) + oldWeight * oldCentre;
        const Lanes side = newWeight * load(hop.side + j) + oldWeight * oldSide;
        store(smoothed.centre + j, select(used, centre, oldCentre));
        store(smoothed.side + j, select(used, side, oldSide));
        store(all + j, square_root(centre / ((centre + broadcast(kDenPowerGuard)) + side)));
    }
    for (int j = 0; j < kDenSpeechBands; ++j) {
        share[j] = all[j];
    }
}

}  // namespace

void den_window_pair(const float* io, float* windowed) {
    for (int n = 0; n < kFrameSamples; n += kLanes) {
        const Lanes window = load(kSineWindow + n);
        store(windowed + n, load(io + n) * window);
        store(windowed + kFrameSamples + n, load(io + kFrameSamples + n) * window);
    }
}

void den_widen(const DenCubic& curve, DenSpectra& s) {
    // Whole vectors up to the last wide bin; the bins before the first one get their values back.
    constexpr int kEnd = kDenLastWideBin + 1, kBegin = kDenFirstWideBin / kLanes * kLanes;
    static_assert(kEnd % kLanes == 0);
    creal32_T left[kLanes], right[kLanes];
    for (int k = kBegin; k < kDenFirstWideBin; ++k) {
        left[k - kBegin] = s.left[k];
        right[k - kBegin] = s.right[k];
    }
    for (int k = kBegin; k < kEnd; k += kLanes) {
        widen_bins(curve, s.left + k, s.right + k);
    }
    for (int k = kBegin; k < kDenFirstWideBin; ++k) {
        s.left[k] = left[k - kBegin];
        s.right[k] = right[k - kBegin];
    }
}

void den_extract_centre(const DenBands& bands, float smoothFactor, bool subtract, DenPowers& powers,
                        DenSpectra& s) {
    if (!bands.adjoin) {
        return scalar::den_extract_centre(bands, smoothFactor, subtract, powers, s);
    }
    const int begin = bands.band[0].first, end = bands.band[kDenCentreBands - 1].end;
    BinPairs sideAndMid;
    for (int k = begin; k < end; k += kPairs) {
        const Lanes l = load(s.left + k), r = load(s.right + k);
        store(sideAndMid.first + k, l - r);
        store(sideAndMid.second + k, l + r);
    }
    BandSums sums;
    sum_bands(bands, kDenCentreBands, sideAndMid, sums);
    DenPowers hop{};
    for (int j = 0; j < kDenCentreBands; ++j) {
        const float* v = sums.sum[j];
        hop.side[j] = v[0] * v[0] + v[1] * v[1];
        hop.mid[j] = v[2] * v[2] + v[3] * v[3];
    }
    float gain[kDenBandRow];
    smooth_powers(smoothFactor, hop, powers, gain);
    BinGains bins;
    spread(bands, kDenCentreBands, gain, 0.0f, bins);
    for (int k = begin; k < end; k += kPairs) {
        // Behind the last band the centre stays zero, of which it is no product.
        const IntLanes inside = lane_numbers() < 2 * (end - k);
        const Lanes centre =
            select(inside, load(sideAndMid.second + k) * load(bins.gain + 2 * k), broadcast(0.0f));
        store(s.centre + k, centre);
        if (subtract) {
            store(s.left + k, load(s.left + k) - centre);
            store(s.right + k, load(s.right + k) - centre);
        }
    }
}

void den_measure_bands(const DenBands& bands, const DenSpectra& s, DenEnergies& energies,
                       DenMagnitudes& newest, float* share) {
    if (!bands.adjoin) {
        return scalar::den_measure_bands(bands, s, energies, newest, share);
    }
    BinPairs bins;  // magnitudes and powers, each of the centre and the side
    for (int k = bands.band[0].first; k < bands.band[kDenSpeechBands - 1].end; k += kLanes) {
        const Lanes side1 = load(s.left + k) - load(s.right + k);
        const Lanes side2 = load(s.left + k + kPairs) - load(s.right + k + kPairs);
        const Lanes centrePower =
            squared_magnitude(parts_of(load(s.centre + k), load(s.centre + k + kPairs)));
        const Lanes sidePower = squared_magnitude(parts_of(side1, side2));
        const ComplexLanes magnitudes{square_root(centrePower), square_root(sidePower)};
        const ComplexLanes powers{centrePower, sidePower};
        store(bins.first + k, zip_first(magnitudes));
        store(bins.first + k + kPairs, zip_second(magnitudes));
        store(bins.second + k, zip_first(powers));
        store(bins.second + k + kPairs, zip_second(powers));
    }
    BandSums sums;
    sum_bands(bands, kDenSpeechBands, bins, sums);
    DenEnergies hop{};
    for (int j = 0; j < kDenSpeechBands; ++j) {
        const float* v = sums.sum[j];
        newest.centre[j] = v[0];
        newest.side[j] = v[1];
        hop.centre[j] = v[2];
        hop.side[j] = v[3];
    }
    smooth_energies(hop, energies, share);
}

void den_scale_bands(const DenBands& bands, const float* gain, DenSpectra& s) {
    if (!bands.adjoin) {
        return scalar::den_scale_bands(bands, gain, s);
    }
    BinGains bins;
    spread(bands, kDenSpeechBands, gain, 1.0f, bins);
    for (int k = bands.band[0].first; k < bands.band[kDenSpeechBands - 1].end; k += kPairs) {
        const Lanes g = load(bins.gain + 2 * k);
        store(s.centre + k, load(s.centre + k) * g);
        store(s.left + k, load(s.left + k) * g);
        store(s.right + k, load(s.right + k) * g);
    }
}

void den_window_centre(const creal32_T* frame, float* io) {
    for (int n = 0; n < kFrameSamples; n += kLanes) {
        store(io + 2 * kFrameSamples + n, load_apart(&frame[n].re).re * load(kSineWindow + n));
    }
}

void den_window_sides(const creal32_T* frame, float* io) {
    for (int n = 0; n < kFrameSamples; n += kLanes) {
        const ComplexLanes pair = load_apart(&frame[n].re);
        const Lanes window = load(kSineWindow + n);
        store(io + n, pair.re * window);
        store(io + kFrameSamples + n, pair.im * window);
    }
}

}  // namespace android::ZOQ_LEVEL
