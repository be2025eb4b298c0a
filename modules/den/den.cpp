#include "modules/den/den.h"

#include <algorithm>
#include <cmath>

#include "dsp/complex.h"
#include "dsp/fft.h"
#include "dsp/fft_tables.h"
#include "dsp/grid.h"
#include "dsp/poison.h"
#include "modules/den/den_tables.h"

namespace android {

namespace {

constexpr int kCentreBands = 34;  // the centre is looked for up to 8.6 kHz
constexpr int kSpeechBands = 33;  // speech is judged and boosted up to 7.7 kHz
constexpr int kHistoryHops = 4;   // two newer against two older: some 40 ms, the pace of syllables

// Bands whose fluctuation counts; the lowest three hold bass and hum.
constexpr int kFirstFluctuationBand = 3, kLastFluctuationBand = 30;

// Bins moved by the widening, about 1.45 to 12 kHz, where the ear takes direction from level differences.
constexpr int kFirstWideBin = 31, kLastWideBin = 255;

constexpr float kQuotientGuard = 1e-15f;  // keeps quotients of empty bins finite
constexpr float kPowerGuard = 0.0001f;    // a band below this power counts as empty

constexpr float kNewEnergy = 0.2f, kOldEnergy = 0.8f;      // smoothing of the band energies, per hop
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

// Sums of magnitudes per band of one hop.
struct Magnitudes {
    float centre[kSpeechBands], side[kSpeechBands];
};

struct State {
    bool notEmpty;  // reset: false, so the next call zeroes all that follows
    float bdiffSm;  // smoothed speech activity, not clamped
    float sidePowerSm[kCentreBands];
    float midPowerSm[kCentreBands];
    float centerEnergySm[kSpeechBands];
    float sideEnergySm[kSpeechBands];
    Magnitudes history[kHistoryHops];  // slot 0 is the newest; only hops that look for speech write it
};

State state;

// The three half spectra of a frame.
struct Spectra {
    creal32_T left[kBins], right[kBins], centre[kBins];
};

// Bins first .. end - 1, counted from 0.
struct Band {
    int first, end;
};

struct Gains {
    float left, right;
};

// A column of the pan curve, highest power first.
struct Cubic {
    float c0, c1, c2, c3;
};

float clamp_to_unit(float x) {
    return x < 0.0f ? 0.0f : x > 1.0f ? 1.0f : x;
}

// Truncates; whatever is not at least 1 counts as 1.
int index_within(float value, int last) {
    if (!(value >= 1.0f)) {
        return 1;
    }
    return value < float(last) ? int(value) : last;
}

Band band_of(const float* bandStart, const float* bandEnd, int j) {
    return {index_within(bandStart[j], kBins) - 1, index_within(bandEnd[j], kBins)};
}

void halve(float* io) {
    for (int n = 0; n < 3 * kFrameSamples; ++n) {
        io[n] = io[n] * 0.5f;
    }
}

void rotate_history() {
    std::rotate(state.history, state.history + kHistoryHops - 1, state.history + kHistoryHops);
}

// io keeps the unwindowed frames.
void analyse(const float* io, Spectra& s) {
    float windowed[2][kFrameSamples];
    for (int n = 0; n < kFrameSamples; ++n) {
        windowed[0][n] = io[n] * kSineWindow[n];
        windowed[1][n] = io[kFrameSamples + n] * kSineWindow[n];
    }
    split_stereo_spectrum(windowed[0], windowed[1], s.left, s.right);
    std::fill(s.centre, s.centre + kBins, creal32_T{});
}

// p runs from -1 (left) to +1 (right); the gains meet at 0.706 in the middle.
Gains pan_law_gains(float p) {
    const float x = (p + 1.0f) * 0.5f;
    const float left = (-0.8338f * x - 0.2086f) * x + 1.0189f;
    const float right = (-0.8338f * x + 1.8762f) * x - 0.0235f;
    return {clamp_to_unit(left), clamp_to_unit(right)};
}

// The less two channels have in common, the farther out the louder one pulls the bin.
float pan_index(creal32_T l, creal32_T r) {
    const float leftPower = squared_magnitude(l), rightPower = squared_magnitude(r);
    const creal32_T cross{l.re * r.re + l.im * r.im, l.im * r.re - l.re * r.im};
    const float likeness =
        rdivide(2.0f * std::sqrt(squared_magnitude(cross)), leftPower + rightPower + kQuotientGuard);
    const float difference = rightPower - leftPower;
    const float side = difference > 0.0f ? 1.0f : difference < 0.0f ? -1.0f : 0.0f;
    return (1.0f - likeness) * side;
}

float moved_pan_index(const Cubic& curve, float p) {
    const float u = p > 0.0f ? p : -p;
    const float moved = ((curve.c0 * u + curve.c1) * u + curve.c2) * u + curve.c3;
    return p > 0.0f ? clamp_to_unit(moved) : -clamp_to_unit(moved);
}

void widen(float wideAmount, const float* wideCurve, Spectra& s) {
    const float column = std::floor((wideAmount * 0.25f) * 100.0f);
    const float* c = wideCurve + index_within(column, kDenCurveColumns) - 1;
    const Cubic curve{c[0], c[kDenCurveColumns], c[2 * kDenCurveColumns], c[3 * kDenCurveColumns]};
    for (int k = kFirstWideBin; k <= kLastWideBin; ++k) {
        const float p = pan_index(s.left[k], s.right[k]);
        const Gains before = pan_law_gains(p);
        const Gains after = pan_law_gains(moved_pan_index(curve, p));
        s.left[k] = s.left[k] * rdivide(after.left, before.left + kQuotientGuard);
        s.right[k] = s.right[k] * rdivide(after.right, before.right + kQuotientGuard);
    }
}

// The weaker the side against the mid, the more of the mid is centre.
float centre_gain(float side, float mid) {
    if (side > mid) {
        return 0.0f;
    }
    return (1.0f - std::sqrt(side / (mid + kPowerGuard))) * 0.5f;
}

void extract_centre(const float* bandStart, const float* bandEnd, float smoothFactor, bool subtract,
                    Spectra& s) {
    const float newWeight = 1.0f - smoothFactor;
    for (int j = 0; j < kCentreBands; ++j) {
        const Band band = band_of(bandStart, bandEnd, j);
        creal32_T side{}, mid{};
        for (int k = band.first; k < band.end; ++k) {
            side = side + (s.left[k] - s.right[k]);
            mid = mid + (s.left[k] + s.right[k]);
        }
        float& sidePower = state.sidePowerSm[j];
        float& midPower = state.midPowerSm[j];
        sidePower = newWeight * squared_magnitude(side) + smoothFactor * sidePower;
        midPower = newWeight * squared_magnitude(mid) + smoothFactor * midPower;
        const float gain = centre_gain(sidePower, midPower);
        for (int k = band.first; k < band.end; ++k) {
            s.centre[k] = (s.left[k] + s.right[k]) * gain;
            if (subtract) {
                s.left[k] = s.left[k] - s.centre[k];
                s.right[k] = s.right[k] - s.centre[k];
            }
        }
    }
}

// Records the hop's magnitudes and returns each band's share of the centre.
void measure_bands(const float* bandStart, const float* bandEnd, const Spectra& s, float* share) {
    for (int j = 0; j < kSpeechBands; ++j) {
        const Band band = band_of(bandStart, bandEnd, j);
        float centreMagnitude = 0.0f, sideMagnitude = 0.0f, centreEnergy = 0.0f, sideEnergy = 0.0f;
        for (int k = band.first; k < band.end; ++k) {
            const float centrePower = squared_magnitude(s.centre[k]);
            const float sidePower = squared_magnitude(s.left[k] - s.right[k]);
            centreMagnitude += std::sqrt(centrePower);
            sideMagnitude += std::sqrt(sidePower);
            centreEnergy += centrePower;
            sideEnergy += sidePower;
        }
        state.history[0].centre[j] = centreMagnitude;
        state.history[0].side[j] = sideMagnitude;
        float& centre = state.centerEnergySm[j];
        float& side = state.sideEnergySm[j];
        centre = kNewEnergy * centreEnergy + kOldEnergy * centre;
        side = kNewEnergy * sideEnergy + kOldEnergy * side;
        share[j] = std::sqrt(centre / ((centre + kPowerGuard) + side));
    }
}

// -2 .. 2: whether the centre or the side fluctuates more between the two newer and the two older hops.
float fluctuation() {
    const Magnitudes* h = state.history;
    float centre = 0.0f, side = 0.0f;
    for (int j = kFirstFluctuationBand; j <= kLastFluctuationBand; ++j) {
        const float centreStep = (h[0].centre[j] + h[1].centre[j]) - (h[2].centre[j] + h[3].centre[j]);
        const float sideStep = (h[0].side[j] + h[1].side[j]) - (h[2].side[j] + h[3].side[j]);
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
    return clamp_to_unit(smoothed);
}

void boost_speech(const float* bandStart, const float* bandEnd, float centerSpeechGain, float baseGain,
                  Spectra& s) {
    float share[kSpeechBands];
    measure_bands(bandStart, bandEnd, s, share);
    const float activity = speech_activity();
    for (int j = 0; j < kSpeechBands; ++j) {
        const float gain = baseGain + activity * (centerSpeechGain - 1.0f) * share[j];
        const Band band = band_of(bandStart, bandEnd, j);
        for (int k = band.first; k < band.end; ++k) {
            s.centre[k] = s.centre[k] * gain;
            s.left[k] = s.left[k] * gain;
            s.right[k] = s.right[k] * gain;
        }
    }
}

void synthesise_centre(const Spectra& s, float* io) {
    creal32_T frame[kFrameSamples];
    merge_mono_spectrum(s.centre, frame);
    for (int n = 0; n < kFrameSamples; ++n) {
        io[2 * kFrameSamples + n] = frame[n].re * kSineWindow[n];
    }
}

void synthesise_sides(const Spectra& s, float* io) {
    creal32_T frame[kFrameSamples];
    merge_stereo_spectrum(s.left, s.right, frame);
    for (int n = 0; n < kFrameSamples; ++n) {
        io[n] = frame[n].re * kSineWindow[n];
        io[kFrameSamples + n] = frame[n].im * kSineWindow[n];
    }
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
    if (is_poisoned(state.bdiffSm, kPoisonedActivity) || is_poisoned(state.sidePowerSm, kPoisonedPower) ||
        is_poisoned(state.midPowerSm, kPoisonedPower) || is_poisoned(state.centerEnergySm, kPoisonedPower) ||
        is_poisoned(state.sideEnergySm, kPoisonedPower) || is_poisoned(state.history, kPoisonedPower)) {
        bdiff_sm_not_empty_init();
        ++poisonResets;
    }
}

}  // namespace

void factory_contents(parameterDEN* record) {
    record->smoothFactor = 0.8f;
    record->centerSpeechGain = 2.0f;
    record->baseGain = 1.0f;
    record->wideAmount = 3.0f;
    record->stereoOutput = 0.0f;
    std::copy(&kWideCurve[0][0], &kWideCurve[0][0] + 4 * kDenCurveColumns, &record->wideCurve[0][0]);
    for (int j = 0, start = 1; j < kDenBands; start = kLastBin[j] + 1, ++j) {
        record->bandWidth[j] = float(kLastBin[j] - start + 1);
        record->bandEnd[j] = float(kLastBin[j]);
        record->bandStart[j] = float(start);
    }
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
    Spectra s;
    rotate_history();
    analyse(io, s);
    if (wideAmount > 0.0f) {
        widen(wideAmount, wideCurve, s);
    }
    if (!(unityGains && stereoOutput == 1.0f)) {
        extract_centre(bandStart, bandEnd, smoothFactor, !sidesUntouched, s);
    }
    if (centerSpeechGain > 1.0f) {
        boost_speech(bandStart, bandEnd, centerSpeechGain, baseGain, s);
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
