#include "modules/vb/vb.h"

#include <algorithm>

#include "dsp/grid.h"
#include "dsp/poison.h"
#include "dsp/shared_value.h"
#include "modules/vb/vb_steps.h"
#include "modules/vb/vb_tables.h"

namespace android {

namespace {

// Everything but the section sets. The coefficients are exp(-1 / (16000 tau)), 16 kHz being the control
// grid's rate.
constexpr parameterVB kFactory = {
    .harmonicGain = 1.9952623f,  // 10^(6/20)
    .boostLin = 1.9952623f,
    .compSlope = 0.2f,
    .compOffsetDb = 12.0f,
    .outputGain = 1.3182567f,  // 10^(2.4/20)
    .lowpassSections = 2.0f,
    .lowpassSos = {},
    .inputHighpassSections = 0.0f,
    .inputHighpassSos = {},
    .bandHighpassSections = 0.0f,
    .bandHighpassSos = {},
    .harmonicLowpassSections = 0.0f,
    .harmonicLowpassSos = {},
    .fastAttack = 0.0019304542f,  // 10 us
    .fastRelease = 0.9394131f,    // 1 ms
    .slowAttack = 0.9993752f,     // 100 ms
    .slowRelease = 0.9993752f,    // 100 ms
    .gainSmoothing = 0.9937695f,  // 10 ms
    .outputHighpassSections = 2.0f,
    .outputHighpassSos = {},
};

constexpr int kMaxChannels = 2;
constexpr int kDefaultSet = 4;  // 120 Hz

struct State {
    StereoDelays lowpass[kMaxSections];          // reset: 0
    StereoDelays bandHighpass[kMaxSections];     // reset: 0
    StereoDelays harmonicLowpass[kMaxSections];  // reset: 0
    StereoDelays inputHighpass[kMaxSections];    // reset: 0
    StereoDelays outputHighpass[kMaxSections];   // reset: 0
    VbMemory curves;                             // reset: envelopes 0, gain 1
};

constexpr State kReset = {
    .lowpass = {},
    .bandHighpass = {},
    .harmonicLowpass = {},
    .inputHighpass = {},
    .outputHighpass = {},
    .curves = {.fast = 0.0f, .slow = 0.0f, .gain = 1.0f},
};

State state = kReset;

const VbSections& sections_for(int cutoffHz) {
    for (const VbSections& set : kVbSections) {
        if (set.cutoffHz == cutoffHz) {
            return set;
        }
    }
    return kVbSections[kDefaultSet];
}

void mix_to_mono(const float* io, float channels, float* mono) {
    if (channels <= 1.0f) {
        std::copy_n(io, kHopSamples, mono);
        return;
    }
    sum(io, mono);
    scale(0.5f, kHopSamples, mono);
}

void filter_by(const float* sos, float sectionCount, StereoDelays* delays, int channels, float* io) {
    Cascade cascade(channels);
    cascade.append_matrix(sos, sectionCount, delays);
    cascade.run(io);
}

// From the mono hop's bass band to what is added to every channel, in place.
void process_bass(const parameterVB& p, float boostLin, float* bass) {
    Cascade band(1);
    band.append_matrix(p.lowpassSos, p.lowpassSections, state.lowpass);
    band.append_matrix(p.bandHighpassSos, p.bandHighpassSections, state.bandHighpass);
    band.run(bass);
    float harmonics[kBassCurveFloats] = {}, magnitude[kBassCurveFloats] = {}, fast[kBassCurveFloats] = {},
          slow[kBassCurveFloats] = {}, exponent[kBassCurveFloats], gain[kGridPoints];
    vb_harmonics(bass, p.harmonicGain, harmonics, magnitude);
    vb_follow(magnitude, p, &state.curves, fast, slow);
    b_log10(fast);
    b_log10(slow);
    vb_exponents(fast, slow, p, exponent);
    power(10.0f, exponent, gain);
    vb_boost(gain, p, boostLin, &state.curves, harmonics);
    interp1_fac3(harmonics, bass);
    filter_by(p.harmonicLowpassSos, p.harmonicLowpassSections, state.harmonicLowpass, 1, bass);
}

void add_bass(const float* bass, int channels, float* io) {
    for (int c = 0; c < channels; ++c) {
        add_scaled(bass, 1.0f, kHopSamples, io + c * kHopSamples);
    }
}

void reset_if_poisoned() {
    if (is_poisoned(state, kPoisonedSample)) {
        virtualbassFunction_monoLC_init();
        ++poisonResets;
    }
}

}  // namespace

void factory_contents(float cutoffHz, parameterVB* record) {
    const VbSections& set = sections_for(count_within(cutoffHz, kSampleRateHz));
    parameterVB contents = kFactory;
    std::copy_n(set.lowpassSos, kSectionMatrixFloats, contents.lowpassSos);
    std::copy_n(set.inputHighpassSos, kSectionMatrixFloats, contents.inputHighpassSos);
    std::copy_n(set.bandHighpassSos, kSectionMatrixFloats, contents.bandHighpassSos);
    std::copy_n(kVbHarmonicLowpassSos, kSectionMatrixFloats, contents.harmonicLowpassSos);
    std::copy_n(set.outputHighpassSos, kSectionMatrixFloats, contents.outputHighpassSos);
    store_shared_floats(*record, contents);
}

void virtualbassFunction_monoLC(float* io, float channels, const parameterVB* parameters) {
    virtualbassFunction_monoLC(io, channels, parameters, load_shared(parameters->boostLin));
}

void virtualbassFunction_monoLC(float* io, float channels, const parameterVB* parameters, float boostLin) {
    const parameterVB& p = *parameters;
    float bass[kHopSamples];
    mix_to_mono(io, channels, bass);
    process_bass(p, boostLin, bass);
    const int count = count_within(channels, kMaxChannels);
    if (count > 0) {
        filter_by(p.inputHighpassSos, p.inputHighpassSections, state.inputHighpass, count, io);
        add_bass(bass, count, io);
    }
    filter_by(p.outputHighpassSos, p.outputHighpassSections, state.outputHighpass, channels == 2.0f ? 2 : 1,
              io);
    reset_if_poisoned();
}

void virtualbassFunction_monoLC_init() {
    state = kReset;
}

}  // namespace android
