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

// The twiddle 1, which is not multiplied.
struct Unit {};

ZOQ_INLINE ComplexLanes product(Unit, ComplexLanes x) {
    return x;
}
ZOQ_INLINE ComplexLanes product(ComplexLanes w, ComplexLanes x) {
    return {subtract_product(w.re * x.re, w.im, x.im), add_product(w.im * x.re, w.re, x.im)};
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

// Two stages on four rows `span` apart, three on eight; the first twiddle of a stage may be 1.
template <typename W>
ZOQ_INLINE void two_stages(ComplexLanes* z, W first, W second, ComplexLanes second1) {
    butterfly(z[0], z[1], first);
    butterfly(z[2], z[3], first);
    butterfly(z[0], z[2], second);
    butterfly(z[1], z[3], second1);
}

template <typename W>
ZOQ_INLINE void third_stage(ComplexLanes* z, W w, ComplexLanes w1, ComplexLanes w2, ComplexLanes w3) {
    butterfly(z[0], z[4], w);
    butterfly(z[1], z[5], w1);
    butterfly(z[2], z[6], w2);
    butterfly(z[3], z[7], w3);
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
    ZOQ_MEMBER ComplexLanes row(int r) const { return {load(x + r * kLanes), broadcast(0.0f)}; }
};
struct StereoPair {
    const float* left;
    const float* right;
    ZOQ_MEMBER ComplexLanes row(int r) const { return {load(left + r * kLanes), -load(right + r * kLanes)}; }
};
struct Planes {
    alignas(4 * kLanes) float re[kFrameSamples + kLanes];  // one value behind the last is used
    alignas(4 * kLanes) float im[kFrameSamples + kLanes];
};
struct PlanesInverse {
    const Planes* x;
    ZOQ_MEMBER ComplexLanes row(int r) const { return {load(x->im + r * kLanes), load(x->re + r * kLanes)}; }
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
struct ToHalvedPlanes {
    Planes* y;
    ZOQ_MEMBER void put(int n, ComplexLanes z) const {
        const Lanes half = broadcast(0.5f);
        store(y->re + n, z.re * half);
        store(y->im + n, z.im * half);
    }
};

// The first stages, of eight or four neighbouring rows.
template <typename Source>
ZOQ_INLINE void first_stages(Source source, ComplexLanes* rows) {
    const ComplexLanes quarter = row_twiddle(2, 1);
#if ZOQ_LANES == 16 || 1
    const ComplexLanes w1 = row_twiddle(4, 1), w2 = row_twiddle(4, 2), w3 = row_twiddle(4, 3);
    for (int i = 0; i < kRows; i += 8) {
        ComplexLanes z[8];
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            z[k] = source.row(kReversedRow.of[i] + kReversedOf8.of[k] * (kRows / 8));
        }
        two_stages(z, Unit(), Unit(), quarter);
        two_stages(z + 4, Unit(), Unit(), quarter);
        third_stage(z, Unit(), w1, w2, w3);
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            rows[i + k] = z[k];
        }
    }
#endif
}

template <typename W>
ZOQ_INLINE void two_stages_at(ComplexLanes* rows, int span, int offset, W first, W second) {
    const ComplexLanes second1 = row_twiddle(2 * span, offset + span);
    for (int i = offset; i < kRows; i += 4 * span) {
        ComplexLanes z[4] = {rows[i], rows[i + span], rows[i + 2 * span], rows[i + 3 * span]};
        two_stages(z, first, second, second1);
        ZOQ_UNROLL for (int k = 0; k < 4; ++k) {
            rows[i + k * span] = z[k];
        }
    }
}

ZOQ_INLINE void next_two_stages(ComplexLanes* rows, int span) {
    two_stages_at(rows, span, 0, Unit(), Unit());
    for (int offset = 1; offset < span; ++offset) {
        two_stages_at(rows, span, offset, row_twiddle(span, offset), row_twiddle(2 * span, offset));
    }
}

template <typename W>
ZOQ_INLINE void three_stages_at(ComplexLanes* rows, int span, int offset, W first, W second, W third) {
    const ComplexLanes second1 = row_twiddle(2 * span, offset + span);
    const ComplexLanes third1 = row_twiddle(4 * span, offset + span),
                       third2 = row_twiddle(4 * span, offset + 2 * span),
                       third3 = row_twiddle(4 * span, offset + 3 * span);
    for (int i = offset; i < kRows; i += 8 * span) {
        ComplexLanes z[8];
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            z[k] = rows[i + k * span];
        }
        two_stages(z, first, second, second1);
        two_stages(z + 4, first, second, second1);
        third_stage(z, third, third1, third2, third3);
        ZOQ_UNROLL for (int k = 0; k < 8; ++k) {
            rows[i + k * span] = z[k];
        }
    }
}

ZOQ_INLINE void next_three_stages(ComplexLanes* rows, int span) {
    three_stages_at(rows, span, 0, Unit(), Unit(), Unit());
    for (int offset = 1; offset < span; ++offset) {
        three_stages_at(rows, span, offset, row_twiddle(span, offset), row_twiddle(2 * span, offset),
                        row_twiddle(4 * span, offset));
    }
}

// The rest of the stages within columns.
[[gnu::noinline]] void middle_stages(ComplexLanes* rows) {
#if ZOQ_LANES == 16
    next_three_stages(rows, 8);
#elif ZOQ_LANES == 8
    next_two_stages(rows, 8);
    next_two_stages(rows, 32);
#else
    next_three_stages(rows, 8);
    next_two_stages(rows, 64);
#endif
}

// One stage across vectors: z[b] holds the values b x kRows + i and following.
template <int kSpan, bool kFirst>
ZOQ_INLINE void stage_across(ComplexLanes* z, int i) {
    ZOQ_UNROLL for (int k = 0; k < kLanes / 2; ++k) {
        const int offset = k % kSpan;
        ComplexLanes& upper = z[k / kSpan * 2 * kSpan + offset];
        ComplexLanes& lower = z[k / kSpan * 2 * kSpan + offset + kSpan];
        const int entry = (kSpan + offset) * kRows + i;
        const ComplexLanes w{load(kStageCos + entry), load(kStageSin + entry)};
        ComplexLanes t = product(w, lower);
        if (kFirst && offset == 0) {
            const IntLanes one = lane_numbers() == 0;  // the lane whose twiddle is 1
            t = {select(one, lower.re, t.re), select(one, lower.im, t.im)};
        }
        lower = {upper.re - t.re, upper.im - t.im};
        upper = {upper.re + t.re, upper.im + t.im};
    }
    if constexpr (2 * kSpan < kLanes) {
        stage_across<2 * kSpan, kFirst>(z, i);
    }
}

// The last stages of the rows i to i + kLanes - 1 and of what they become.
template <bool kFirst, typename Sink>
ZOQ_INLINE void last_stages_at(const ComplexLanes* rows, int i, Sink sink) {
    Lanes re[kLanes], im[kLanes];
    load_transposed(&rows[i].re, 2, re);
    load_transposed(&rows[i].im, 2, im);
    ComplexLanes z[kLanes];
    ZOQ_UNROLL for (int b = 0; b < kLanes; ++b) {
        z[b] = {re[kReversedLane.of[b]], im[kReversedLane.of[b]]};
    }
    stage_across<1, kFirst>(z, i);
    ZOQ_UNROLL for (int b = 0; b < kLanes; ++b) {
        sink.put(b * kRows + i, z[b]);
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

[[gnu::noinline]] void inverse(const Planes& spectrum, creal32_T* frame) {
    transform(PlanesInverse{&spectrum}, ToInterleavedInverse{frame});
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
    transform(InterleavedInverse{x}, ToInterleavedInverse{y});
}

void split_stereo_spectrum(const int32_t* target, const float* left, const float* right, creal32_T* leftHalf,
                           creal32_T* rightHalf) {
    if (!is_bit_reversal(target)) {
        return scalar::split_stereo_spectrum(target, left, right, leftHalf, rightHalf);
    }
    Planes s;
    transform(StereoPair{left, right}, ToHalvedPlanes{&s});
    s.re[kFrameSamples] = s.re[0];  // transform filled it  NOLINT(clang-analyzer-core.uninitialized.Assign)
    s.im[kFrameSamples] = s.im[0];
    for (int k = 0; k < kBins - 1; k += kLanes) {
        const int mirrored = kFrameSamples - k - (kLanes - 1);
        const Lanes re = load(s.re + k), im = load(s.im + k);
        const Lanes mirrorRe = reverse(load(s.re + mirrored)), mirrorIm = reverse(load(s.im + mirrored));
        store_complex(&leftHalf[k].re, {re + mirrorRe, im - mirrorIm});
        store_complex(&rightHalf[k].re, {-(im + mirrorIm), re - mirrorRe});
    }
    constexpr int kMiddle = kBins - 1;  // its own mirror
    leftHalf[kMiddle] = {s.re[kMiddle] + s.re[kMiddle], s.im[kMiddle] - s.im[kMiddle]};
    rightHalf[kMiddle] = {-(s.im[kMiddle] + s.im[kMiddle]), s.re[kMiddle] - s.re[kMiddle]};
}

void merge_stereo_spectrum(const int32_t* target, const creal32_T* leftHalf, const creal32_T* rightHalf,
                           creal32_T* frame) {
    if (!is_bit_reversal(target)) {
        return scalar::merge_stereo_spectrum(target, leftHalf, rightHalf, frame);
    }
    Planes s;
    for (int k = 0; k < kBins - 1; k += kLanes) {
        const ComplexLanes a = load_complex(&leftHalf[k].re), b = load_complex(&rightHalf[k].re);
        const int mirrored = kFrameSamples - k - (kLanes - 1);
        store(s.re + mirrored, reverse(a.re + b.im));
        store(s.im + mirrored, reverse(b.re - a.im));
        store(s.re + k, a.re - b.im);
        store(s.im + k, a.im + b.re);
    }
    const creal32_T a = leftHalf[kBins - 1], b = rightHalf[kBins - 1];
    s.re[kBins - 1] = a.re - b.im;
    s.im[kBins - 1] = a.im + b.re;
    inverse(s, frame);
}

void merge_mono_spectrum(const int32_t* target, const creal32_T* half, creal32_T* frame) {
    if (!is_bit_reversal(target)) {
        return scalar::merge_mono_spectrum(target, half, frame);
    }
    Planes s;
    for (int k = 0; k < kBins - 1; k += kLanes) {
        const ComplexLanes a = load_complex(&half[k].re);
        const int mirrored = kFrameSamples - k - (kLanes - 1);
        store(s.re + mirrored, reverse(a.re));
        store(s.im + mirrored, reverse(-a.im));
        store(s.re + k, a.re);
        store(s.im + k, a.im);
    }
    s.re[kBins - 1] = half[kBins - 1].re;
    s.im[kBins - 1] = half[kBins - 1].im;
    inverse(s, frame);
}

}  // namespace android::ZOQ_LEVEL
