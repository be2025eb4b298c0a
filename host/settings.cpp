#include "host/settings.h"

#include <cstdio>
#include <cstring>

#include "dsp/shared_value.h"
#include "host/engine_state.h"
#include "host/locale_free.h"

namespace android {

namespace {

using Kind = Setting::Kind;

constexpr char kSwitchOn[] = "STEREOWIDEN_Enable=true";
constexpr char kSwitchOff[] = "STEREOWIDEN_Enable=false";

float bass_boost(float percent) {
    const float boost = percent * 5.0f / 100.0f;
    return boost == 0.0f ? -1.0f : boost;  // -1 switches the module off
}

float treble_gain(float percent) {
    return (percent + percent) / 100.0f;
}

float width(float percent) {
    return percent / 100.0f;
}

float speech_gain(float percent) {
    return (percent + percent) / 100.0f + 1.0f;
}

constexpr Setting number(const char* stringKey, const char* fileKey, float* stored) {
    return {Kind::kNumber, stringKey, fileKey, stored, nullptr, nullptr};
}

constexpr Setting number(const char* key, float* stored, float* derived, float (*derive)(float)) {
    return {Kind::kNumber, key, key, stored, derived, derive};
}

constexpr Setting band(const char* key, float* stored) {
    return number(key, key, stored);
}

parameterMEM& mem = b_parameterMEM;

const Setting kTable[kSettings] = {
    {Kind::kSwitch, "HIFIPARA", nullptr, nullptr, nullptr, nullptr},
    {Kind::kDevice, "output_device", nullptr, nullptr, nullptr, nullptr},
    number("CompressionGain", "compressionGain", &mem.compressionGain),
    number("Headphone_CompressionGain", "headphone_compressionGain", &mem.headphoneCompressionGain),
    number("VB_boostlin", &mem.vbBoostlin, &b_parameterVB.boostLin, bass_boost),
    number("EQ_trebleBoost", &mem.eqTrebleBoost, &b_parameterEQ.trebleGain, treble_gain),
    number("DS_stereoWidth", &mem.dsStereoWidth, &b_parameterTWS.stereoWidth, width),
    number("HP_SurroundWidth", &mem.hpSurroundWidth, &b_parameterX2B.surroundWidth, width),
    number("DEN_centspeechgain", &mem.denCentSpeechGain, &b_parameterDEN.centerSpeechGain, speech_gain),
    band("EQ_62hzgain", &mem.eqBandGain[0]),
    band("EQ_125hzgain", &mem.eqBandGain[1]),
    band("EQ_250hzgain", &mem.eqBandGain[2]),
    band("EQ_500hzgain", &mem.eqBandGain[3]),
    band("EQ_1khzgain", &mem.eqBandGain[4]),
    band("EQ_2khzgain", &mem.eqBandGain[5]),
    band("EQ_4khzgain", &mem.eqBandGain[6]),
    band("EQ_8khzgain", &mem.eqBandGain[7]),
    band("EQ_16khzgain", &mem.eqBandGain[8]),
    band("Headphone_EQ_62hzgain", &mem.headphoneEqBandGain[0]),
    band("Headphone_EQ_125hzgain", &mem.headphoneEqBandGain[1]),
    band("Headphone_EQ_250hzgain", &mem.headphoneEqBandGain[2]),
    band("Headphone_EQ_500hzgain", &mem.headphoneEqBandGain[3]),
    band("Headphone_EQ_1khzgain", &mem.headphoneEqBandGain[4]),
    band("Headphone_EQ_2khzgain", &mem.headphoneEqBandGain[5]),
    band("Headphone_EQ_4khzgain", &mem.headphoneEqBandGain[6]),
    band("Headphone_EQ_8khzgain", &mem.headphoneEqBandGain[7]),
    band("Headphone_EQ_16khzgain", &mem.headphoneEqBandGain[8]),
    {Kind::kVolume, nullptr, "volume_index_switch", nullptr, nullptr, nullptr},
};

void apply_switch(const char* value) {
    if (std::strcmp(value, kSwitchOn) == 0) {
        store_shared(mem.stereoWidenEnable, 1);
    } else if (std::strcmp(value, kSwitchOff) == 0) {
        store_shared(mem.stereoWidenEnable, 0);
    }
}

void apply_number(const Setting& setting, float x) {
    store_shared(*setting.stored, x);
    if (setting.derived != nullptr) {
        store_shared(*setting.derived, setting.derive(x));
    }
}

}  // namespace

const Setting* settings() {
    return kTable;
}

void apply_setting(const Setting& setting, const char* value) {
    switch (setting.kind) {
        case Kind::kSwitch:
            apply_switch(value);
            break;
        case Kind::kDevice:
            store_shared(gCurOutputDevice, parse_int(value));
            break;
        case Kind::kVolume:
            store_shared(mem.volumeIndexSwitch, parse_int(value));
            break;
        case Kind::kNumber:
            apply_number(setting, static_cast<float>(parse_double(value)));
            break;
    }
}

void format_setting(const Setting& setting, char* buffer, size_t size) {
    switch (setting.kind) {
        case Kind::kSwitch:
            std::snprintf(buffer, size, "%s",
                          load_shared(mem.stereoWidenEnable) == 1 ? kSwitchOn : kSwitchOff);
            break;
        case Kind::kDevice:
            std::snprintf(buffer, size, "%d", load_shared(gCurOutputDevice));
            break;
        case Kind::kVolume:
            std::snprintf(buffer, size, "%d", load_shared(mem.volumeIndexSwitch));
            break;
        case Kind::kNumber:
            format_float(buffer, size, load_shared(*setting.stored), 6);
            break;
    }
}

}  // namespace android
