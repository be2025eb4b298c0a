#include "modules/eq/eq.h"

#include <algorithm>

#include "dsp/grid.h"
#include "dsp/poison.h"
#include "dsp/shared_value.h"

namespace android {

namespace {

// First-order high-pass at 10 kHz by the bilinear transform: K = tan(pi 10000 / 48000), b0 = -b1 = 1 / (1 +
// K), a1 = (K - 1) / (K + 1). Sections 1 and 2 are not used.
constexpr parameterEQ kFactory = {
    .peakSectionCount = 0.0f,
    .peakSos = {},
    .trebleSectionCount = 1.0f,
    .trebleSos = {0.5658262f, 0.0f, 0.0f,   // b0
                  -0.5658262f, 0.0f, 0.0f,  // b1
                  0.0f, 0.0f, 0.0f,         // b2
                  1.0f, 0.0f, 0.0f,         // a0
                  -0.1316525f, 0.0f, 0.0f,  // a1
                  0.0f, 0.0f, 0.0f},        // a2
    .trebleGain = 0.5f,
    .finalSos = {1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f},
    .finalPassCount = 0.0f,
};

struct State {
    StereoDelays peak[kMaxSections];    // reset: 0
    StereoDelays treble[kMaxSections];  // reset: 0
    StereoDelays finalPass;             // reset: 0
};

State state;

void filter_by(const float* sos, float sectionCount, StereoDelays* delays, int channels, float* io) {
    Cascade cascade(channels);
    cascade.append_matrix(sos, sectionCount, delays);
    cascade.run(io);
}

void boost_treble(float sectionCount, const float* sos, float gain, int channels, float* io) {
    float treble[2 * kHopSamples];
    std::copy_n(io, channels * kHopSamples, treble);
    filter_by(sos, sectionCount, state.treble, channels, treble);
    add_scaled(treble, gain, channels * kHopSamples, io);
}

void filter_repeatedly(int passes, const float* sos, int channels, float* io) {
    Cascade section(channels);
    section.append({{sos[0], sos[1], sos[2]}, {sos[3], sos[4], sos[5]}}, state.finalPass);
    for (int pass = 0; pass < passes; ++pass) {
        section.run(io);
    }
}

void reset_if_poisoned() {
    if (is_poisoned(state, kPoisonedSample)) {
        equalization_peak_init();
        ++poisonResets;
    }
}

}  // namespace

void factory_contents(parameterEQ* record) {
    store_shared_floats(*record, kFactory);
}

void equalization_peak(float* io, float channels, float peakSectionCount, const float* peakSos,
                       float trebleSectionCount, const float* trebleSos, float trebleGain,
                       const float* finalSos, float finalPassCount) {
    const int count = channels == 2.0f ? 2 : 1;
    filter_by(peakSos, peakSectionCount, state.peak, count, io);
    if (trebleGain > 0.0f) {
        boost_treble(trebleSectionCount, trebleSos, trebleGain, count, io);
    }
    filter_repeatedly(count_within(finalPassCount, kEqMaxFinalPasses), finalSos, count, io);
    reset_if_poisoned();
}

void equalization_peak_init() {
    state = {};
}

}  // namespace android
