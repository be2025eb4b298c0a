// The transposition of kLanes x kLanes floats in registers, for kernels.
#pragma once

#include "dsp/lanes.h"

namespace android::ZOQ_LEVEL {

// Within quarters of four lanes: single lanes of a and b in turn, the lower and the upper ones.
template <int... I>
ZOQ_INLINE void zip_lanes(Lanes& a, Lanes& b, std::integer_sequence<int, I...>) {
    const Lanes lower = shuffle<(I / 4 * 4 + I % 2 * kLanes + I % 4 / 2)...>(a, b);
    b = shuffle<(I / 4 * 4 + I % 2 * kLanes + I % 4 / 2 + 2)...>(a, b);
    a = lower;
}

// The same with pairs of lanes.
template <int... I>
ZOQ_INLINE void zip_pairs(Lanes& a, Lanes& b, std::integer_sequence<int, I...>) {
    const Lanes lower = shuffle<(I / 4 * 4 + I % 4 / 2 * kLanes + I % 2)...>(a, b);
    b = shuffle<(I / 4 * 4 + I % 4 / 2 * kLanes + I % 2 + 2)...>(a, b);
    a = lower;
}

// The lower halves of a and b; the upper ones.
template <int... I>
ZOQ_INLINE void join_halves(Lanes& a, Lanes& b, std::integer_sequence<int, I...>) {
    constexpr int kHalf = kLanes / 2;
    const Lanes lower = shuffle<(I / kHalf * kLanes + I % kHalf)...>(a, b);
    b = shuffle<(I / kHalf * kLanes + I % kHalf + kHalf)...>(a, b);
    a = lower;
}

// The even quarters of a and b; the odd ones. For 16 lanes.
template <int... I>
ZOQ_INLINE void join_quarters(Lanes& a, Lanes& b, std::integer_sequence<int, I...>) {
    constexpr int kHalf = kLanes / 2;
    const Lanes even = shuffle<(I / kHalf * kLanes + I % kHalf / 4 * 8 + I % 4)...>(a, b);
    b = shuffle<(I / kHalf * kLanes + I % kHalf / 4 * 8 + I % 4 + 4)...>(a, b);
    a = even;
}

ZOQ_INLINE void swap(Lanes& a, Lanes& b) {
    const Lanes c = a;
    a = b;
    b = c;
}

// Rows g..g+3: each quarter of lanes becomes the transposed 4 x 4 block.
ZOQ_INLINE void transpose_quarters(Lanes* rows) {
    zip_lanes(rows[0], rows[1], LaneIndices());
    zip_lanes(rows[2], rows[3], LaneIndices());
    zip_pairs(rows[0], rows[2], LaneIndices());
    zip_pairs(rows[1], rows[3], LaneIndices());
    swap(rows[1], rows[2]);
}

// Lane j of row i and lane i of row j change places, for kLanes rows.
ZOQ_INLINE void transpose(Lanes* rows) {
    ZOQ_UNROLL for (int g = 0; g < kLanes; g += 4) {
        transpose_quarters(rows + g);
    }
#if ZOQ_LANES == 8
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        join_halves(rows[k], rows[4 + k], LaneIndices());
    }
#elif ZOQ_LANES == 16
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        join_halves(rows[k], rows[4 + k], LaneIndices());
        join_halves(rows[8 + k], rows[12 + k], LaneIndices());
        join_quarters(rows[k], rows[8 + k], LaneIndices());
        join_quarters(rows[4 + k], rows[12 + k], LaneIndices());
        swap(rows[4 + k], rows[8 + k]);
    }
#endif
}

}  // namespace android::ZOQ_LEVEL
