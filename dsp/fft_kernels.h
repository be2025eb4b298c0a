// The scalar forms of the transforms, which the fast ones hand over to when a host has put another order into the
// table. Arguments as in fft.h, preceded by the table.
#pragma once

#include "dsp/frame.h"

namespace android::scalar {

void fft(const int32_t* target, const creal32_T* x, creal32_T* y);
void c_fft(const int32_t* target, const float* x, creal32_T* y);
void ifft(const int32_t* target, const creal32_T* x, creal32_T* y);
void split_stereo_spectrum(const int32_t* target, const float* left, const float* right, creal32_T* leftHalf,
                           creal32_T* rightHalf);
void merge_stereo_spectrum(const int32_t* target, const creal32_T* leftHalf, const creal32_T* rightHalf,
                           creal32_T* frame);
void merge_mono_spectrum(const int32_t* target, const creal32_T* half, creal32_T* frame);

}  // namespace android::scalar
