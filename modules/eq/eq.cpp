#include "modules/eq/eq.h"

#include <algorithm>

#include "dsp/poison.h"

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

constexpr int kMaxChannels = 2;

struct ChannelState {
    Delays peak[kMaxSections];    // reset: 0
    Delays treble[kMaxSections];  // reset: 0
    Delays finalPass;             // reset: 0
};

ChannelState state[kMaxChannels];

void boost_treble(float sectionCount, const float* sos, float gain, float* io, Delays* delays) {
    float treble[kHopSamples];
    std::copy_n(io, kHopSamples, treble);
    filter_matrix(sos, sectionCount, treble, delays);
    for (int i = 0; i < kHopSamples; ++i) {
        io[i] = io[i] + gain * treble[i];
    }
}

// The filter normalises its coefficients in place, so it gets copies.
void filter_repeatedly(int passes, const float* sos, float* io, Delays& delays) {
    for (int pass = 0; pass < passes; ++pass) {
        float b[3] = {sos[0], sos[1], sos[2]};
        float a[3] = {sos[3], sos[4], sos[5]};
        b_filter(b, a, io, delays.z, io, delays.z);
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
    *record = kFactory;
}

void equalization_peak(float* io, float channels, float peakSectionCount, const float* peakSos,
                       float trebleSectionCount, const float* trebleSos, float trebleGain,
                       const float* finalSos, float finalPassCount) {
    const int passes = count_within(finalPassCount, kEqMaxFinalPasses);
    const int count = channels == 2.0f ? 2 : 1;
    for (int c = 0; c < count; ++c) {
        float* hop = io + c * kHopSamples;
        filter_matrix(peakSos, peakSectionCount, hop, state[c].peak);
        if (trebleGain > 0.0f) {
            boost_treble(trebleSectionCount, trebleSos, trebleGain, hop, state[c].treble);
        }
        filter_repeatedly(passes, finalSos, hop, state[c].finalPass);
    }
    reset_if_poisoned();
}

void equalization_peak_init() {
    std::fill_n(state, kMaxChannels, ChannelState{});
}

}  // namespace android
