// What the tools say about the settings, against the engine itself.
#include <gtest/gtest.h>
#include <cmath>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/tools/settings_probe.h"
#include "tools/zoq/tuning/key_names.h"
#include "tools/zoq/tuning/reports.h"
#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {
namespace {

using android::b_parameterMEM;
using Kind = android::Setting::Kind;

const android::Setting& setting(int row) {
    return android::settings()[row];
}

TEST(Params, EveryRowIsDocumentedUnderItsOwnName) {
    for (int row = 0; row < android::kSettings; ++row) {
        const SettingDoc& doc = setting_doc(row);
        ASSERT_STREQ(doc.key, any_spelling(row));
        EXPECT_GT(std::strlen(doc.meaning), 10u) << doc.key;
        EXPECT_EQ(setting(row).derived != nullptr, doc.chain && doc.chain->initial) << doc.key;
    }
}

// The engine's validation, found by trying values around the documented range and far away.
TEST(Params, RangesAndFallbacksAreTheEnginesOwn) {
    constexpr float kFar = 1e30f, kInfinity = std::numeric_limits<float>::infinity();
    const auto after_validation = [](int row, float value) {
        *setting(row).stored = value;
        android::validate_state();
        return *setting(row).stored;
    };
    for (int row = 0; row < android::kSettings; ++row) {
        if (setting(row).kind != Kind::kNumber) {
            EXPECT_FALSE(setting_doc(row).validity) << row;
            continue;
        }
        const SettingDoc& doc = setting_doc(row);
        const float lo = doc.validity ? doc.validity->lo : -kFar, hi = doc.validity ? doc.validity->hi : kFar;
        for (const float inside : {lo, hi, (lo + hi) / 2.0f}) {
            EXPECT_EQ(after_validation(row, inside), inside) << doc.key;
        }
        EXPECT_TRUE(std::isnan(after_validation(row, std::nanf("")))) << doc.key;
        for (const float outside :
             {std::nextafter(lo, -kInfinity), std::nextafter(hi, kInfinity), -kInfinity}) {
            EXPECT_EQ(after_validation(row, outside), doc.validity ? doc.fallback : outside) << doc.key;
        }
        *setting(row).stored = 0.0f;
    }
}

TEST(Params, ThePredictionBeginsAsTheEngineDoesAtLoad) {
    b_parameterMEM = {};
    EXPECT_TRUE(engine_holds(Prediction()));
}

TEST(Params, FormulasAreTheEnginesOwn) {
    for (int row = 0; row < android::kSettings; ++row) {
        if (setting(row).derive == nullptr) {
            continue;
        }
        const ChainValue& chain = *setting_doc(row).chain;
        for (const float x : {-30.0f, 1.0f, 12.5f, 100.0f, 180.0f}) {
            EXPECT_NEAR(setting(row).derive(x), chain.slope * double(x) + chain.offset, 1e-5) << chain.field;
        }
    }
    EXPECT_EQ(derivation(setting_doc(find_any_case("DEN_centspeechgain"))), "centerSpeechGain = 0.02 x + 1");
    EXPECT_EQ(derivation(setting_doc(find_any_case("HIFIPARA"))), "");
}

// Plays one frame and returns the compression settings that the frame driver left in the route's record.
android::parameterDRC compression_after_frame(int headphone, int volumeIndex) {
    int16_t frame[1024] = {};
    b_parameterMEM.stereoWidenEnable = 1;
    b_parameterMEM.headphoneMode = headphone;
    b_parameterMEM.volumeIndex = volumeIndex;
    android::widening_frame(1, headphone, frame, 1024, 48000, 2);
    return headphone != 0 ? android::b_parameterX2B.headphoneDrc : android::b_parameterDRC;
}

TEST(Params, WhatIsFormedBeforeEveryFrameIsTheEnginesOwn) {
    b_parameterMEM = {};
    start_engine("compressionGain 37.3 headphone_compressionGain 81.7");
    Prediction prediction;
    prediction.initialise();
    std::vector<int> bands[2];
    for (int row = 0; row < android::kSettings; ++row) {
        const std::string key = any_spelling(row);
        if (key.find("EQ_") != std::string::npos && key.find("hz") != std::string::npos) {
            android::apply_setting(setting(row), std::to_string(row).c_str());
            prediction.apply(row, std::to_string(row));
            bands[key[0] == 'H'].push_back(row);
        }
    }
    const int speaker = find_any_case("CompressionGain"),
              headphone = find_any_case("Headphone_CompressionGain");
    prediction.apply(speaker, "37.3");
    prediction.apply(headphone, "81.7");

    struct Case {
        int headphone, volumeIndex;
        float gainDb;
    };
    for (const Case& c :
         {Case{0, 15, *prediction.chain_value(speaker)}, Case{0, 16, *prediction.chain_value(speaker, true)},
          Case{1, 15, *prediction.chain_value(headphone)}}) {
        const android::parameterDRC found = compression_after_frame(c.headphone, c.volumeIndex);
        android::parameterDRC expected = found;
        android::initialize_dynamicRangeCompression_C(c.gainDb, &expected);
        EXPECT_EQ(std::memcmp(&found, &expected, sizeof found), 0) << c.gainDb << " dB";
        for (size_t band = 0; band < 9; ++band) {
            EXPECT_EQ(android::b_parameterGEQ.bandGainDb[band],
                      prediction.chain_value(bands[c.headphone].at(band)));
        }
    }
}

TEST(Params, UnknownKeysComeWithTheNearestOne) {
    EXPECT_NE(unknown_key("EQ_63hzgain").find("EQ_62hzgain"), std::string::npos);
    EXPECT_NE(unknown_key("speechgain").find("DEN_centspeechgain"), std::string::npos);
    EXPECT_NE(unknown_key("bass").find("VB_boostlin"), std::string::npos);
    EXPECT_FALSE(nearest_key("loudspeaker"));
}

TEST(Params, ReportsNameEverySetting) {
    std::ostringstream text, json;
    print_settings(text);
    print_settings_json(json);
    const nlohmann::json parsed = nlohmann::json::parse(json.str());
    ASSERT_EQ(parsed.size(), size_t{android::kSettings});
    for (int row = 0; row < android::kSettings; ++row) {
        EXPECT_NE(text.str().find(any_spelling(row)), std::string::npos);
        std::ostringstream one;
        print_setting(one, row);
        EXPECT_NE(one.str().find(setting_doc(row).meaning), std::string::npos);
    }
    const auto bass = parsed[static_cast<size_t>(find_any_case("VB_boostlin"))];
    EXPECT_EQ(bass["valid_range"], nlohmann::json({0, 100}));
    EXPECT_EQ(bass["fallback"], 25);
    EXPECT_EQ(bass["chain"]["default"], 2.5);
}

}  // namespace
}  // namespace zoq
