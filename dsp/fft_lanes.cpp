// The fast forms of the transforms. The inverse is the forward transform with real and imaginary parts exchanged at both
// ends, which gives the same products and sums.
#include "dsp/fft_kernels.h"
#include "dsp/fft_stages_lanes.h"

namespace android::ZOQ_LEVEL {

namespace {

// Where the rows of the transform come from.
struct Interleaved {
    const creal32_T* x;
    ZOQ_MEMBER ComplexLanes row(int r) const { return load_ordered(&x[r * kLanes].re); }
};
struct InterleavedInverse {
    const creal32_T* x;
    ZOQ_MEMBER ComplexLanes row(int r) const {
        const ComplexLanes z = load_ordered(&x[r * kLanes].re);
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

// A spectrum on its way between the transform and two half spectra, where shuffles would only take its parts apart
// and join them again. The value behind the last is the first again, or the mirror of bin 0, which is not read.
struct Planes {
    alignas(64) float re[kFrameSamples + kLanes];
    alignas(64) float im[kFrameSamples + kLanes];
};
struct PlanesInverse {
    const Planes* x;
    ZOQ_MEMBER ComplexLanes row(int r) const {
        return {in_lane_order(load(x->im + r * kLanes)), in_lane_order(load(x->re + r * kLanes))};
    }
};

// Where its results go, kLanes at a time, and the rows before them.
struct ToInterleaved {
    creal32_T* y;
    ZOQ_MEMBER RowsInFrame rows() const { return {&y->re}; }
    ZOQ_MEMBER void put(int n, ComplexLanes z) const { store_ordered(&y[n].re, z); }
};
struct ToInterleavedInverse {
    creal32_T* y;
    ZOQ_MEMBER RowsInFrame rows() const { return {&y->re}; }
    ZOQ_MEMBER void put(int n, ComplexLanes z) const {
        const Lanes scale = broadcast(1.0f / kFrameSamples);
        store_ordered(&y[n].re, {z.im * scale, z.re * scale});
    }
};
struct ToHalvedPlanes {
    Planes* y;
    ZOQ_MEMBER RowsInPlanes rows() const { return {y->re, y->im}; }
    ZOQ_MEMBER void put(int n, ComplexLanes z) const {
        const Lanes half = broadcast(0.5f);
        store(y->re + n, in_lane_order(z.re * half));
        store(y->im + n, in_lane_order(z.im * half));
    }
};

template <typename Source, typename Rows, typename Sink>
ZOQ_INLINE void transform(Source source, Rows rows, Sink sink) {
    first_stages(source, rows);
    middle_stages(rows);
    last_stages_at<true>(rows, 0, sink);
    for (int i = kLanes; i < kRows; i += kLanes) {
        last_stages_at<false>(rows, i, sink);
    }
}

template <typename Source, typename Sink>
ZOQ_INLINE void transform(Source source, Sink sink) {
    if constexpr (kInPlace) {
        transform(source, sink.rows(), sink);
    } else {
        alignas(64) float rows[2 * kFrameSamples];
        transform(source, RowsInFrame{rows}, sink);
    }
}

[[gnu::noinline]] void inverse(const Planes& x, creal32_T* y) {
    transform(PlanesInverse{&x}, ToInterleavedInverse{y});
}

// The first quarter of the table; the others follow from it by their lowest two bits.
constexpr int kQuarter = kFrameSamples / 4;
constexpr struct BitReversal {
    alignas(64) int32_t of[kQuarter];
    constexpr BitReversal() : of() {
        for (int i = 0; i < kQuarter; ++i) {
            of[i] = reversed(i, kFrameSamples);
        }
    }
} kBitReversal;

// Whether a host has left the table as it was built.
bool is_bit_reversal(const int32_t* table) {
    IntLanes wrong[4] = {};
    for (int i = 0; i < kQuarter; i += kLanes) {
        const IntLanes right = load_ints(kBitReversal.of + i);
        wrong[0] |= load_ints(table + i) ^ right;
        wrong[1] |= load_ints(table + kQuarter + i) ^ 2 ^ right;
        wrong[2] |= load_ints(table + 2 * kQuarter + i) ^ 1 ^ right;
        wrong[3] |= load_ints(table + 3 * kQuarter + i) ^ 3 ^ right;
    }
    const IntLanes all = (wrong[0] | wrong[1]) | (wrong[2] | wrong[3]);
    int32_t any = 0;
    for (int lane = 0; lane < kLanes; ++lane) {
        any |= all[lane];
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

// The mirror of the bins k to k + kLanes - 1 begins at mirrored(k), in reversed order.
ZOQ_INLINE int mirrored(int k) {
    return kFrameSamples - k - (kLanes - 1);
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
        const Lanes re = load(s.re + k), im = load(s.im + k);
        const Lanes mirrorRe = reverse(load(s.re + mirrored(k))),
                    mirrorIm = reverse(load(s.im + mirrored(k)));
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
        store(s.re + mirrored(k), reverse(a.re + b.im));
        store(s.im + mirrored(k), reverse(b.re - a.im));
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
        store(s.re + mirrored(k), reverse(a.re));
        store(s.im + mirrored(k), reverse(-a.im));
        store(s.re + k, a.re);
        store(s.im + k, a.im);
    }
    s.re[kBins - 1] = half[kBins - 1].re;
    s.im[kBins - 1] = half[kBins - 1].im;
    inverse(s, frame);
}

}  // namespace android::ZOQ_LEVEL
