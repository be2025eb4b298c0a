#include "dsp/fft.h"

#include "dsp/complex.h"
#include "dsp/fft_kernels.h"
#include "dsp/fft_tables.h"
#include "dsp/kernel_level.h"

namespace android {

int32_t fft_table[kFrameSamples];
int32_t fft_table_flag;

namespace {

// The table is exported: whatever a host writes into it, an index stays inside the frame.
constexpr int32_t kIndexMask = kFrameSamples - 1;

void butterfly(creal32_T& upper, creal32_T& lower, creal32_T t) {
    lower = upper - t;
    upper = upper + t;
}

// The ten stages in place on bit-reversed input. The unit twiddle is not multiplied: (1, 0) would change
// signed zeros.
void transform_stages(creal32_T* y, const float* sine) {
    for (int i = 0; i < kFrameSamples; i += 2) {
        butterfly(y[i], y[i + 1], y[i + 1]);
    }
    int span = 2;
    for (int twiddleStep = kFrameSamples / 4; twiddleStep >= 1; twiddleStep /= 2, span *= 2) {
        const int block = 2 * span;
        for (int i = 0; i < kFrameSamples; i += block) {
            butterfly(y[i], y[i + span], y[i + span]);
        }
        for (int offset = 1; offset < span; ++offset) {
            const creal32_T w{kTwiddleCos[offset * twiddleStep], sine[offset * twiddleStep]};
            for (int i = offset; i < kFrameSamples; i += block) {
                butterfly(y[i], y[i + span], w * y[i + span]);
            }
        }
    }
}

}  // namespace

void init_fft_index_table(int n, int* table) {
    int bits = 0;
    for (int length = n; length > 1; length /= 2) {
        ++bits;
    }
    for (int i = 0; i < n; ++i) {
        int reversed = 0;
        for (int bit = 0, rest = i; bit < bits; ++bit, rest /= 2) {
            reversed = 2 * reversed + rest % 2;
        }
        table[i] = reversed;
    }
}

namespace scalar {

void fft(const int32_t* target, const creal32_T* x, creal32_T* y) {
    for (int i = 0; i < kFrameSamples; ++i) {
        y[target[i] & kIndexMask] = x[i];
    }
    transform_stages(y, kTwiddleForwardSin);
}

void c_fft(const int32_t* target, const float* x, creal32_T* y) {
    for (int i = 0; i < kFrameSamples; ++i) {
        y[target[i] & kIndexMask] = {x[i], 0.0f};
    }
    transform_stages(y, kTwiddleForwardSin);
}

void ifft(const int32_t* target, const creal32_T* x, creal32_T* y) {
    for (int i = 0; i < kFrameSamples; ++i) {
        y[target[i] & kIndexMask] = x[i];
    }
    transform_stages(y, kTwiddleInverseSin);
    constexpr float kScale = 1.0f / kFrameSamples;
    for (int i = 0; i < kFrameSamples; ++i) {
        y[i] = y[i] * kScale;
    }
}

void split_stereo_spectrum(const int32_t* target, const float* left, const float* right, creal32_T* leftHalf,
                           creal32_T* rightHalf) {
    creal32_T packed[kFrameSamples];
    creal32_T spectrum[kFrameSamples];
    for (int n = 0; n < kFrameSamples; ++n) {
        packed[n] = {left[n], -right[n]};
    }
    fft(target, packed, spectrum);
    for (creal32_T& bin : spectrum) {
        bin = bin * 0.5f;
    }
    for (int k = 0; k < kBins; ++k) {
        const creal32_T z = spectrum[k];
        const creal32_T mirror = spectrum[(kFrameSamples - k) % kFrameSamples];
        leftHalf[k] = {z.re + mirror.re, z.im - mirror.im};
        rightHalf[k] = {-(z.im + mirror.im), z.re - mirror.re};
    }
}

void merge_stereo_spectrum(const int32_t* target, const creal32_T* leftHalf, const creal32_T* rightHalf,
                           creal32_T* frame) {
    creal32_T spectrum[kFrameSamples];
    for (int k = 0; k < kBins; ++k) {
        const creal32_T a = leftHalf[k], b = rightHalf[k];
        spectrum[k] = {a.re - b.im, a.im + b.re};
    }
    for (int k = kBins; k < kFrameSamples; ++k) {
        const creal32_T a = leftHalf[kFrameSamples - k], b = rightHalf[kFrameSamples - k];
        spectrum[k] = {a.re + b.im, b.re - a.im};
    }
    ifft(target, spectrum, frame);
}

void merge_mono_spectrum(const int32_t* target, const creal32_T* half, creal32_T* frame) {
    creal32_T spectrum[kFrameSamples];
    for (int k = 0; k < kBins; ++k) {
        spectrum[k] = half[k];
    }
    for (int k = kBins; k < kFrameSamples; ++k) {
        const creal32_T a = half[kFrameSamples - k];
        spectrum[k] = {a.re, -a.im};
    }
    ifft(target, spectrum, frame);
}

}  // namespace scalar

ZOQ_KERNEL(fft, const int32_t* target, const creal32_T* x, creal32_T* y);
ZOQ_KERNEL(c_fft, const int32_t* target, const float* x, creal32_T* y);
ZOQ_KERNEL(ifft, const int32_t* target, const creal32_T* x, creal32_T* y);
ZOQ_KERNEL(split_stereo_spectrum, const int32_t* target, const float* left, const float* right,
           creal32_T* leftHalf, creal32_T* rightHalf);
ZOQ_KERNEL(merge_stereo_spectrum, const int32_t* target, const creal32_T* leftHalf,
           const creal32_T* rightHalf, creal32_T* frame);
ZOQ_KERNEL(merge_mono_spectrum, const int32_t* target, const creal32_T* half, creal32_T* frame);

namespace {

constexpr size_t kFrameBytes = kFrameSamples * sizeof(creal32_T), kHalfBytes = kBins * sizeof(creal32_T);

const int32_t* bit_reversal() {
    if (fft_table_flag == 0) {
        fft_table_flag = 1;
        init_fft_index_table(kFrameSamples, fft_table);
    }
    return fft_table;
}

}  // namespace

void fft(const creal32_T* x, creal32_T* y) {
    fft_kernel.run({{y, kFrameBytes}}, bit_reversal(), x, y);
}

void b_fft(const creal32_T* x, creal32_T* y) {
    fft(x, y);
}

void c_fft(const float* x, creal32_T* y) {
    c_fft_kernel.run({{y, kFrameBytes}}, bit_reversal(), x, y);
}

void ifft(const creal32_T* x, creal32_T* y) {
    ifft_kernel.run({{y, kFrameBytes}}, bit_reversal(), x, y);
}

void split_stereo_spectrum(const float* left, const float* right, creal32_T* leftHalf, creal32_T* rightHalf) {
    split_stereo_spectrum_kernel.run({{leftHalf, kHalfBytes}, {rightHalf, kHalfBytes}}, bit_reversal(), left,
                                     right, leftHalf, rightHalf);
}

void merge_stereo_spectrum(const creal32_T* leftHalf, const creal32_T* rightHalf, creal32_T* frame) {
    merge_stereo_spectrum_kernel.run({{frame, kFrameBytes}}, bit_reversal(), leftHalf, rightHalf, frame);
}

void merge_mono_spectrum(const creal32_T* half, creal32_T* frame) {
    merge_mono_spectrum_kernel.run({{frame, kFrameBytes}}, bit_reversal(), half, frame);
}

}  // namespace android
