// The steps of the compressor between the logarithms and powers, each in a scalar form (drc_steps.cpp) and in lanes
// (drc_steps_lanes.cpp).
//
// A curve has one value per grid point. What lies behind its 171 points is read and written, but of no meaning.
#pragma once

#include "dsp/frame.h"

namespace android {

inline constexpr int kCurveFloats = 176;  // whole vectors, and two of them next to one another
static_assert(kCurveFloats >= kGridPoints && kCurveFloats % 16 == 0);

// What the parameter pointers of the module point at.
struct Stage {
    float threshold, knee, makeup, slope, attack, release;
};
struct Expander {
    float threshold, slope;
};

struct DrcSettings {
    Stage comp, lim;
    Expander expander;
    float makeupDb;
};

struct DrcMemory {
    float levelDb;  // smoothed peak level
    float compGr;   // dB of first-stage reduction
    float limGr;    // dB of second-stage reduction
};

// The largest magnitude around each grid point of a hop, made fit for a logarithm.
//        x        512 samples     in
//        peak     curve           out
void drc_peaks(const float* x, float* peak);

// From the logarithms of the peaks to what the channels have in common: the larger level, the larger reduction.
//        log10Peak    channels x 176   in      behind each curve: any numbers
//        channels     1 or 2           in
//        memory       channels         in/out
//        smoothedDb   curve            out     level that rises within a few points and falls over seconds
//        reductionDb  curve            out     compressor and limiter together
void drc_reductions(const float* log10Peak, int channels, const DrcSettings& settings, DrcMemory* memory,
                    float* smoothedDb, float* reductionDb);

// Powers of ten by which the gain falls: by the reduction, and where the level is low, by the expander (else 0).
//        reductionDb, smoothedDb        curves   in
//        reduction, expansion           curves   out
void drc_exponents(const float* reductionDb, const float* smoothedDb, const DrcSettings& settings,
                   float* reduction, float* expansion);

// y[j] = makeup * y[j] * factor[j], from left to right, on curves.
void drc_make_up(float makeup, const float* factor, float* y);

// Every channel times the gain, clipped at +-0.999.
//        gain     512              in
//        io       channels x 512   in/out
void drc_apply(const float* gain, int channels, float* io);

}  // namespace android
