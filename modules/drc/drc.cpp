#include "modules/drc/drc.h"

#include <algorithm>
#include <cmath>

#include "dsp/grid.h"
#include "dsp/poison.h"
#include "modules/drc/drc_steps.h"

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

struct State {
    bool notEmpty;                    // reset: false, so the next call seeds the channels
    DrcMemory channel[kMaxChannels];  // seeded with a level of -50 dB and no reduction
};

State state;

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

// Curves of the logarithms of the peaks, one channel after the other.
void analyse(const float* io, int channels, float* log10Peak) {
    for (int c = 0; c < channels; ++c) {
        float* curve = log10Peak + c * kCurveFloats;
        drc_peaks(io + c * kHopSamples, curve);
        b_log10(curve);
    }
}

// The expander's powers are asked for only where it does something: seldom while music plays.
void gain_curve(const DrcSettings& settings, const float* reductionDb, const float* smoothedDb, float* gain) {
    float reduction[kCurveFloats], expansion[kCurveFloats], factor[kCurveFloats] = {};
    drc_exponents(reductionDb, smoothedDb, settings, reduction, expansion);
    power(10.0f, reduction, gain);
    if (std::any_of(expansion, expansion + kGridPoints, [](float e) { return e != 0.0f; })) {
        power(10.0f, expansion, factor);
    } else {
        std::fill_n(factor, kGridPoints, 1.0f);
    }
    drc_make_up(settings.comp.makeup, factor, gain);
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
        std::fill(state.channel, state.channel + kMaxChannels, DrcMemory{kStartLevelDb, 0.0f, 0.0f});
    }
    const int count = count_within(channels, kMaxChannels);
    if (count == 0) {
        return;
    }
    const DrcSettings settings{
        .comp = {firstStage[0], firstStage[1], firstStage[2], firstStage[3], firstStage[4], firstStage[5]},
        .lim = {secondStage[0], secondStage[1], secondStage[2], secondStage[3], secondStage[4],
                secondStage[5]},
        .expander = {expander[0], expander[1]},
        .makeupDb = 20.0f * float(std::log10(double(firstStage[2]))),
    };
    float log10Peak[kMaxChannels * kCurveFloats] = {};
    float smoothedDb[kCurveFloats] = {}, reductionDb[kCurveFloats] = {}, gridGain[kCurveFloats] = {};
    float gain[kHopSamples];
    analyse(io, count, log10Peak);
    drc_reductions(log10Peak, count, settings, state.channel, smoothedDb, reductionDb);
    gain_curve(settings, reductionDb, smoothedDb, gridGain);
    interp1_fac3(gridGain, gain);
    drc_apply(gain, count, io);
    reset_if_poisoned();
}

void state_not_empty_init() {
    state.notEmpty = false;
}

}  // namespace android
