// The fast forms of the transforms: 1024 points as kRows rows of one vector each.
//
// In bit-reversed order the first stages join values of whole rows, so that a column of lanes runs through them with
// one broadcast twiddle per row; no value moves, since the order is that in which the rows are read. The last stages
// join what lies in different lanes: after a transposition in registers they run across vectors, with twiddles side by
// side. Real and imaginary parts are kept apart throughout. The inverse is the forward transform with the two parts
// exchanged at both ends, which gives the same products and sums.
#include "dsp/fft_kernels.h"
#include "dsp/fft_tables.h"
#include "dsp/lanes.h"
#include "dsp/transpose_lanes.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr int kRows = kFrameSamples / kLanes;

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
    ComplexLanes first, second0, second1, third0, third1, third2, third3;
};
ZOQ_INLINE TwiddlesAt twiddles_at(int span, int offset) {
    return {row_twiddle(span, offset),
            row_twiddle(2 * span, offset),
            row_twiddle(2 * span, offset + span),
            row_twiddle(4 * span, offset),
            row_twiddle(4 * span, offset + span),
            row_twiddle(4 * span, offset + 2 * span),
            row_twiddle(4 * span, offset + 3 * span)};
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

// Where the rows of the transform come from.
struct Interleaved {
    const creal32_T* x;
    ZOQ_MEMBER ComplexLanes row(int r) const { return load_complex(&x[r * kLanes].re); }
};
struct InterleavedInverse {
    const creal32_T* x;
    ZOQ_MEMBER ComplexLanes row(int r) const {
        const ComplexLanes z = load_complex(&x[r * kLanes].re);
        return {z.im, z.re};
    }
};
struct Real {
    const float* x;
    ZOQ_MEMBER ComplexLanes row(int r) const {
        return {in_lane_order(load(x + r * kLanes)), broadcast(0.0f)};
    }
};
struct StereoPair {
    const float* left;
    const float* right;
    ZOQ_MEMBER ComplexLanes row(int r) const {
        return {in_lane_order(load(left + r * kLanes)), -in_lane_order(load(right + r * kLanes))};
    }
};

// Where its results go, kLanes at a time.
struct ToInterleaved {
    creal32_T* y;
    ZOQ_MEMBER void put(int n, ComplexLanes z) const { store_complex(&y[n].re, z); }
};
struct ToInterleavedInverse {
    creal32_T* y;
    ZOQ_MEMBER void put(int n, ComplexLanes z) const {
        const Lanes scale = broadcast(1.0f / kFrameSamples);
        store_complex(&y[n].re, {z.im * scale, z.re * scale});
    }
};
struct ToHalved {
    creal32_T* y;
    ZOQ_MEMBER void put(int n, ComplexLanes z) const {
        const Lanes half = broadcast(0.5f);
        store_complex(&y[n].re, {z.re * half, z.im * half});
    }
};

// The first three stages.
template <typename Source>
ZOQ_INLINE void first_stages(Source source, ComplexLanes* rows) {
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
            rows[i + k] = z[k];
        }
    }
}

// Two further stages, on the rows `offset` of all blocks.
template <typename Twiddles>
ZOQ_INLINE void two_stages_at(ComplexLanes* rows, int span, int offset, Twiddles w) {
    for (int i = offset; i < kRows; i += 4 * span) {
        ComplexLanes z[4];
        ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
            z[k] = rows[i + k * span];
        }
        two_stages(z, w);
        ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
            rows[i + k * span] = z[k];
        }
    }
}

ZOQ_INLINE void next_two_stages(ComplexLanes* rows, int span) {
    two_stages_at(rows, span, 0, TwiddlesAtStart());
    for (int offset = 1; offset < span; ++offset) {
        two_stages_at(rows, span, offset, twiddles_at(span, offset));
    }
}

#if ZOQ_LANES != 8
// Three further stages.
template <typename Twiddles>
ZOQ_INLINE void three_stages_at(ComplexLanes* rows, int span, int offset, Twiddles w) {
    for (int i = offset; i < kRows; i += 8 * span) {
        ComplexLanes z[8];
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            z[k] = rows[i + k * span];
        }
        two_stages(z, w);
        two_stages(z + 4, w);
        third_stage(z, w);
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            rows[i + k * span] = z[k];
        }
    }
}

ZOQ_INLINE void next_three_stages(ComplexLanes* rows, int span) {
    three_stages_at(rows, span, 0, TwiddlesAtStart());
    for (int offset = 1; offset < span; ++offset) {
        three_stages_at(rows, span, offset, twiddles_at(span, offset));
    }
}
#endif

// The rest of the stages on whole rows.
[[gnu::noinline]] void middle_stages(ComplexLanes* rows) {
#if ZOQ_LANES == 4
    next_three_stages(rows, 8);
    next_two_stages(rows, 64);
#elif ZOQ_LANES == 8
    next_two_stages(rows, 8);
    next_two_stages(rows, 32);
#else
    next_three_stages(rows, 8);
#endif
}

// The twiddles of a stage in the order of the lanes.
#if ZOQ_LANES == 8
constexpr const float (&kCos)[kFrameSamples] = kStageCosInPairs, (&kSin)[kFrameSamples] = kStageSinInPairs;
#else
constexpr const float (&kCos)[kFrameSamples] = kStageCos, (&kSin)[kFrameSamples] = kStageSin;
#endif

// Joins vectors of values `span` rows apart, with the twiddles of the rows `offset` x kRows + i and following.
template <bool kFirst>
ZOQ_INLINE void butterfly_across(ComplexLanes& upper, ComplexLanes& lower, int span, int offset, int i) {
    const int entry = (span + offset) * kRows + i;
    const ComplexLanes w{load(kCos + entry), load(kSin + entry)};
    ComplexLanes t = product(w, lower);
    if (kFirst && offset == 0) {
        const IntLanes one = lane_numbers() == 0;  // the lane whose twiddle is 1
        t = {select(one, lower.re, t.re), select(one, lower.im, t.im)};
    }
    lower = {upper.re - t.re, upper.im - t.im};
    upper = {upper.re + t.re, upper.im + t.im};
}

// The stages within kCount vectors, one half after the other, which keeps few of them in use.
template <int kCount, bool kFirst>
ZOQ_INLINE void stages_across(ComplexLanes* z, int i) {
    if constexpr (kCount > 1) {
        stages_across<kCount / 2, kFirst>(z, i);
        stages_across<kCount / 2, kFirst>(z + kCount / 2, i);
        ZOQ_UNROLL for (int k = 0; k < kCount / 2; ++k) {
            butterfly_across<kFirst>(z[k], z[k + kCount / 2], kCount / 2, k, i);
        }
    }
}

// The last stages of the rows i to i + kLanes - 1 and of what they become: z[b] holds the values b x kRows + i and
// following.
template <bool kFirst, typename Sink>
ZOQ_INLINE void last_stages_at(const ComplexLanes* rows, int i, Sink sink) {
    ComplexLanes z[kLanes];
#if ZOQ_LANES == 8
    ZOQ_UNROLL for (int half = 0; half < 2; ++half) {
        Lanes re[4], im[4];
        ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
            const auto* lower = reinterpret_cast<const FourFloats*>(rows + i + kLaneOrder[k]) + half;
            const auto* upper = reinterpret_cast<const FourFloats*>(rows + i + kLaneOrder[4 + k]) + half;
            re[k] = __builtin_shufflevector(lower[0], upper[0], 0, 1, 2, 3, 4, 5, 6, 7);
            im[k] = __builtin_shufflevector(lower[2], upper[2], 0, 1, 2, 3, 4, 5, 6, 7);
        }
        transpose_quarters(re);
        transpose_quarters(im);
        ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
            z[kReversedLane.of[kLaneOrder[4*half + k]]] = {re[k], im[k]};
        }
        butterfly_across<kFirst>(z[2*half], z[2*half+1], 1, 0, i);
        butterfly_across<kFirst>(z[2*half+4], z[2*half+5], 1, 0, i);
    }
    ZOQ_UNROLL for (int k = 0; k < 8; k += 4) {
        butterfly_across<kFirst>(z[k], z[k+2], 2, 0, i);
        butterfly_across<kFirst>(z[k+1], z[k+3], 2, 1, i);
    }
    constexpr int kHalf = kLanes / 2;
#else
    Lanes re[kLanes], im[kLanes];
    ZOQ_UNROLL for (int l = 0; l < kLanes; ++l) {
        re[l] = rows[i + kLaneOrder[l]].re;
        im[l] = rows[i + kLaneOrder[l]].im;
    }
    transpose(re);
    transpose(im);
    ZOQ_UNROLL for (int b = 0; b < kLanes; ++b) {
        const int l = kLaneOrder[kReversedLane.of[b]];
        z[b] = {re[l], im[l]};
    }
    constexpr int kHalf = kLanes / 2;
    stages_across<kHalf, kFirst>(z, i);
    stages_across<kHalf, kFirst>(z + kHalf, i);
#endif
    ZOQ_UNROLL for (int b = 0; b < kHalf; ++b) {
        butterfly_across<kFirst>(z[b], z[b + kHalf], kHalf, b, i);
        sink.put(b * kRows + i, z[b]);
        sink.put((b + kHalf) * kRows + i, z[b + kHalf]);
    }
}

template <typename Source, typename Sink>
ZOQ_INLINE void transform(Source source, Sink sink) {
    ComplexLanes rows[kRows];
    first_stages(source, rows);
    middle_stages(rows);
    last_stages_at<true>(rows, 0, sink);
    for (int i = kLanes; i < kRows; i += kLanes) {
        last_stages_at<false>(rows, i, sink);
    }
}

[[gnu::noinline]] void inverse(const creal32_T* x, creal32_T* y) {
    transform(InterleavedInverse{x}, ToInterleavedInverse{y});
}

constexpr struct BitReversal {
    alignas(64) int32_t of[kFrameSamples];
    constexpr BitReversal() : of() {
        for (int i = 0; i < kFrameSamples; ++i) {
            of[i] = reversed(i, kFrameSamples);
        }
    }
} kBitReversal;

// Whether a host has left the table as it was built.
bool is_bit_reversal(const int32_t* table) {
    IntLanes wrong{}, alsoWrong{};
    for (int i = 0; i < kFrameSamples; i += 2 * kLanes) {
        wrong |= load_ints(table + i) ^ load_ints(kBitReversal.of + i);
        alsoWrong |= load_ints(table + i + kLanes) ^ load_ints(kBitReversal.of + i + kLanes);
    }
    wrong |= alsoWrong;
    int32_t any = 0;
    for (int lane = 0; lane < kLanes; ++lane) {
        any |= wrong[lane];
    }
    return any == 0;
}

}  // namespace

void fft(const int32_t* target, const creal32_T* x, creal32_T* y) {
    if (!is_bit_reversal(target)) {
        return scalar::fft(target, x, y);
    }
    transform(Interleaved{x}, ToInterleaved{y});
}

void c_fft(const int32_t* target, const float* x, creal32_T* y) {
    if (!is_bit_reversal(target)) {
        return scalar::c_fft(target, x, y);
    }
    transform(Real{x}, ToInterleaved{y});
}

void ifft(const int32_t* target, const creal32_T* x, creal32_T* y) {
    if (!is_bit_reversal(target)) {
        return scalar::ifft(target, x, y);
    }
    inverse(x, y);
}

// The mirror of the bins k to k + kLanes - 1 begins at mirrored(k), in reversed order.
ZOQ_INLINE int mirrored(int k) {
    return kFrameSamples - k - (kLanes - 1);
}

void split_stereo_spectrum(const int32_t* target, const float* left, const float* right, creal32_T* leftHalf,
                           creal32_T* rightHalf) {
    if (!is_bit_reversal(target)) {
        return scalar::split_stereo_spectrum(target, left, right, leftHalf, rightHalf);
    }
    alignas(64) creal32_T s[kFrameSamples + 1];
    transform(StereoPair{left, right}, ToHalved{s});
    s[kFrameSamples] = s[0];
    for (int k = 0; k < kBins - 1; k += kLanes) {
        const ComplexLanes z = load_complex(&s[k].re), reversed = load_complex(&s[mirrored(k)].re);
        const ComplexLanes mirror{reverse(reversed.re), reverse(reversed.im)};
        store_complex(&leftHalf[k].re, {z.re + mirror.re, z.im - mirror.im});
        store_complex(&rightHalf[k].re, {-(z.im + mirror.im), z.re - mirror.re});
    }
    const creal32_T middle = s[kBins - 1];  // its own mirror
    leftHalf[kBins - 1] = {middle.re + middle.re, middle.im - middle.im};
    rightHalf[kBins - 1] = {-(middle.im + middle.im), middle.re - middle.re};
}

void merge_stereo_spectrum(const int32_t* target, const creal32_T* leftHalf, const creal32_T* rightHalf,
                           creal32_T* frame) {
    if (!is_bit_reversal(target)) {
        return scalar::merge_stereo_spectrum(target, leftHalf, rightHalf, frame);
    }
    alignas(64)
        creal32_T s[kFrameSamples + 1];  // the mirror of bin 0 is written behind the last and not read
    for (int k = 0; k < kBins - 1; k += kLanes) {
        const ComplexLanes a = load_complex(&leftHalf[k].re), b = load_complex(&rightHalf[k].re);
        store_complex(&s[mirrored(k)].re, {reverse(a.re + b.im), reverse(b.re - a.im)});
        store_complex(&s[k].re, {a.re - b.im, a.im + b.re});
    }
    const creal32_T a = leftHalf[kBins - 1], b = rightHalf[kBins - 1];
    s[kBins - 1] = {a.re - b.im, a.im + b.re};
    inverse(s, frame);
}

void merge_mono_spectrum(const int32_t* target, const creal32_T* half, creal32_T* frame) {
    if (!is_bit_reversal(target)) {
        return scalar::merge_mono_spectrum(target, half, frame);
    }
    alignas(64) creal32_T s[kFrameSamples + 1];
    for (int k = 0; k < kBins - 1; k += kLanes) {
        const ComplexLanes a = load_complex(&half[k].re);
        store_complex(&s[mirrored(k)].re, {reverse(a.re), reverse(-a.im)});
        store_complex(&s[k].re, a);
    }
    s[kBins - 1] = half[kBins - 1];
    inverse(s, frame);
}

}  // namespace android::ZOQ_LEVEL
