#include "modules/drc/drc.h"

#include <algorithm>
#include <cmath>

#include "dsp/grid.h"
#include "dsp/poison.h"

namespace android {

namespace {

constexpr parameterDRC kFactory = {
    .compThreshold = -19.207317f,
    .compKnee = 9.603659f,
    .compMakeup = 4.7315125f,
    .compSlope = -0.8333333f,
    .compAttack = 0.9692332f,
    .compRelease = 0.9999479f,
    .limThreshold = -1.0f,
    .limKnee = 0.5f,
    .limMakeup = 1.0f,
    .limSlope = -0.9f,
    .limAttack = 0.40948412f,
    .limRelease = 0.9394131f,
    .expThreshold = -60.0f,
    .expSlope = 0.5f,
};

constexpr int kMaxChannels = 2;
constexpr float kStartLevelDb = -50.0f;
constexpr float kLogFloor = 1e-10f;  // keeps the level of silence finite: -200 dB
constexpr double kReductionFloor = 1e-16;
constexpr double kClip = 0.999;

// No memory gets there: levels begin at -200 dB and end where samples would be poison, at 240 dB; reductions of
// them are smaller, at 21 dB of make-up below 0.95 x (240 + 27) dB.
constexpr float kPoisonedDb = 255.0f;

// The stronger the compression, the harder the ratio and the quicker the response.
struct Bracket {
    float belowGainDb;
    float c;
    double ratio, releaseSeconds, attackSeconds;
};

constexpr Bracket kBrackets[] = {
    {5.0f, 0.75f, 3.0, 0.5, 0.005},
    {10.0f, 0.8f, 4.0, 0.4, 0.003},
    {15.0f, 0.82f, 6.0, 0.3, 0.002},
    {21.0f, 0.85f, 8.0, 0.2, 0.0015},
};
constexpr Bracket kStrongest = {0.0f, 0.88f, 10.0, 0.08, 0.001};

// What the parameter pointers point at.
struct Stage {
    float threshold, knee, makeup, slope, attack, release;
};

struct Expander {
    float threshold, slope;
};

struct ChannelState {
    float levelDb;  // smoothed peak level; reset: -50
    float compGr;   // dB of first-stage reduction; reset: 0
    float limGr;    // dB of second-stage reduction; reset: 0
};

struct State {
    bool notEmpty;  // reset: false, so the next call seeds the channels
    ChannelState channel[kMaxChannels];
};

State state;

// One hop of one channel on the control grid.
struct Curves {
    float smoothedDb[kGridPoints];
    float reductionDb[kGridPoints];
};

const Bracket& bracket_of(float gainDb) {
    for (const Bracket& bracket : kBrackets) {
        if (gainDb < bracket.belowGainDb) {
            return bracket;
        }
    }
    return kStrongest;
}

float smoothing_coefficient(double seconds) {
    return float(std::exp(-1.0 / (seconds * kSampleRateHz)));
}

float larger(float a, float b) {
    return b > a ? b : a;
}

// Groups of three centred on the grid's points; the first has no sample on its left.
void detect_peaks(const float* x, float* peak) {
    float magnitude[3];
    c_abs(x, magnitude);
    peak[0] = larger(magnitude[0], magnitude[1]);
    for (int j = 1; j < kGridPoints; ++j) {
        d_abs(x + kGridStep * j - 1, magnitude);
        peak[j] = larger(larger(magnitude[0], magnitude[1]), magnitude[2]);
    }
}

void peaks_to_db(float* level) {
    for (int j = 0; j < kGridPoints; ++j) {
        level[j] = level[j] + kLogFloor;
    }
    b_log10(level);
    for (int j = 0; j < kGridPoints; ++j) {
        level[j] = 20.0f * level[j];
    }
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

void analyse_channel(const float* x, const Stage& comp, const Stage& lim, float makeupDb,
                     ChannelState& memory, Curves& out) {
    float level[kGridPoints], comp_gr[kGridPoints], lim_gr[kGridPoints];
    detect_peaks(x, level);
    peaks_to_db(level);
    smooth_level(level, memory.levelDb, out.smoothedDb);

    for (int j = 0; j < kGridPoints; ++j) {
        comp_gr[j] = level[j] - comp.threshold;
    }
    gain_computer(comp, comp_gr);
    smooth_reduction(comp, memory.compGr, comp_gr);

    for (int j = 0; j < kGridPoints; ++j) {
        lim_gr[j] = makeupDb + level[j] - comp_gr[j] - lim.threshold;
    }
    gain_computer(lim, lim_gr);
    smooth_reduction(lim, memory.limGr, lim_gr);

    for (int j = 0; j < kGridPoints; ++j) {
        out.reductionDb[j] = comp_gr[j] + lim_gr[j];
    }
}

void link_channels(Curves& first, const Curves& second) {
    for (int j = 0; j < kGridPoints; ++j) {
        first.reductionDb[j] = larger(second.reductionDb[j], first.reductionDb[j]);
        first.smoothedDb[j] = larger(second.smoothedDb[j], first.smoothedDb[j]);
    }
}

void gain_curve(const Curves& curves, const Stage& comp, const Expander& expander, float makeupDb,
                float* gain) {
    float exponent[kGridPoints];
    for (int j = 0; j < kGridPoints; ++j) {
        exponent[j] = -0.05f * curves.reductionDb[j];
    }
    power(10.0f, exponent, gain);
    const float threshold = makeupDb + expander.threshold;
    for (int j = 0; j < kGridPoints; ++j) {
        gain[j] = comp.makeup * gain[j];
        if (!(curves.smoothedDb[j] > threshold)) {
            const float belowDb = (curves.smoothedDb[j] - threshold) * expander.slope / 20.0f;
            gain[j] = gain[j] * float(std::pow(10.0, double(belowDb)));
        }
    }
}

void apply_and_clip(const float* gain, float* x) {
    for (int i = 0; i < kHopSamples; ++i) {
        const float y = x[i] * gain[i];
        x[i] = double(y) < -kClip ? float(-kClip) : double(y) > kClip ? float(kClip) : y;
    }
}

void reset_if_poisoned() {
    if (is_poisoned(state.channel, kPoisonedDb)) {
        state_not_empty_init();
        ++poisonResets;
    }
}

}  // namespace

void factory_contents(parameterDRC* record) {
    *record = kFactory;
}

void initialize_dynamicRangeCompression_C(float gainDb, parameterDRC* block) {
    const Bracket& bracket = bracket_of(gainDb);
    const float inverseRatio = float(1.0 / bracket.ratio);
    block->compThreshold = -((gainDb / bracket.c) * (inverseRatio + 1.0f));
    block->compKnee = std::fabs(block->compThreshold) * 0.5f;
    block->compMakeup = float(std::pow(10.0, double(gainDb / 20.0f)));
    block->compSlope = inverseRatio - 1.0f;
    block->compAttack = smoothing_coefficient(bracket.attackSeconds);
    block->compRelease = smoothing_coefficient(bracket.releaseSeconds);
    block->limThreshold = -1.0f;
    block->limKnee = 0.5f;
    block->limMakeup = 1.0f;
    block->limSlope = -0.95f;
    block->limAttack = 0.8928125f;
    block->limRelease = 0.9775794f;
}

void dynamicRangeCompression_LC(float* io, float channels, const float* firstStage, const float* secondStage,
                                const float* expander) {
    if (!state.notEmpty) {
        state.notEmpty = true;
        std::fill(state.channel, state.channel + kMaxChannels, ChannelState{kStartLevelDb, 0.0f, 0.0f});
    }
    const int count = count_within(channels, kMaxChannels);
    if (count == 0) {
        return;
    }
    const Stage comp{firstStage[0], firstStage[1], firstStage[2],
                     firstStage[3], firstStage[4], firstStage[5]};
    const Stage lim{secondStage[0], secondStage[1], secondStage[2],
                    secondStage[3], secondStage[4], secondStage[5]};
    const float makeupDb = 20.0f * float(std::log10(double(comp.makeup)));

    Curves curves[kMaxChannels];
    for (int c = 0; c < count; ++c) {
        analyse_channel(io + c * kHopSamples, comp, lim, makeupDb, state.channel[c], curves[c]);
    }
    if (count > 1) {
        link_channels(curves[0], curves[1]);
    }
    float gridGain[kGridPoints], gain[kHopSamples];
    gain_curve(curves[0], comp, Expander{expander[0], expander[1]}, makeupDb, gridGain);
    interp1_fac3(gridGain, gain);
    for (int c = 0; c < count; ++c) {
        apply_and_clip(gain, io + c * kHopSamples);
    }
    reset_if_poisoned();
}

void state_not_empty_init() {
    state.notEmpty = false;
}

}  // namespace android
