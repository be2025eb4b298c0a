// Rows and columns of kLanes x kLanes complex values: between memory and lanes, and from rows to columns.
#pragma once

#include "dsp/memory_lanes.h"

namespace android::ZOQ_LEVEL {

// Within quarters of four lanes: pairs of lanes of a and b in turn, the lower and the upper ones.
template <int... I>
ZOQ_INLINE Lanes pairs_lower(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return shuffle<(I / 4 * 4 + I % 4 / 2 * kLanes + I % 2)...>(a, b);
}
template <int... I>
ZOQ_INLINE Lanes pairs_upper(Lanes a, Lanes b, std::integer_sequence<int, I...>) {
    return shuffle<(I / 4 * 4 + I % 4 / 2 * kLanes + I % 2 + 2)...>(a, b);
}

// Of four vectors each quarter of lanes becomes the transposed 4 x 4 block.
ZOQ_INLINE void transpose_quarters(Lanes* rows) {
    const Lanes ab = zip_lower(rows[0], rows[1], LaneIndices()),
                cd = zip_lower(rows[2], rows[3], LaneIndices());
    const Lanes AB = zip_upper(rows[0], rows[1], LaneIndices()),
                CD = zip_upper(rows[2], rows[3], LaneIndices());
    rows[0] = pairs_lower(ab, cd, LaneIndices());
    rows[1] = pairs_upper(ab, cd, LaneIndices());
    rows[2] = pairs_lower(AB, CD, LaneIndices());
    rows[3] = pairs_upper(AB, CD, LaneIndices());
}

#if ZOQ_LANES == 16
// The lower halves of a and b, the upper ones; the even quarters, the odd ones.
ZOQ_INLINE Lanes lower_halves(Lanes a, Lanes b) {
    return shuffle<0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23>(a, b);
}
ZOQ_INLINE Lanes upper_halves(Lanes a, Lanes b) {
    return shuffle<8, 9, 10, 11, 12, 13, 14, 15, 24, 25, 26, 27, 28, 29, 30, 31>(a, b);
}
ZOQ_INLINE Lanes even_quarters(Lanes a, Lanes b) {
    return shuffle<0, 1, 2, 3, 8, 9, 10, 11, 16, 17, 18, 19, 24, 25, 26, 27>(a, b);
}
ZOQ_INLINE Lanes odd_quarters(Lanes a, Lanes b) {
    return shuffle<4, 5, 6, 7, 12, 13, 14, 15, 20, 21, 22, 23, 28, 29, 30, 31>(a, b);
}
#endif

// Lane kLaneOrder[i] of a vector of complex values in rows and columns holds the value i of the row: with eight lanes
// an order in which they come from interleaved re, im, and go there, without an exchange between the halves.
#if ZOQ_LANES == 8
constexpr int kLaneOrder[kLanes] = {0, 1, 4, 5, 2, 3, 6, 7};

ZOQ_INLINE Lanes in_lane_order(Lanes a) {
    return shuffle<0, 1, 4, 5, 2, 3, 6, 7>(a, a);
}
ZOQ_INLINE ComplexLanes load_ordered(const float* x) {
    const Lanes a = load(x), b = load(x + kLanes);
    return {even_in_quarters(a, b, LaneIndices()), odd_in_quarters(a, b, LaneIndices())};
}
ZOQ_INLINE void store_ordered(float* y, ComplexLanes z) {
    store(y, zip_lower(z.re, z.im, LaneIndices()));
    store(y + kLanes, zip_upper(z.re, z.im, LaneIndices()));
}
#else
constexpr int kLaneOrder[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

ZOQ_INLINE Lanes in_lane_order(Lanes a) {
    return a;
}
ZOQ_INLINE ComplexLanes load_ordered(const float* x) {
    return load_complex(x);
}
ZOQ_INLINE void store_ordered(float* y, ComplexLanes z) {
    store_complex(y, z);
}
#endif

// Lane `first` + k of kLanes rows becomes vector k, for kColumnsAtOnce of them. The rows lie at n and `distance` apart,
// in the order of the lanes, too.
#if ZOQ_LANES == 8
// Half of the columns need half of the registers, and a half of a vector is read from memory without a shuffle.
constexpr int kColumnsAtOnce = 4;

template <typename Rows>
ZOQ_INLINE void load_columns(Rows rows, int n, int distance, int first, ComplexLanes* column) {
    Lanes re[4], im[4];
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        const int lower = n + kLaneOrder[k] * distance, upper = n + kLaneOrder[4 + k] * distance;
        re[k] = load_halves(rows.re(lower) + first, rows.re(upper) + first);
        im[k] = load_halves(rows.im(lower) + first, rows.im(upper) + first);
    }
    transpose_quarters(re);
    transpose_quarters(im);
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        column[k] = {re[k], im[k]};
    }
}
#else
constexpr int kColumnsAtOnce = kLanes;

ZOQ_INLINE void transpose(Lanes* v) {
    ZOQ_UNROLL for (int k = 0; k < kLanes; k += 4) {
        transpose_quarters(v + k);
    }
#if ZOQ_LANES == 16
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        const Lanes a = lower_halves(v[k], v[4 + k]), b = lower_halves(v[8 + k], v[12 + k]);
        const Lanes c = upper_halves(v[k], v[4 + k]), d = upper_halves(v[8 + k], v[12 + k]);
        v[k] = even_quarters(a, b);
        v[4 + k] = odd_quarters(a, b);
        v[8 + k] = even_quarters(c, d);
        v[12 + k] = odd_quarters(c, d);
    }
#endif
}

template <typename Rows>
ZOQ_INLINE void load_columns(Rows rows, int n, int distance, int, ComplexLanes* column) {
    Lanes re[kLanes], im[kLanes];
    ZOQ_UNROLL for (int k = 0; k < kLanes; ++k) {
        re[k] = load(rows.re(n + k * distance));
        im[k] = load(rows.im(n + k * distance));
    }
    transpose(re);
    transpose(im);
    ZOQ_UNROLL for (int k = 0; k < kLanes; ++k) {
        column[k] = {re[k], im[k]};
    }
}
#endif

}  // namespace android::ZOQ_LEVEL
