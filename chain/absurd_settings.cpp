#include "chain/absurd_settings.h"

#include <algorithm>

#include "dsp/shared_value.h"

namespace android {

namespace {

struct Range {
    float lo, hi;
    bool holds(float value) const { return value >= lo && value <= hi; }
};

// What -100 % and 100 % become in the records. Settings below 0 % do no more harm than those above.
constexpr Range kSpeechGain{-1.0f, 3.0f};
constexpr Range kWidth{-1.0f, 1.0f};
constexpr Range kBassBoost{-5.0f, 5.0f};
constexpr Range kTrebleGain{-2.0f, 2.0f};
constexpr Range kMakeup{1.0f / 11.25f, 11.25f};  // 21 dB, the most that 100 % are

constexpr Range kBandGainDb{-200.0f, 24.0f};  // a deeper cut does no harm
constexpr Range kBandWarp{1e-4f, 1e4f};       // 1.5 Hz .. 1.5 Hz below half the sample rate
constexpr Range kBandQ{1e-3f, 1e3f};

bool all_within(const float* values, Range range) {
    return std::all_of(values, values + kGeqBands, [range](float value) { return range.holds(value); });
}

bool equalizer_absurd(const parameterGEQ& geq) {
    return !all_within(geq.bandGainDb, kBandGainDb) || !all_within(geq.bandWarp, kBandWarp) ||
           !kBandQ.holds(geq.bandQ);
}

}  // namespace

HopSettings hop_settings(const parameterDEN& den, const parameterTWS& tws, const parameterEQ& eq,
                         const parameterVB& vb, const parameterX2B& x2b) {
    return {
        .centerSpeechGain = load_shared(den.centerSpeechGain),
        .stereoWidth = load_shared(tws.stereoWidth),
        .surroundWidth = load_shared(x2b.surroundWidth),
        .trebleGain = load_shared(eq.trebleGain),
        .boostLin = load_shared(vb.boostLin),
    };
}

bool headphone_settings_absurd(const HopSettings& hop, const parameterDRC& drc, const parameterGEQ& geq) {
    return !kSpeechGain.holds(hop.centerSpeechGain) || !kWidth.holds(hop.surroundWidth) ||
           !kMakeup.holds(drc.compMakeup) || equalizer_absurd(geq);
}

bool speaker_settings_absurd(const HopSettings& hop, const parameterDRC& drc, const parameterGEQ& geq) {
    return !kSpeechGain.holds(hop.centerSpeechGain) || !kWidth.holds(hop.stereoWidth) ||
           !kTrebleGain.holds(hop.trebleGain) || !kMakeup.holds(drc.compMakeup) ||
           !kBassBoost.holds(hop.boostLin) || equalizer_absurd(geq);
}

}  // namespace android
