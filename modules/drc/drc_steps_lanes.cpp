// The fast forms of the steps in drc_steps.cpp.
#include <bit>

#include "dsp/memory_lanes.h"
#include "dsp/quads.h"
#include "modules/drc/drc_steps.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr float kLogFloor = 1e-10f;
// The largest float that is not above the floor of reductions, the double 1e-16.
constexpr float kReductionFloor = std::bit_cast<float>(std::bit_cast<uint32_t>(1e-16f) - 1);
static_assert(double(kReductionFloor) < 1e-16 && double(1e-16f) > 1e-16);
constexpr float kClip = 0.999f;  // exceeded by the floats that exceed the double, itself apart

template <typename Vector>
ZOQ_INLINE Vector larger(Vector a, Vector b) {
    return select(less(a, b), b, a);
}

struct Knee {
    Quad half, q, slope;
};

ZOQ_INLINE Knee knee_of(const Stage& stage) {
    const float half = 0.5f * stage.knee;
    return {broadcast_quad(half), broadcast_quad(half / (stage.knee * stage.knee)),
            broadcast_quad(stage.slope)};
}

// Where a magnitude is below half the knee's width, the width is above 0.
ZOQ_INLINE Quad gain_computer(const Knee& knee, Quad d) {
    const Quad t = d + knee.half, zero = broadcast_quad(0.0f);
    const Quad bent =
        select(less(absolute(d), knee.half), (t * t) * knee.q, select(at_most(zero, d), d, zero));
    return -(bent * knee.slope);
}

// What depends on the point before: first the levels and the compressor of both channels, in the lanes level 0, level
// 1, compressor 0, compressor 1; then, with what came of it, the limiter in lanes 0 and 1.
struct Chains {
    Smoothers levelAndComp, lim;
};

ZOQ_INLINE Chains chains_of(const DrcSettings& settings, const DrcMemory& first, const DrcMemory& second) {
    const Stage &comp = settings.comp, &lim = settings.lim;
    const float compAttack = 1.0f - comp.attack, compRelease = 1.0f - comp.release;
    return {{.attackInput = quad(0.5f, 0.5f, compAttack, compAttack),
             .attack = quad(0.5f, 0.5f, comp.attack, comp.attack),
             .releaseInput = quad(0.0001f, 0.0001f, compRelease, compRelease),
             .release = quad(0.9999f, 0.9999f, comp.release, comp.release),
             .floor = broadcast_quad(kReductionFloor),
             .noFloor = IntQuad{-1, -1, 0, 0},
             .s = quad(first.levelDb, second.levelDb, first.compGr, second.compGr)},
            {.attackInput = broadcast_quad(1.0f - lim.attack),
             .attack = broadcast_quad(lim.attack),
             .releaseInput = broadcast_quad(1.0f - lim.release),
             .release = broadcast_quad(lim.release),
             .floor = broadcast_quad(kReductionFloor),
             .noFloor = IntQuad{},
             .s = quad(first.limGr, second.limGr, 0.0f, 0.0f)}};
}

// Points next to one another.
struct Four {
    Quad smoothed[2], comp[2], lim[2];  // of each channel
    Quad lastLevelAndComp, lastLim;     // the chains at the grid's last point, if it is among these
};
constexpr int kLastOfFour = (kGridPoints - 1) % 4;

ZOQ_INLINE void advance_levels(Chains& chains, const Knee& knee, Quad threshold, const Quad (&level)[2],
                               Four& out) {
    Quad x[4] = {level[0], level[1], gain_computer(knee, level[0] - threshold),
                 gain_computer(knee, level[1] - threshold)};
    transpose(x);
    smooth(chains.levelAndComp, x);
    out.lastLevelAndComp = x[kLastOfFour];
    transpose(x);
    out.smoothed[0] = x[0];
    out.smoothed[1] = x[1];
    out.comp[0] = x[2];
    out.comp[1] = x[3];
}

ZOQ_INLINE void advance_limiter(Chains& chains, const Knee& knee, Quad threshold, Quad makeupDb,
                                const Quad (&level)[2], Four& out) {
    Quad x[4] = {gain_computer(knee, makeupDb + level[0] - out.comp[0] - threshold),
                 gain_computer(knee, makeupDb + level[1] - out.comp[1] - threshold), broadcast_quad(0.0f),
                 broadcast_quad(0.0f)};
    transpose(x);
    smooth(chains.lim, x);
    out.lastLim = x[kLastOfFour];
    transpose(x);
    out.lim[0] = x[0];
    out.lim[1] = x[1];
}

ZOQ_INLINE void keep(const Four& last, int channels, DrcMemory* memory) {
    float levelAndComp[4], lim[4];
    store(levelAndComp, last.lastLevelAndComp);
    store(lim, last.lastLim);
    for (int c = 0; c < channels; ++c) {
        memory[c] = {levelAndComp[c], levelAndComp[2 + c], lim[c]};
    }
}

}  // namespace

void drc_peaks(const float* x, float* peak) {
    const float first = __builtin_fabsf(x[0]), second = __builtin_fabsf(x[1]);
    peak[0] = (second > first ? second : first) + kLogFloor;
    for (int j = 1; j < kGridPoints; j += kLanes) {
        const int k = j < kGridPoints - kLanes ? j : kGridPoints - kLanes;  // the last ones once more
        const Thirds t = load_three(x + kGridStep * k - 1);
        const Lanes pair = larger(absolute(t.v[0]), absolute(t.v[1]));
        store(peak + k, larger(pair, absolute(t.v[2])) + broadcast(kLogFloor));
    }
}

// With one channel, both halves of the lanes do the same.
void drc_reductions(const float* log10Peak, int channels, const DrcSettings& settings, DrcMemory* memory,
                    float* smoothedDb, float* reductionDb) {
    const float* second = log10Peak + (channels - 1) * kCurveFloats;
    Chains chains = chains_of(settings, memory[0], memory[channels - 1]);
    const Knee compKnee = knee_of(settings.comp), limKnee = knee_of(settings.lim);
    const Quad compThreshold = broadcast_quad(settings.comp.threshold);
    const Quad limThreshold = broadcast_quad(settings.lim.threshold);
    const Quad makeupDb = broadcast_quad(settings.makeupDb), twenty = broadcast_quad(20.0f);
    Four four;
    for (int j = 0; j < kGridPoints; j += 4) {
        const Quad level[2] = {twenty * load_quad(log10Peak + j), twenty * load_quad(second + j)};
        advance_levels(chains, compKnee, compThreshold, level, four);
        advance_limiter(chains, limKnee, limThreshold, makeupDb, level, four);
        store(smoothedDb + j, larger(four.smoothed[1], four.smoothed[0]));
        store(reductionDb + j, larger(four.comp[1] + four.lim[1], four.comp[0] + four.lim[0]));
    }
    keep(four, channels, memory);
}

void drc_exponents(const float* reductionDb, const float* smoothedDb, const DrcSettings& settings,
                   float* reduction, float* expansion) {
    const Lanes threshold = broadcast(settings.makeupDb + settings.expander.threshold);
    const Lanes slope = broadcast(settings.expander.slope);
    for (int j = 0; j < kCurveFloats; j += kLanes) {
        store(reduction + j, broadcast(-0.05f) * load(reductionDb + j));
        const Lanes level = load(smoothedDb + j);
        const Lanes below = (level - threshold) * slope / broadcast(20.0f);
        store(expansion + j, select(less(threshold, level), broadcast(0.0f), below));
    }
}

void drc_make_up(float makeup, const float* factor, float* y) {
    for (int j = 0; j < kCurveFloats; j += kLanes) {
        store(y + j, broadcast(makeup) * load(y + j) * load(factor + j));
    }
}

void drc_apply(const float* gain, int channels, float* io) {
    const Lanes highest = broadcast(kClip), lowest = broadcast(-kClip);
    for (int i = 0; i < channels * kHopSamples; i += kLanes) {
        const Lanes y = load(io + i) * load(gain + i % kHopSamples);
        store(io + i, select(less(y, lowest), lowest, select(less(highest, y), highest, y)));
    }
}

}  // namespace android::ZOQ_LEVEL
