#include "modules/den/den.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "dsp/fft.h"
#include "dsp/poison.h"
#include "dsp/shared_value.h"
#include "modules/den/den_steps.h"
#include "modules/den/den_tables.h"

namespace android {

namespace {

constexpr int kHistoryHops = 4;  // two newer against two older: some 40 ms, the pace of syllables

// Bands whose fluctuation counts; the lowest three hold bass and hum.
constexpr int kFirstFluctuationBand = 3, kLastFluctuationBand = 30;

constexpr float kLeastFluctuation = 20.0f;                 // quieter centres say nothing about speech
constexpr float kNoSpeech = -2.0f;                         // the lowest value the detector can reach
constexpr float kAttackNew = 0.3f, kAttackOld = 0.7f;      // speech is believed within a few hops
constexpr float kReleaseNew = 0.02f, kReleaseOld = 0.98f;  // and given up over tens of hops

// No memory gets there: a full-scale pair in opposite phase, all of it in one band of 19 bins, has a power below
// 19 x 4 x 1024 x 512 / 2 and twice as much after the widening; the speech activity is smoothed from -2 .. 2.
constexpr float kPoisonedPower = 1e12f, kPoisonedActivity = 3.0f;

// Last bins, counted from 1, of the factory bands: two bins wide to 2 kHz, then near a sixth of an octave.
// Each band starts behind the one before it.
constexpr int kLastBin[kDenBands] = {2,   4,   6,   8,   10,  12,  14,  16,  18,  20,  22,  24,  26, 28,  30,
                                     32,  34,  36,  38,  40,  42,  48,  54,  60,  68,  76,  85,  95, 106, 119,
                                     133, 148, 166, 185, 207, 230, 257, 287, 320, 357, 398, 444, 513};

constexpr struct FactoryBands {
    float width[kDenBands], end[kDenBands], start[kDenBands];
    constexpr FactoryBands() : width(), end(), start() {
        for (int j = 0, first = 1; j < kDenBands; first = kLastBin[j] + 1, ++j) {
            width[j] = float(kLastBin[j] - first + 1);
            end[j] = float(kLastBin[j]);
            start[j] = float(first);
        }
    }
} kFactoryBands;

struct State {
    bool notEmpty;  // reset: false, so the next call zeroes all that follows
    float bdiffSm;  // smoothed speech activity, not clamped
    DenPowers powerSm;
    DenEnergies energySm;
    DenMagnitudes history[kHistoryHops];  // only hops that look for speech write theirs
    int newest;  // the slot of this hop; those of the hops before follow it, around the end
};

State state;

// Truncates; whatever is not at least 1 counts as 1.
int index_within(float value, int last) {
    if (!(value >= 1.0f)) {
        return 1;
    }
    return value < float(last) ? int(value) : last;
}

DenBands bands_of(const float* bandStart, const float* bandEnd) {
    DenBands bands;
    bands.adjoin = true;
    for (int j = 0; j < kDenCentreBands; ++j) {
        const DenBand band{index_within(bandStart[j], kBins) - 1, index_within(bandEnd[j], kBins)};
        const bool follows = j == 0 || band.first == bands.band[j - 1].end;
        bands.adjoin = bands.adjoin && follows && band.first < band.end;
        bands.band[j] = band;
    }
    return bands;
}

void halve(float* io) {
    for (int n = 0; n < 3 * kFrameSamples; ++n) {
        io[n] = io[n] * 0.5f;
    }
}

DenMagnitudes& magnitudes(int hopsAgo) {
    return state.history[(state.newest + hopsAgo) % kHistoryHops];
}

// The oldest hop's slot becomes this hop's.
void turn_history() {
    state.newest = (state.newest + kHistoryHops - 1) % kHistoryHops;
}

// io keeps the unwindowed frames.
void analyse(const float* io, DenSpectra& s) {
    float windowed[2 * kFrameSamples];
    den_window_pair(io, windowed);
    split_stereo_spectrum(windowed, windowed + kFrameSamples, s.left, s.right);
    std::memset(s.left + kBins, 0, sizeof s.left - kBins * sizeof(creal32_T));
    std::memset(s.right + kBins, 0, sizeof s.right - kBins * sizeof(creal32_T));
    std::memset(s.centre, 0, sizeof s.centre);
}

void widen(float wideAmount, const float* wideCurve, DenSpectra& s) {
    const float column = std::floor((wideAmount * 0.25f) * 100.0f);
    const float* c = wideCurve + index_within(column, kDenCurveColumns) - 1;
    const DenCubic curve{c[0], c[kDenCurveColumns], c[2 * kDenCurveColumns], c[3 * kDenCurveColumns]};
    den_widen(curve, s);
}

// -2 .. 2: whether the centre or the side fluctuates more between the two newer and the two older hops.
float fluctuation() {
    const DenMagnitudes &newest = magnitudes(0), &newer = magnitudes(1);
    const DenMagnitudes &older = magnitudes(2), &oldest = magnitudes(3);
    float centre = 0.0f, side = 0.0f;
    for (int j = kFirstFluctuationBand; j <= kLastFluctuationBand; ++j) {
        const float centreStep = (newest.centre[j] + newer.centre[j]) - (older.centre[j] + oldest.centre[j]);
        const float sideStep = (newest.side[j] + newer.side[j]) - (older.side[j] + oldest.side[j]);
        centre += centreStep * centreStep;
        side += sideStep * sideStep;
    }
    return centre > kLeastFluctuation ? 4.0f * (centre / (side + centre) - 0.5f) : kNoSpeech;
}

// Follows the fluctuation and returns the speech activity, 0..1.
float speech_activity() {
    const float x = fluctuation();
    float& smoothed = state.bdiffSm;
    smoothed =
        x < smoothed ? kReleaseNew * x + kReleaseOld * smoothed : kAttackNew * x + kAttackOld * smoothed;
    return std::clamp(smoothed, 0.0f, 1.0f);
}

void boost_speech(const DenBands& bands, float centerSpeechGain, float baseGain, DenSpectra& s) {
    float share[kDenBandRow], gain[kDenBandRow];
    den_measure_bands(bands, s, state.energySm, magnitudes(0), share);
    const float activity = speech_activity();
    for (int j = 0; j < kDenSpeechBands; ++j) {
        gain[j] = baseGain + activity * (centerSpeechGain - 1.0f) * share[j];
    }
    den_scale_bands(bands, gain, s);
}

void synthesise_centre(const DenSpectra& s, float* io) {
    creal32_T frame[kFrameSamples];
    merge_mono_spectrum(s.centre, frame);
    den_window_centre(frame, io);
}

void synthesise_sides(const DenSpectra& s, float* io) {
    creal32_T frame[kFrameSamples];
    merge_stereo_spectrum(s.left, s.right, frame);
    den_window_sides(frame, io);
}

// Untouched sides need no transform: half of the input, overlap-added, is the input.
void subtract_centre(float* io) {
    const float* centre = io + 2 * kFrameSamples;
    for (int n = 0; n < kFrameSamples; ++n) {
        io[n] = 0.5f * io[n] - centre[n];
        io[kFrameSamples + n] = 0.5f * io[kFrameSamples + n] - centre[n];
    }
}

void fold_centre(float* io) {
    float* centre = io + 2 * kFrameSamples;
    for (int n = 0; n < kFrameSamples; ++n) {
        io[n] = io[n] + centre[n];
        io[kFrameSamples + n] = io[kFrameSamples + n] + centre[n];
        centre[n] = 0.0f;
    }
}

void reset_if_poisoned() {
    if (is_poisoned(state.bdiffSm, kPoisonedActivity) || is_poisoned(state.powerSm, kPoisonedPower) ||
        is_poisoned(state.energySm, kPoisonedPower) || is_poisoned(state.history, kPoisonedPower)) {
        bdiff_sm_not_empty_init();
        ++poisonResets;
    }
}

}  // namespace

void factory_contents(parameterDEN* record) {
    record->smoothFactor = 0.8f;
    store_shared(record->centerSpeechGain, 2.0f);
    record->baseGain = 1.0f;
    record->wideAmount = 3.0f;
    record->stereoOutput = 0.0f;
    std::copy(&kWideCurve[0][0], &kWideCurve[0][0] + 4 * kDenCurveColumns, &record->wideCurve[0][0]);
    std::copy_n(kFactoryBands.width, kDenBands, record->bandWidth);
    std::copy_n(kFactoryBands.end, kDenBands, record->bandEnd);
    std::copy_n(kFactoryBands.start, kDenBands, record->bandStart);
}

void DialogueEnhancementWide(float* io, float smoothFactor, float centerSpeechGain, float baseGain,
                             float wideAmount, float stereoOutput, const float* wideCurve,
                             const float* bandEnd, const float* bandStart) {
    if (!state.notEmpty) {
        state = State{};
        state.notEmpty = true;
    }
    const bool unityGains = centerSpeechGain == 1.0f && baseGain == 1.0f;
    const bool sidesUntouched = unityGains && wideAmount == 0.0f;
    if (sidesUntouched && stereoOutput == 1.0f) {
        halve(io);
        return;
    }
    DenSpectra s;
    const DenBands bands = bands_of(bandStart, bandEnd);
    turn_history();
    analyse(io, s);
    if (wideAmount > 0.0f) {
        widen(wideAmount, wideCurve, s);
    }
    if (!(unityGains && stereoOutput == 1.0f)) {
        den_extract_centre(bands, smoothFactor, !sidesUntouched, state.powerSm, s);
    }
    if (centerSpeechGain > 1.0f) {
        boost_speech(bands, centerSpeechGain, baseGain, s);
    }
    synthesise_centre(s, io);
    if (sidesUntouched) {
        subtract_centre(io);
    } else {
        synthesise_sides(s, io);
    }
    if (stereoOutput != 0.0f) {
        fold_centre(io);
    }
    reset_if_poisoned();
}

void bdiff_sm_not_empty_init() {
    state.notEmpty = false;
}

}  // namespace android
