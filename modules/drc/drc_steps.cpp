#include "modules/drc/drc_steps.h"

#include <cmath>

#include "dsp/grid.h"
#include "dsp/kernel_level.h"

namespace android {

namespace {

constexpr float kLogFloor = 1e-10f;  // keeps the level of silence finite: -200 dB
constexpr double kReductionFloor = 1e-16;
constexpr double kClip = 0.999;

float larger(float a, float b) {
    return b > a ? b : a;
}

// Rises within a few points, falls over seconds.
void smooth_level(const float* level, float& last, float* smoothed) {
    float s = last;
    for (int j = 0; j < kGridPoints; ++j) {
        s = level[j] > s ? 0.5f * level[j] + 0.5f * s : 0.0001f * level[j] + 0.9999f * s;
        smoothed[j] = s;
    }
    last = s;
}

// Turns dB above the threshold into dB of gain reduction.
void gain_computer(const Stage& stage, float* excess) {
    const float width = stage.knee;
    const float half = 0.5f * width;
    const float q = half / (width * width);
    float magnitude[kGridPoints];
    b_abs(excess, magnitude);
    for (int j = 0; j < kGridPoints; ++j) {
        const float d = excess[j];
        float bent = d >= 0.0f ? d : 0.0f;
        if (width > 0.0f && magnitude[j] < half) {
            const float t = d + half;
            bent = (t * t) * q;
        }
        excess[j] = -(bent * stage.slope);
    }
}

void smooth_reduction(const Stage& stage, float& last, float* reduction) {
    const float attack = stage.attack, release = stage.release;
    const float attackInput = 1.0f - attack, releaseInput = 1.0f - release;
    float s = last;
    for (int j = 0; j < kGridPoints; ++j) {
        if (reduction[j] > s) {
            s = attackInput * reduction[j] + attack * s;
        } else if (double(s) > kReductionFloor) {
            s = releaseInput * reduction[j] + release * s;
        } else {
            s = 0.0f;
        }
        reduction[j] = s;
    }
    last = s;
}

void reduce_channel(const float* log10Peak, const DrcSettings& settings, DrcMemory& memory, float* smoothedDb,
                    float* reductionDb) {
    const Stage &comp = settings.comp, &lim = settings.lim;
    float level[kGridPoints], comp_gr[kGridPoints], lim_gr[kGridPoints];
    for (int j = 0; j < kGridPoints; ++j) {
        level[j] = 20.0f * log10Peak[j];
    }
    smooth_level(level, memory.levelDb, smoothedDb);

    for (int j = 0; j < kGridPoints; ++j) {
        comp_gr[j] = level[j] - comp.threshold;
    }
    gain_computer(comp, comp_gr);
    smooth_reduction(comp, memory.compGr, comp_gr);

    for (int j = 0; j < kGridPoints; ++j) {
        lim_gr[j] = settings.makeupDb + level[j] - comp_gr[j] - lim.threshold;
    }
    gain_computer(lim, lim_gr);
    smooth_reduction(lim, memory.limGr, lim_gr);

    for (int j = 0; j < kGridPoints; ++j) {
        reductionDb[j] = comp_gr[j] + lim_gr[j];
    }
}

}  // namespace

namespace scalar {

// Groups of three centred on the grid's points; the first has no sample on its left.
void drc_peaks(const float* x, float* peak) {
    float magnitude[3];
    c_abs(x, magnitude);
    peak[0] = larger(magnitude[0], magnitude[1]) + kLogFloor;
    for (int j = 1; j < kGridPoints; ++j) {
        d_abs(x + kGridStep * j - 1, magnitude);
        peak[j] = larger(larger(magnitude[0], magnitude[1]), magnitude[2]) + kLogFloor;
    }
}

void drc_reductions(const float* log10Peak, int channels, const DrcSettings& settings, DrcMemory* memory,
                    float* smoothedDb, float* reductionDb) {
    reduce_channel(log10Peak, settings, memory[0], smoothedDb, reductionDb);
    if (channels == 2) {
        float smoothed[kGridPoints], reduction[kGridPoints];
        reduce_channel(log10Peak + kCurveFloats, settings, memory[1], smoothed, reduction);
        for (int j = 0; j < kGridPoints; ++j) {
            reductionDb[j] = larger(reduction[j], reductionDb[j]);
            smoothedDb[j] = larger(smoothed[j], smoothedDb[j]);
        }
    }
}

void drc_exponents(const float* reductionDb, const float* smoothedDb, const DrcSettings& settings,
                   float* reduction, float* expansion) {
    const float threshold = settings.makeupDb + settings.expander.threshold;
    for (int j = 0; j < kGridPoints; ++j) {
        reduction[j] = -0.05f * reductionDb[j];
        expansion[j] =
            smoothedDb[j] > threshold ? 0.0f : (smoothedDb[j] - threshold) * settings.expander.slope / 20.0f;
    }
}

void drc_make_up(float makeup, const float* factor, float* y) {
    for (int j = 0; j < kGridPoints; ++j) {
        y[j] = makeup * y[j] * factor[j];
    }
}

void drc_apply(const float* gain, int channels, float* io) {
    for (int c = 0; c < channels; ++c) {
        float* x = io + c * kHopSamples;
        for (int i = 0; i < kHopSamples; ++i) {
            const float y = x[i] * gain[i];
            x[i] = double(y) < -kClip ? float(-kClip) : double(y) > kClip ? float(kClip) : y;
        }
    }
}

}  // namespace scalar

ZOQ_KERNEL(drc_peaks, const float* x, float* peak);
ZOQ_KERNEL(drc_reductions, const float* log10Peak, int channels, const DrcSettings& settings,
           DrcMemory* memory, float* smoothedDb, float* reductionDb);
ZOQ_KERNEL(drc_exponents, const float* reductionDb, const float* smoothedDb, const DrcSettings& settings,
           float* reduction, float* expansion);
ZOQ_KERNEL(drc_make_up, float makeup, const float* factor, float* y);
ZOQ_KERNEL(drc_apply, const float* gain, int channels, float* io);

namespace {

constexpr size_t kCurveBytes = kGridPoints * sizeof(float);

}  // namespace

void drc_peaks(const float* x, float* peak) {
    drc_peaks_kernel.run({{peak, kCurveBytes}}, x, peak);
}

void drc_reductions(const float* log10Peak, int channels, const DrcSettings& settings, DrcMemory* memory,
                    float* smoothedDb, float* reductionDb) {
    drc_reductions_kernel.run({{memory, size_t(channels) * sizeof(DrcMemory)},
                               {smoothedDb, kCurveBytes},
                               {reductionDb, kCurveBytes}},
                              log10Peak, channels, settings, memory, smoothedDb, reductionDb);
}

void drc_exponents(const float* reductionDb, const float* smoothedDb, const DrcSettings& settings,
                   float* reduction, float* expansion) {
    drc_exponents_kernel.run({{reduction, kCurveBytes}, {expansion, kCurveBytes}}, reductionDb, smoothedDb,
                             settings, reduction, expansion);
}

void drc_make_up(float makeup, const float* factor, float* y) {
    drc_make_up_kernel.run({{y, kCurveBytes}}, makeup, factor, y);
}

void drc_apply(const float* gain, int channels, float* io) {
    drc_apply_kernel.run({{io, size_t(channels) * kHopSamples * sizeof(float)}}, gain, channels, io);
}

}  // namespace android
