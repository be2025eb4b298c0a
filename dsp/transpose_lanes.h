// The transposition of kLanes x kLanes floats in registers, for kernels.
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

#if ZOQ_LANES == 8
// The lower halves of a and b, the upper ones.
ZOQ_INLINE Lanes lower_halves(Lanes a, Lanes b) {
    return shuffle<0, 1, 2, 3, 8, 9, 10, 11>(a, b);
}
ZOQ_INLINE Lanes upper_halves(Lanes a, Lanes b) {
    return shuffle<4, 5, 6, 7, 12, 13, 14, 15>(a, b);
}
#endif

// Lane j of vector i and lane i of vector j change places, for kLanes vectors.
ZOQ_INLINE void transpose(Lanes* v) {
    ZOQ_UNROLL for (int k = 0; k < kLanes; k += 4) {
        transpose_quarters(v + k);
    }
#if ZOQ_LANES == 8
    ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
        const Lanes a = v[k], b = v[4 + k];
        v[k] = lower_halves(a, b);
        v[4 + k] = upper_halves(a, b);
    }
#elif ZOQ_LANES == 16
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

}  // namespace android::ZOQ_LEVEL
