#include "dsp/section.h"

#include "dsp/kernel_level.h"

namespace android {

namespace {

void normalise(float* b, float* a) {
    if (a[0] != 0.0f && a[0] != 1.0f) {
        const float a0 = a[0];
        b[0] = b[0] / a0;
        b[1] = b[1] / a0;
        b[2] = b[2] / a0;
        a[1] = a[1] / a0;
        a[2] = a[2] / a0;
        a[0] = 1.0f;
    }
}

}  // namespace

void filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf) {
    normalise(b, a);
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

namespace scalar {

// The coefficients come normalised.
void cascade(const SectionCoefficients* sections, int count, int channels, float* io, StereoDelays* delays) {
    for (int s = 0; s < count; ++s) {
        for (int c = 0; c < channels; ++c) {
            SectionCoefficients section = sections[s];
            float* hop = io + c * kHopSamples;
            float* z = delays[s].channel[c].z;
            filter(section.b, section.a, hop, z, hop, z);
        }
    }
}

}  // namespace scalar

ZOQ_KERNEL(cascade, const SectionCoefficients* sections, int count, int channels, float* io,
           StereoDelays* delays);

void Cascade::append(const SectionCoefficients& section, StereoDelays& delays) {
    if (count_ < kMaxCascade) {
        sections_[count_] = section;
        normalise(sections_[count_].b, sections_[count_].a);
        delays_[count_] = &delays;
        ++count_;
    }
}

void Cascade::append_matrix(const float* matrix, float count, StereoDelays* delays) {
    const int sections = count_within(count, kMaxSections);
    for (int s = 0; s < sections; ++s) {
        SectionCoefficients section;
        for (int j = 0; j < 3; ++j) {
            section.b[j] = matrix[3 * j + s];
            section.a[j] = matrix[3 * (j + 3) + s];
        }
        append(section, delays[s]);
    }
}

void Cascade::run(float* io) const {
    if (count_ == 0) {
        return;
    }
    StereoDelays delays[kMaxCascade];
    for (int s = 0; s < count_; ++s) {
        delays[s] = *delays_[s];
    }
    cascade_kernel.run({{io, size_t(channels_) * kHopSamples * sizeof(float)},
                        {delays, size_t(count_) * sizeof(StereoDelays)}},
                       sections_, count_, channels_, io, delays);
    for (int s = 0; s < count_; ++s) {
        *delays_[s] = delays[s];
    }
}

}  // namespace android
