// The settings as a host knows them, listed a second time: keys, where they are stored and what derives from
// them. Derived values are formed in double precision and rounded after each operation.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "zoq2processing.h"

struct SettingRow {
    std::string stringKey, fileKey;
    const float* stored;
    const float* derived;
    float (*expected)(double percent);
};

inline double rounded(double x) {
    return static_cast<double>(static_cast<float>(x));
}

inline std::vector<SettingRow> setting_rows() {
    const android::parameterMEM& mem = android::b_parameterMEM;
    const auto bass = [](double x) {
        const double boost = rounded(rounded(x * 5.0) / 100.0);
        return boost == 0.0 ? -1.0f : static_cast<float>(boost);
    };
    const auto twice = [](double x) { return static_cast<float>(rounded(2.0 * x) / 100.0); };
    const auto width = [](double x) { return static_cast<float>(x / 100.0); };
    const auto speech = [](double x) { return static_cast<float>(rounded(rounded(2.0 * x) / 100.0) + 1.0); };
    std::vector<SettingRow> rows = {
        {"CompressionGain", "compressionGain", &mem.compressionGain, nullptr, nullptr},
        {"Headphone_CompressionGain", "headphone_compressionGain", &mem.headphoneCompressionGain, nullptr,
         nullptr},
        {"VB_boostlin", "VB_boostlin", &mem.vbBoostlin, &android::b_parameterVB.boostLin, bass},
        {"EQ_trebleBoost", "EQ_trebleBoost", &mem.eqTrebleBoost, &android::b_parameterEQ.trebleGain, twice},
        {"DS_stereoWidth", "DS_stereoWidth", &mem.dsStereoWidth, &android::b_parameterTWS.stereoWidth, width},
        {"HP_SurroundWidth", "HP_SurroundWidth", &mem.hpSurroundWidth, &android::b_parameterX2B.surroundWidth,
         width},
        {"DEN_centspeechgain", "DEN_centspeechgain", &mem.denCentSpeechGain,
         &android::b_parameterDEN.centerSpeechGain, speech},
    };
    const char* const bands[] = {"62", "125", "250", "500", "1k", "2k", "4k", "8k", "16k"};
    for (size_t k = 0; k < 9; ++k) {
        const std::string key = "EQ_" + std::string(bands[k]) + "hzgain", headphone = "Headphone_" + key;
        rows.push_back({key, key, &mem.eqBandGain[k], nullptr, nullptr});
        rows.push_back({headphone, headphone, &mem.headphoneEqBandGain[k], nullptr, nullptr});
    }
    return rows;
}

// A value as a host may write it and what it is to be stored as.
struct ValueText {
    const char* text;
    double value;  // before it is rounded to single precision
};

inline const std::vector<ValueText>& value_texts() {
    static const std::vector<ValueText> texts = {
        {"0", 0.0},
        {"-0", -0.0},
        {"50", 50.0},
        {"100", 100.0},
        {"150", 150.0},
        {"33.3", 33.3},
        {"-7.7e1", -77.0},
        {"+.125x", 0.125},
        {"12,5", 12.0},
        {"0x10", 16.0},
        {"0x1.8p1", 3.0},
        {"abc", 0.0},
        {"-", 0.0},
        {"1e39", 1e39},
        {"-1e39", -1e39},
        {"1e-46", 1e-46},
        {"1e-44", 1e-44},
        {"inf", HUGE_VAL},
        {"-Infinity", -HUGE_VAL},
        {"nan", std::nan("")},
        {"1e400", HUGE_VAL},
        {"00070.0000", 70.0},
        // Just above the middle of two floats; read as a double it lies in the middle and goes to the even one.
        {"1.00000005960464477540", 1.0},
        {"99999999999999999999999999999999999999999", 1e41},
    };
    return texts;
}

// Whether two floats are the same value; any not-a-number equals any other.
inline bool same(float a, float b) {
    return a == b || (a != a && b != b);
}
