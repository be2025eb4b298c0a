// Element-wise routines on the control grid and on short vectors.
//
// Reentrant, no state, no checks: the lengths below are the caller's promise. Logarithm and power go through
// the C library in double precision and are rounded to float.
#pragma once

#include "dsp/frame.h"

namespace android {

// y[k] = base raised to x[k].           x, y: 171 floats, may be the same array
void power(float base, const float* x, float* y);

// x[k] = log10(x[k]) in place; 0 gives minus infinity.       x: 171 floats
void b_log10(float* x);

// Linear interpolation from the grid to the hop: grid point k lies on sample 3 k; the samples after the last
// point follow the line through the last two.
//        x        171 floats      in
//        y        512 samples     out     not x
void interp1_fac3(const float* x, float* y);

// y[k] = |x[k]| for 171, 2 and 3 values; y may be x.
void b_abs(const float* x, float* y);
void c_abs(const float* x, float* y);
void d_abs(const float* x, float* y);

// y[i] = x[i] + x[512 + i]: the two channels of a hop added.     x: 2 x 512 samples, y: 512, may be x
void sum(const float* x, float* y);

// y[i] = y[i] + gain * x[i], and x[i] = x[i] * gain.     count: a multiple of 16
void add_scaled(const float* x, float gain, int count, float* y);
void scale(float gain, int count, float* x);

float rdivide(float a, float b);                    // a / b
void b_rdivide(const float* x, float d, float* y);  // y[i] = x[i] / d for 512 samples
void squeeze(const float* x, float* y);             // copies 4 floats
void b_squeeze(const float* x, float* y);           // copies 2 floats

}  // namespace android
