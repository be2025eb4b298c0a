#include "dsp/section.h"

namespace android {

void filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf) {
    if (a[0] != 0.0f && a[0] != 1.0f) {
        const float a0 = a[0];
        b[0] = b[0] / a0;
        b[1] = b[1] / a0;
        b[2] = b[2] / a0;
        a[1] = a[1] / a0;
        a[2] = a[2] / a0;
        a[0] = 1.0f;
    }
    const float b0 = b[0], b1 = b[1], b2 = b[2];
    const float a1 = a[1], a2 = a[2];
    float z0 = zi[0], z1 = zi[1];
    for (int n = 0; n < kHopSamples; ++n) {
        const float in = x[n];
        const float out = z0 + b0 * in;
        z0 = z1 + b1 * in - a1 * out;
        z1 = b2 * in - a2 * out;
        y[n] = out;
    }
    zf[0] = z0;
    zf[1] = z1;
}

void b_filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf) {
    filter(b, a, x, zi, y, zf);
}

void filter_matrix(const float* matrix, float count, float* io, Delays* delays) {
    const int sections = count_within(count, kMaxSections);
    for (int s = 0; s < sections; ++s) {
        float b[3], a[3];
        for (int j = 0; j < 3; ++j) {
            b[j] = matrix[3 * j + s];
            a[j] = matrix[3 * (j + 3) + s];
        }
        filter(b, a, io, delays[s].z, io, delays[s].z);
    }
}

}  // namespace android
