// Arithmetic on complex values, every product and sum in the order written here.
#pragma once

#include "dsp/frame.h"

namespace android {

inline creal32_T operator+(creal32_T a, creal32_T b) {
    return {a.re + b.re, a.im + b.im};
}

inline creal32_T operator-(creal32_T a, creal32_T b) {
    return {a.re - b.re, a.im - b.im};
}

inline creal32_T operator*(creal32_T a, float gain) {
    return {a.re * gain, a.im * gain};
}

inline creal32_T operator*(creal32_T h, creal32_T x) {
    return {h.re * x.re - h.im * x.im, h.im * x.re + h.re * x.im};
}

inline float squared_magnitude(creal32_T a) {
    return a.re * a.re + a.im * a.im;
}

}  // namespace android
