// The 1024-point transforms and the packing of a stereo pair into one of them.
//
// Audio thread only: the bit-reversal table is built without a lock by the first transform of the process.
// Nothing is allocated. Input and output arrays are distinct.
#pragma once

#include "dsp/frame.h"

namespace android {

extern int32_t fft_table[kFrameSamples];  // bit reversal of 0..1023; entry 1 is 512
extern int32_t fft_table_flag;            // 0: the table is not built yet, 1: it is

// Fills table[0..n-1] with the bit reversal of the indices over log2(n) bits; n is a power of two.
void init_fft_index_table(int n, int* table);

//        argument  shape               direction
//        x         1024 complex        in         (c_fft: 1024 real samples)
//        y         1024 complex        out        y[k] = sum over n of x[n] e^(-j 2 pi n k / 1024), unscaled
// Radix 2, decimation in time. Error against exact arithmetic: below 2.5e-7 of the spectrum's rms.
void fft(const creal32_T* x, creal32_T* y);
void b_fft(const creal32_T* x, creal32_T* y);
void c_fft(const float* x, creal32_T* y);

// The inverse of fft, scaled by 1/1024.
void ifft(const creal32_T* x, creal32_T* y);

// Half spectra of two real frames by one forward transform of left - j right.
//        left, right           1024 samples        in
//        leftHalf, rightHalf   bins 0..512         out
void split_stereo_spectrum(const float* left, const float* right, creal32_T* leftHalf, creal32_T* rightHalf);

// Back to the time domain by one inverse transform of left + j right.
//        leftHalf, rightHalf   bins 0..512         in; the imaginary parts of bins 0 and 512 leak into
//                                                  the other channel, as in any packing of two real frames
//        frame                 1024 complex        out: left in re, right in im
void merge_stereo_spectrum(const creal32_T* leftHalf, const creal32_T* rightHalf, creal32_T* frame);

// Back to the time domain from one half spectrum: frame receives the real signal in re.
//        half                  bins 0..512         in
//        frame                 1024 complex        out
void merge_mono_spectrum(const creal32_T* half, creal32_T* frame);

}  // namespace android
