// The one table of settings: what parameter strings, the configuration file and the tools know by name.
//
// Each setting exists twice: the host's value in the engine state and the value derived from it in a module
// record, which the chain uses; both are written by the same call. Control threads write while the audio
// thread reads; every value is one word written whole.
#pragma once

#include <cstddef>
#include <cstdint>

namespace android {

struct Setting {
    enum class Kind {
        kSwitch,  // the processing switch, with a text as its value
        kDevice,  // the output-device mask, an integer
        kVolume,  // the volume threshold, an integer
        kNumber,  // a number, stored and derived in single precision
    };

    Kind kind;
    const char* stringKey;  // in parameter strings; null when not known there
    const char* fileKey;    // in the configuration file; null when not known there
    float* stored;          // kNumber: the host's value in the engine state
    float* derived;         // kNumber: the record field the chain uses; null when there is none
    float (*derive)(float);
};

inline constexpr int kSettings = 28;

// In the order in which a parameter string's keys are looked up.
const Setting* settings();

// Parses a value as the setting's kind asks for and stores it, unchecked, with what derives from it.
void apply_setting(const Setting& setting, const char* value);

// The current value as the parameter strings' answers spell it: six decimals, or the switch's text.
void format_setting(const Setting& setting, char* buffer, size_t size);

}  // namespace android
