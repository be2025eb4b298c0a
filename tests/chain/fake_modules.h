// The modules' functions, noting who was called with what, in place of the modules: the chain is tested alone.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "chain/frame_chain.h"

namespace fake_modules {

struct Call {
    std::string name;
    std::vector<float> numbers;         // scalar arguments, in order
    std::vector<const void*> pointers;  // pointer arguments, in order
    std::vector<float> buffer;          // what the input buffer held
};

inline std::vector<Call> calls;
inline std::function<void(float* io)> enhance;  // what dialogue enhancement does to its three blocks

inline std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const Call& call : calls) {
        all.push_back(call.name);
    }
    return all;
}

inline const Call& call(const std::string& name) {
    for (const Call& candidate : calls) {
        if (candidate.name == name) {
            return candidate;
        }
    }
    static const Call none{};
    return none;
}

inline void note(const char* name, std::vector<float> numbers = {}, std::vector<const void*> pointers = {},
                 const float* buffer = nullptr, size_t length = 0) {
    calls.push_back({name, std::move(numbers), std::move(pointers), {buffer, buffer + length}});
}

constexpr size_t kFrames = 3 * android::kFrameSamples, kHops = 2 * android::kHopSamples;

}  // namespace fake_modules

namespace android {

using fake_modules::kFrames;
using fake_modules::kHops;
using fake_modules::note;

void DialogueEnhancementWide(float* io, float smooth, float speech, float base, float wide, float stereo,
                             const float* curve, const float* end, const float* start) {
    note("den", {smooth, speech, base, wide, stereo}, {io, curve, end, start}, io, kFrames);
    if (fake_modules::enhance) {
        fake_modules::enhance(io);
    }
}

void TWSmobile_freq(const float* in, const parameterTWS* parameters, float* out) {
    note("tws", {}, {parameters, out}, in, kFrames);
    std::fill_n(out, kHops, 0.25f);
}

void X2Binaural_v1(const float* in, float channels, const parameterX2B* parameters, float width, float* out) {
    note("x2b", {channels, width}, {parameters, out}, in, kFrames);
    std::fill_n(out, kHops, 0.75f);
}

void graphicalEQ(float* io, float channels, float count, const float* gains, float q, const float* warp) {
    note("geq", {channels, count, q}, {io, gains, warp}, io, kHops);
}

void virtualbassFunction_monoLC(float* io, float channels, const parameterVB* parameters, float boost) {
    note("vb", {channels, boost}, {io, parameters}, io, kHops);
}

void equalization_peak(float* io, float channels, float peaks, const float* peakSos, float trebles,
                       const float* trebleSos, float trebleGain, const float* finalSos, float passes) {
    note("eq", {channels, peaks, trebles, trebleGain, passes}, {io, peakSos, trebleSos, finalSos}, io, kHops);
}

void dynamicRangeCompression_LC(float* io, float channels, const float* first, const float* second,
                                const float* expander) {
    note("drc", {channels}, {io, first, second, expander}, io, kHops);
}

void bdiff_sm_not_empty_init() {
    note("den reset");
}
void virtualbassFunction_monoLC_init() {
    note("vb reset");
}
void X2Binaural_v1_init() {
    note("x2b reset");
}
void graphicalEQ_init() {
    note("geq reset");
}

void graphicalEQ_forget() {}
void equalization_peak_init() {
    note("eq reset");
}
void state_not_empty_init() {
    note("drc reset");
}

}  // namespace android
