#include "modules/geq/geq.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "dsp/poison.h"
#include "dsp/section.h"

namespace android {

namespace {

// tan(pi f / 48000) for f = 62.5 Hz x 2^k, rounded to float.
constexpr parameterGEQ kFactory = {
    .bandCount = 9.0f,
    .bandGainDb = {},
    .bandQ = 1.4142135f,
    .bandWarp = {0.0040906384f, 0.0081814136f, 0.016363923f, 0.03273661f, 0.06554347f, 0.1316525f,
                 0.26794919f, 0.57735032f, 1.7320509f},
};

// A gain no setting is likely to hold, so that the first call after a reset designs every band.
constexpr float kNoGainDb = -100.0f;

// Differs from every gain, itself included.
constexpr float kNeverEqual = std::numeric_limits<float>::quiet_NaN();

struct State {
    float lastGainDb[kGeqMaxBands];           // reset: -100
    SectionCoefficients bands[kGeqMaxBands];  // survives a reset
    StereoDelays delays[kGeqMaxBands];        // reset: 0
};

State state;

// A design from such values is no filter and is not to outlive them, as others outlive a new warp or Q.
bool is_no_filter(float Q, float warp) {
    return !(Q > 0.0f) || !(warp > 0.0f) || std::isinf(Q) || std::isinf(warp);
}

void redesign_changed_bands(int bands, const float* gainDb, float Q, const float* warp) {
    for (int k = 0; k < bands; ++k) {
        if (state.lastGainDb[k] != gainDb[k]) {
            il_iirpeaking2(warp[k], gainDb[k], Q, state.bands[k].b, state.bands[k].a);
        }
        state.lastGainDb[k] = is_no_filter(Q, warp[k]) ? kNeverEqual : gainDb[k];
    }
}

void reset_if_poisoned() {
    if (is_poisoned(state.delays, kPoisonedSample)) {
        graphicalEQ_forget();
        ++poisonResets;
    }
}

}  // namespace

void factory_contents(parameterGEQ* record) {
    *record = kFactory;
}

void il_iirpeaking2(float K, float gainDb, float Q, float* b, float* a) {
    const float V = float(std::pow(10.0, double(std::fabs(gainDb)) * 0.05));
    const float KK = K * K;
    const float KQ = K * (1.0f / Q);
    const float VKQ = V * KQ;

    a[0] = 1.0f;
    if (gainDb > 0.0f) {
        const float n = 1.0f / (1.0f + KQ + KK);
        b[0] = n * (1.0f + VKQ + KK);
        b[1] = n * (2.0f * (KK - 1.0f));
        b[2] = n * (1.0f - VKQ + KK);
        a[1] = b[1];
        a[2] = n * (1.0f - KQ + KK);
    } else if (gainDb < 0.0f) {
        const float n = 1.0f / (1.0f + VKQ + KK);
        b[0] = n * (1.0f + KQ + KK);
        b[1] = n * (2.0f * (KK - 1.0f));
        b[2] = n * (1.0f - KQ + KK);
        a[1] = b[1];
        a[2] = n * (1.0f - VKQ + KK);
    } else {
        b[0] = 1.0f;
        b[1] = b[2] = a[1] = a[2] = 0.0f;
    }
}

void graphicalEQ(float* io, float channels, float bandCount, const float* bandGainDb, float bandQ,
                 const float* bandWarp) {
    const int bands = count_within(bandCount, kGeqMaxBands);
    redesign_changed_bands(bands, bandGainDb, bandQ, bandWarp);
    Cascade cascade(channels == 2.0f ? 2 : 1);
    for (int k = 0; k < bands; ++k) {
        if (bandGainDb[k] != 0.0f) {
            cascade.append(state.bands[k], state.delays[k]);
        }
    }
    cascade.run(io);
    reset_if_poisoned();
}

void graphicalEQ_init() {
    for (int k = 0; k < kGeqMaxBands; ++k) {
        state.lastGainDb[k] = kNoGainDb;
        state.delays[k] = {};
    }
}

void graphicalEQ_forget() {
    graphicalEQ_init();
    std::fill_n(state.lastGainDb, kGeqMaxBands, kNeverEqual);
}

}  // namespace android
