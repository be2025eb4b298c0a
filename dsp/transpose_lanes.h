// The transposition of kLanes x kLanes floats on their way from memory into registers, for kernels.
#pragma once

#include "dsp/lanes.h"

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

// Reads kLanes rows of one vector each, stride vectors apart: column[i] receives lane i of every row.
ZOQ_INLINE void load_transposed(const Lanes* rows, int stride, Lanes* column) {
#if ZOQ_LANES == 8
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        const auto* a = reinterpret_cast<const FourFloats*>(rows + k * stride);
        const auto* b = reinterpret_cast<const FourFloats*>(rows + (4 + k) * stride);
        column[k] = join_halves(a[0], b[0]);
        column[4 + k] = join_halves(a[1], b[1]);
    }
#else
    ZOQ_UNROLL for (int k = 0; k < kLanes; ++k) {
        column[k] = rows[k * stride];
    }
#endif
    ZOQ_UNROLL for (int k = 0; k < kLanes; k += 4) {
        transpose_quarters(column + k);
    }
#if ZOQ_LANES == 16
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        const Lanes a = lower_halves(column[k], column[4 + k]),
                    b = lower_halves(column[8 + k], column[12 + k]);
        const Lanes c = upper_halves(column[k], column[4 + k]),
                    d = upper_halves(column[8 + k], column[12 + k]);
        column[k] = even_quarters(a, b);
        column[4 + k] = odd_quarters(a, b);
        column[8 + k] = even_quarters(c, d);
        column[12 + k] = odd_quarters(c, d);
    }
#endif
}

}  // namespace android::ZOQ_LEVEL
