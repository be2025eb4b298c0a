#include "modules/den/den_steps.h"

#include <cmath>

#include "dsp/complex.h"
#include "dsp/fft_tables.h"
#include "dsp/grid.h"
#include "dsp/kernel_level.h"

namespace android {

namespace {

struct Gains {
    float left, right;
};

float clamp_to_unit(float x) {
    return x < 0.0f ? 0.0f : x > 1.0f ? 1.0f : x;
}

// p runs from -1 (left) to +1 (right); the gains meet at 0.706 in the middle.
Gains pan_law_gains(float p) {
    const float x = (p + 1.0f) * 0.5f;
    const float left = (-0.8338f * x - 0.2086f) * x + 1.0189f;
    const float right = (-0.8338f * x + 1.8762f) * x - 0.0235f;
    return {clamp_to_unit(left), clamp_to_unit(right)};
}

// The less two channels have in common, the farther out the louder one pulls the bin.
float pan_index(creal32_T l, creal32_T r) {
    const float leftPower = squared_magnitude(l), rightPower = squared_magnitude(r);
    const creal32_T cross{l.re * r.re + l.im * r.im, l.im * r.re - l.re * r.im};
    const float likeness =
        rdivide(2.0f * std::sqrt(squared_magnitude(cross)), leftPower + rightPower + kDenQuotientGuard);
    const float difference = rightPower - leftPower;
    const float side = difference > 0.0f ? 1.0f : difference < 0.0f ? -1.0f : 0.0f;
    return (1.0f - likeness) * side;
}

float moved_pan_index(const DenCubic& curve, float p) {
    const float u = p > 0.0f ? p : -p;
    const float moved = ((curve.c0 * u + curve.c1) * u + curve.c2) * u + curve.c3;
    return p > 0.0f ? clamp_to_unit(moved) : -clamp_to_unit(moved);
}

// The weaker the side against the mid, the more of the mid is centre.
float centre_gain(float side, float mid) {
    if (side > mid) {
        return 0.0f;
    }
    return (1.0f - std::sqrt(side / (mid + kDenPowerGuard))) * 0.5f;
}

}  // namespace

namespace scalar {

void den_window_pair(const float* io, float* windowed) {
    for (int n = 0; n < kFrameSamples; ++n) {
        windowed[n] = io[n] * kSineWindow[n];
        windowed[kFrameSamples + n] = io[kFrameSamples + n] * kSineWindow[n];
    }
}

void den_widen(const DenCubic& curve, DenSpectra& s) {
    for (int k = kDenFirstWideBin; k <= kDenLastWideBin; ++k) {
        const float p = pan_index(s.left[k], s.right[k]);
        const Gains before = pan_law_gains(p);
        const Gains after = pan_law_gains(moved_pan_index(curve, p));
        s.left[k] = s.left[k] * rdivide(after.left, before.left + kDenQuotientGuard);
        s.right[k] = s.right[k] * rdivide(after.right, before.right + kDenQuotientGuard);
    }
}

void den_extract_centre(const DenBands& bands, float smoothFactor, bool subtract, DenPowers& powers,
                        DenSpectra& s) {
    const float newWeight = 1.0f - smoothFactor;
    for (int j = 0; j < kDenCentreBands; ++j) {
        const DenBand band = bands.band[j];
        creal32_T side{}, mid{};
        for (int k = band.first; k < band.end; ++k) {
            side = side + (s.left[k] - s.right[k]);
            mid = mid + (s.left[k] + s.right[k]);
        }
        float& sidePower = powers.side[j];
        float& midPower = powers.mid[j];
        sidePower = newWeight * squared_magnitude(side) + smoothFactor * sidePower;
        midPower = newWeight * squared_magnitude(mid) + smoothFactor * midPower;
        const float gain = centre_gain(sidePower, midPower);
        for (int k = band.first; k < band.end; ++k) {
            s.centre[k] = (s.left[k] + s.right[k]) * gain;
            if (subtract) {
                s.left[k] = s.left[k] - s.centre[k];
                s.right[k] = s.right[k] - s.centre[k];
            }
        }
    }
}

void den_measure_bands(const DenBands& bands, const DenSpectra& s, DenEnergies& energies,
                       DenMagnitudes& newest, float* share) {
    for (int j = 0; j < kDenSpeechBands; ++j) {
        const DenBand band = bands.band[j];
        float centreMagnitude = 0.0f, sideMagnitude = 0.0f, centreEnergy = 0.0f, sideEnergy = 0.0f;
        for (int k = band.first; k < band.end; ++k) {
            const float centrePower = squared_magnitude(s.centre[k]);
            const float sidePower = squared_magnitude(s.left[k] - s.right[k]);
            centreMagnitude += std::sqrt(centrePower);
            sideMagnitude += std::sqrt(sidePower);
            centreEnergy += centrePower;
            sideEnergy += sidePower;
        }
        newest.centre[j] = centreMagnitude;
        newest.side[j] = sideMagnitude;
        float& centre = energies.centre[j];
        float& side = energies.side[j];
        centre = kDenNewEnergy * centreEnergy + kDenOldEnergy * centre;
        side = kDenNewEnergy * sideEnergy + kDenOldEnergy * side;
        share[j] = std::sqrt(centre / ((centre + kDenPowerGuard) + side));
    }
}

void den_scale_bands(const DenBands& bands, const float* gain, DenSpectra& s) {
    for (int j = 0; j < kDenSpeechBands; ++j) {
        const DenBand band = bands.band[j];
        for (int k = band.first; k < band.end; ++k) {
            s.centre[k] = s.centre[k] * gain[j];
            s.left[k] = s.left[k] * gain[j];
            s.right[k] = s.right[k] * gain[j];
        }
    }
}

void den_window_centre(const creal32_T* frame, float* io) {
    for (int n = 0; n < kFrameSamples; ++n) {
        io[2 * kFrameSamples + n] = frame[n].re * kSineWindow[n];
    }
}

void den_window_sides(const creal32_T* frame, float* io) {
    for (int n = 0; n < kFrameSamples; ++n) {
        io[n] = frame[n].re * kSineWindow[n];
        io[kFrameSamples + n] = frame[n].im * kSineWindow[n];
    }
}

}  // namespace scalar

ZOQ_KERNEL(den_window_pair, const float* io, float* windowed);
ZOQ_KERNEL(den_widen, const DenCubic& curve, DenSpectra& s);
ZOQ_KERNEL(den_extract_centre, const DenBands& bands, float smoothFactor, bool subtract, DenPowers& powers,
           DenSpectra& s);
ZOQ_KERNEL(den_measure_bands, const DenBands& bands, const DenSpectra& s, DenEnergies& energies,
           DenMagnitudes& newest, float* share);
ZOQ_KERNEL(den_scale_bands, const DenBands& bands, const float* gain, DenSpectra& s);
ZOQ_KERNEL(den_window_centre, const creal32_T* frame, float* io);
ZOQ_KERNEL(den_window_sides, const creal32_T* frame, float* io);

namespace {

constexpr size_t kFrameBytes = kFrameSamples * sizeof(float);

}  // namespace

void den_window_pair(const float* io, float* windowed) {
    den_window_pair_kernel.run({{windowed, 2 * kFrameBytes}}, io, windowed);
}

void den_widen(const DenCubic& curve, DenSpectra& s) {
    den_widen_kernel.run({{&s, sizeof s}}, curve, s);
}

void den_extract_centre(const DenBands& bands, float smoothFactor, bool subtract, DenPowers& powers,
                        DenSpectra& s) {
    den_extract_centre_kernel.run({{&powers, sizeof powers}, {&s, sizeof s}}, bands, smoothFactor, subtract,
                                  powers, s);
}

void den_measure_bands(const DenBands& bands, const DenSpectra& s, DenEnergies& energies,
                       DenMagnitudes& newest, float* share) {
    den_measure_bands_kernel.run(
        {{&energies, sizeof energies}, {&newest, sizeof newest}, {share, kDenSpeechBands * sizeof(float)}},
        bands, s, energies, newest, share);
}

void den_scale_bands(const DenBands& bands, const float* gain, DenSpectra& s) {
    den_scale_bands_kernel.run({{&s, sizeof s}}, bands, gain, s);
}

void den_window_centre(const creal32_T* frame, float* io) {
    den_window_centre_kernel.run({{io + 2 * kFrameSamples, kFrameBytes}}, frame, io);
}

void den_window_sides(const creal32_T* frame, float* io) {
    den_window_sides_kernel.run({{io, 2 * kFrameBytes}}, frame, io);
}

}  // namespace android
