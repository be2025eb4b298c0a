#include "dsp/grid.h"

#include <cmath>

#include "dsp/kernel_level.h"

namespace android {

namespace scalar {

void sum(const float* x, float* y) {
    for (int i = 0; i < kHopSamples; ++i) {
        y[i] = x[i] + x[kHopSamples + i];
    }
}

void log10_on_grid(float* x) {
    for (int k = 0; k < kGridPoints; ++k) {
        x[k] = float(std::log10(double(x[k])));
    }
}

void exp10_on_grid(const float* x, float* y) {
    for (int k = 0; k < kGridPoints; ++k) {
        y[k] = float(std::pow(10.0, double(x[k])));
    }
}

void interp1_fac3(const float* x, float* y) {
    constexpr float kThird = 1.0f / 3.0f;
    constexpr int kLast = kGridPoints - 1;
    for (int k = 0; k < kLast; ++k) {
        y[kGridStep * k] = x[k];
        y[kGridStep * k + 1] = (2.0f * x[k] + x[k + 1]) * kThird;
        y[kGridStep * k + 2] = (2.0f * x[k + 1] + x[k]) * kThird;
    }
    // The hop ends one sample before the extrapolated point itself.
    const float beyond = x[kLast] + (x[kLast] - x[kLast - 1]);
    y[kGridStep * kLast] = x[kLast];
    y[kGridStep * kLast + 1] = (2.0f * x[kLast] + beyond) * kThird;
}

void add_scaled(const float* x, float gain, int count, float* y) {
    for (int i = 0; i < count; ++i) {
        y[i] = y[i] + gain * x[i];
    }
}

void scale(float gain, int count, float* x) {
    for (int i = 0; i < count; ++i) {
        x[i] = x[i] * gain;
    }
}

}  // namespace scalar

ZOQ_KERNEL(sum, const float* x, float* y);
ZOQ_KERNEL(log10_on_grid, float* x);
ZOQ_KERNEL(exp10_on_grid, const float* x, float* y);
ZOQ_KERNEL(interp1_fac3, const float* x, float* y);
ZOQ_KERNEL(add_scaled, const float* x, float gain, int count, float* y);
ZOQ_KERNEL(scale, float gain, int count, float* x);

namespace {

void absolute(const float* x, float* y, int count) {
    for (int k = 0; k < count; ++k) {
        y[k] = std::fabs(x[k]);
    }
}

void copy(const float* x, float* y, int count) {
    for (int k = 0; k < count; ++k) {
        y[k] = x[k];
    }
}

}  // namespace

void power(float base, const float* x, float* y) {
    if (base == 10.0f) {
        exp10_on_grid_kernel.run({{y, kGridPoints * sizeof(float)}}, x, y);
        return;
    }
    for (int k = 0; k < kGridPoints; ++k) {
        y[k] = float(std::pow(double(base), double(x[k])));
    }
}

void b_log10(float* x) {
    log10_on_grid_kernel.run({{x, kGridPoints * sizeof(float)}}, x);
}

void interp1_fac3(const float* x, float* y) {
    interp1_fac3_kernel.run({{y, kHopSamples * sizeof(float)}}, x, y);
}

void add_scaled(const float* x, float gain, int count, float* y) {
    add_scaled_kernel.run({{y, size_t(count) * sizeof(float)}}, x, gain, count, y);
}

void scale(float gain, int count, float* x) {
    scale_kernel.run({{x, size_t(count) * sizeof(float)}}, gain, count, x);
}

void b_abs(const float* x, float* y) {
    absolute(x, y, kGridPoints);
}

void c_abs(const float* x, float* y) {
    absolute(x, y, 2);
}

void d_abs(const float* x, float* y) {
    absolute(x, y, 3);
}

void sum(const float* x, float* y) {
    sum_kernel.run({{y, kHopSamples * sizeof(float)}}, x, y);
}

float rdivide(float a, float b) {
    return a / b;
}

void b_rdivide(const float* x, float d, float* y) {
    for (int i = 0; i < kHopSamples; ++i) {
        y[i] = x[i] / d;
    }
}

void squeeze(const float* x, float* y) {
    copy(x, y, 4);
}

void b_squeeze(const float* x, float* y) {
    copy(x, y, 2);
}

}  // namespace android
