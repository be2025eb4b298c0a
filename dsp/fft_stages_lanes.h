// The stages of the fast transforms: 1024 points as kRows rows of one vector each.
//
// In bit-reversed order the first stages join values of whole rows, so that a column of lanes runs through them with
// one broadcast twiddle per row; no value moves, since the order is that in which the rows are read. The last stages
// join what lies in different lanes: after a transposition in registers they run across vectors, with twiddles side by
// side. Real and imaginary parts are kept apart throughout.
#pragma once

#include "dsp/fft_tables.h"
#include "dsp/transpose_lanes.h"

namespace android::ZOQ_LEVEL {

constexpr int kRows = kFrameSamples / kLanes;

// Between the stages of wide vectors the rows lie where the result will, row r in place of the values from place(r) on:
// the last stages then write where they have read, and the transform needs no memory beside its arguments. With four
// lanes, where that gains nothing, they lie in a frame of their own, one behind the other. Of rows whose numbers have no
// bit in common the places add up, and from kLanes rows on they are as far apart as the rows.
constexpr bool kInPlace = kLanes > 4;
constexpr int place(int row) {
    const unsigned r = unsigned(row);
    return kInPlace ? int(r % kLanes * kRows + r / kLanes * kLanes) : row * kLanes;
}

// Where values are kept meanwhile: real and imaginary parts of kLanes values in place of interleaved ones, or each in
// a plane of its own.
struct RowsInFrame {
    float* y;
    ZOQ_MEMBER float* re(int n) const { return y + 2 * n; }
    ZOQ_MEMBER float* im(int n) const { return y + 2 * n + kLanes; }
};
struct RowsInPlanes {
    float *x, *y;
    ZOQ_MEMBER float* re(int n) const { return x + n; }
    ZOQ_MEMBER float* im(int n) const { return y + n; }
};

template <typename Rows>
ZOQ_INLINE ComplexLanes row_at(Rows rows, int n) {
    return {load(rows.re(n)), load(rows.im(n))};
}
template <typename Rows>
ZOQ_INLINE void put_row(Rows rows, int n, ComplexLanes z) {
    store(rows.re(n), z.re);
    store(rows.im(n), z.im);
}

ZOQ_INLINE ComplexLanes product(ComplexLanes w, ComplexLanes x) {
    return {subtract_product(w.re * x.re, w.im, x.im), add_product(w.im * x.re, w.re, x.im)};
}

// Twiddles whose products are known or are known to agree save multiplications, but none that decides the sign of a
// zero. The twiddle 1 is not multiplied at all.
struct Unit {};
struct QuarterTurn {};   // -j
struct EighthTurn {};    // (1 - j) sqrt(1/2)
struct ThreeEighths {};  // (-1 - j) sqrt(1/2)

constexpr float kRootHalf = 0.70710677f;

ZOQ_INLINE ComplexLanes product(Unit, ComplexLanes x) {
    return x;
}
ZOQ_INLINE ComplexLanes product(QuarterTurn, ComplexLanes x) {
    const Lanes zero = broadcast(0.0f);
    return {zero * x.re + x.im, zero * x.im - x.re};
}
ZOQ_INLINE ComplexLanes product(EighthTurn, ComplexLanes x) {
    const Lanes root = broadcast(kRootHalf), re = root * x.re, im = root * x.im;
    return {re + im, im - re};
}
ZOQ_INLINE ComplexLanes product(ThreeEighths, ComplexLanes x) {
    const Lanes re = broadcast(-kRootHalf) * x.re, im = broadcast(kRootHalf) * x.im;
    return {re + im, re - im};
}

// A quarter turn further than w: its parts exchanged, one with the opposite sign. The same products and sums as with
// the turned twiddle itself, which would be one more to load and to hold.
struct Turned {
    ComplexLanes w;
};
ZOQ_INLINE ComplexLanes product(Turned turned, ComplexLanes x) {
    const ComplexLanes w = turned.w;
    return {add_product(w.im * x.re, w.re, x.im), subtract_product(w.im * x.im, w.re, x.re)};
}

template <typename Twiddle>
ZOQ_INLINE void butterfly(ComplexLanes& upper, ComplexLanes& lower, Twiddle w) {
    const ComplexLanes t = product(w, lower);
    lower = {upper.re - t.re, upper.im - t.im};
    upper = {upper.re + t.re, upper.im + t.im};
}

// The twiddle of the rows `offset` of blocks of 2 x span rows, in all lanes.
ZOQ_INLINE ComplexLanes row_twiddle(int span, int offset) {
    return {broadcast(kStageCos[span + offset]), broadcast(kStageSin[span + offset])};
}

// The twiddles of up to three stages on rows `span` apart, for the first rows of blocks and for rows `offset`.
struct TwiddlesAtStart {
    Unit first, second0;
    QuarterTurn second1;
    Unit third0;
    EighthTurn third1;
    QuarterTurn third2;
    ThreeEighths third3;
};
struct TwiddlesAt {
    ComplexLanes first, second0;
    Turned second1;
    ComplexLanes third0, third1;
    Turned third2, third3;
};
ZOQ_INLINE TwiddlesAt twiddles_at(int span, int offset) {
    const ComplexLanes second = row_twiddle(2 * span, offset), third0 = row_twiddle(4 * span, offset),
                       third1 = row_twiddle(4 * span, offset + span);
    return {row_twiddle(span, offset), second, {second}, third0, third1, {third0}, {third1}};
}

template <typename Twiddles>
ZOQ_INLINE void two_stages(ComplexLanes* z, Twiddles w) {
    butterfly(z[0], z[1], w.first);
    butterfly(z[2], z[3], w.first);
    butterfly(z[0], z[2], w.second0);
    butterfly(z[1], z[3], w.second1);
}

template <typename Twiddles>
ZOQ_INLINE void third_stage(ComplexLanes* z, Twiddles w) {
    butterfly(z[0], z[4], w.third0);
    butterfly(z[1], z[5], w.third1);
    butterfly(z[2], z[6], w.third2);
    butterfly(z[3], z[7], w.third3);
}

constexpr int reversed(int value, int count) {
    int result = 0;
    for (int rest = value, bit = 1; bit < count; bit *= 2, rest /= 2) {
        result = 2 * result + rest % 2;
    }
    return result;
}

// The numbers 0 to kCount - 1 with their bits reversed.
template <int kCount>
struct Reversed {
    uint8_t of[kCount];
    constexpr Reversed() : of() {
        for (int i = 0; i < kCount; ++i) {
            of[i] = uint8_t(reversed(i, kCount));
        }
    }
};
constexpr Reversed<kRows> kReversedRow;
constexpr Reversed<kLanes> kReversedLane;
constexpr Reversed<8> kReversedOf8;

// The first three stages.
template <typename Source, typename Rows>
ZOQ_INLINE void first_stages(Source source, Rows rows) {
    const TwiddlesAtStart w;
    for (int i = 0; i < kRows; i += 8) {
        ComplexLanes z[8];
        ZOQ_UNROLL for (int k = 0; k < 8; k += 4) {
            ZOQ_UNROLL for (int l = k; l < k + 4; ++l) {
                z[l] = source.row(kReversedRow.of[i] + kReversedOf8.of[l] * (kRows / 8));
            }
            two_stages(z + k, w);
        }
        third_stage(z, w);
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            put_row(rows, place(i) + place(k), z[k]);
        }
    }
}

// Two or three further stages, on the rows `offset` of all blocks.
template <int kStages, typename Rows, typename Twiddles>
ZOQ_INLINE void stages_at(Rows rows, int span, int offset, Twiddles w) {
    constexpr int kCount = 1 << kStages;
    const int first = place(offset);
    for (int n = first; n < first + place(kRows); n += place(kCount * span)) {
        ComplexLanes z[kCount];
        ZOQ_UNROLL for (int k = 0; k < kCount; ++k) {
            z[k] = row_at(rows, n + place(k * span));
        }
        ZOQ_UNROLL for (int k = 0; k < kCount; k += 4) {
            two_stages(z + k, w);
        }
        if constexpr (kStages == 3) {
            third_stage(z, w);
        }
        ZOQ_UNROLL for (int k = 0; k < kCount; ++k) {
            put_row(rows, n + place(k * span), z[k]);
        }
    }
}

template <int kStages, typename Rows>
ZOQ_INLINE void next_stages(Rows rows, int span) {
    stages_at<kStages>(rows, span, 0, TwiddlesAtStart());
    for (int offset = 1; offset < span; ++offset) {
        stages_at<kStages>(rows, span, offset, twiddles_at(span, offset));
    }
}

// The rest of the stages on whole rows.
template <typename Rows>
[[gnu::noinline]] static void middle_stages(Rows rows) {
#if ZOQ_LANES == 4
    next_stages<3>(rows, 8);
    next_stages<2>(rows, 64);
#elif ZOQ_LANES == 8
    next_stages<2>(rows, 8);
    next_stages<2>(rows, 32);
#else
    next_stages<3>(rows, 8);
#endif
}

// The twiddles of a stage in the order of the lanes.
#if ZOQ_LANES == 8
constexpr const float *kCos = kStageCosInPairs, *kSin = kStageSinInPairs;
#else
constexpr const float *kCos = kStageCos, *kSin = kStageSin;
#endif

// Joins vectors of values `span` rows apart, with the twiddles of the rows `offset` x kRows + i and following.
template <bool kFirst>
ZOQ_INLINE void butterfly_across(ComplexLanes& upper, ComplexLanes& lower, int span, int offset, int i) {
    const int half = span > 1 ? span / 2 : 1, entry = (span + offset % half) * kRows + i;
    const ComplexLanes w{load(kCos + entry), load(kSin + entry)};
    if (offset >= half) {
        return butterfly(upper, lower, Turned{w});
    }
    ComplexLanes t = product(w, lower);
    if (kFirst && offset == 0) {
        const IntLanes one = lane_numbers() == 0;  // the lane whose twiddle is 1
        t = {select(one, lower.re, t.re), select(one, lower.im, t.im)};
    }
    lower = {upper.re - t.re, upper.im - t.im};
    upper = {upper.re + t.re, upper.im + t.im};
}

// The stages on vectors from `span` kSpan on, all but the last.
template <int kSpan, bool kFirst>
ZOQ_INLINE void stages_across(ComplexLanes* z, int i) {
    if constexpr (kSpan < kLanes / 2) {
        ZOQ_UNROLL for (int k = 0; k < kLanes / 2; ++k) {
            const int upper = k / kSpan * 2 * kSpan + k % kSpan;
            butterfly_across<kFirst>(z[upper], z[upper + kSpan], kSpan, k % kSpan, i);
        }
        stages_across<2 * kSpan, kFirst>(z, i);
    }
}

// The last stages of the rows i to i + kLanes - 1 and of what they become: z[b] holds the values b x kRows + i and
// following.
template <bool kFirst, typename Rows, typename Sink>
ZOQ_INLINE void last_stages_at(Rows rows, int i, Sink sink) {
    constexpr int kGroups = kLanes / kColumnsAtOnce, kHalf = kLanes / 2;
    ComplexLanes z[kLanes];
    ZOQ_UNROLL for (int g = 0; g < kGroups; ++g) {
        ComplexLanes column[kColumnsAtOnce];
        load_columns(rows, place(i), place(1), g * kColumnsAtOnce, column);
        ZOQ_UNROLL for (int k = 0; k < kColumnsAtOnce; ++k) {
            z[kReversedLane.of[kLaneOrder[g * kColumnsAtOnce + k]]] = column[k];
        }
        // A column and the one half a row further on, which is in the same group, are neighbours now.
        ZOQ_UNROLL for (int k = g; k < kHalf; k += kGroups) {
            butterfly_across<kFirst>(z[2 * k], z[2 * k + 1], 1, 0, i);
        }
    }
    stages_across<2, kFirst>(z, i);
    ZOQ_UNROLL for (int b = 0; b < kHalf; ++b) {
        butterfly_across<kFirst>(z[b], z[b + kHalf], kHalf, b, i);
        sink.put(b * kRows + i, z[b]);
        sink.put((b + kHalf) * kRows + i, z[b + kHalf]);
    }
}

}  // namespace android::ZOQ_LEVEL
