// Set and get against a second list of the settings.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <random>

#include "tests/host/comma_locale.h"
#include "tests/host/engine.h"
#include "tests/host/setting_rows.h"

using namespace android;

namespace {

std::string get(const std::string& keys) {
    return ZOQ_PARAMS_GET(String8(keys.c_str())).string();
}

std::string answered(float value) {
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, "%f", static_cast<double>(value));
    return std::string(buffer).substr(0, 31);
}

class Parameters : public ::testing::Test {
  protected:
    Parameters() {
        engine::fresh_engine();
        b_parameterMEM = {};
    }
    const std::vector<SettingRow> rows = setting_rows();
};

TEST_F(Parameters, EveryKeyStoresDerivesAndAnswers) {
    for (const SettingRow& row : rows) {
        for (const ValueText& value : value_texts()) {
            SCOPED_TRACE(row.stringKey + "=" + value.text);
            b_parameterMEM = {};
            engine::set((row.stringKey + "=" + value.text).c_str());
            const float x = static_cast<float>(value.value);
            EXPECT_TRUE(same(*row.stored, x)) << *row.stored;
            if (row.derived != nullptr) {
                EXPECT_TRUE(same(*row.derived, row.expected(double(x)))) << *row.derived;
            }
            const std::string answer = get(row.stringKey + "=5");
            EXPECT_EQ(answer, row.stringKey + "=" +
                                  (std::isnan(x) ? answer.substr(row.stringKey.size() + 1) : answered(x)));
            const float* const settings = &b_parameterMEM.compressionGain;
            for (int i = 0; i < 25; ++i) {
                EXPECT_TRUE(settings + i == row.stored || settings[i] == 0.0f) << "setting " << i;
            }
        }
    }
    EXPECT_EQ(rows.size(), 25u);
}

TEST_F(Parameters, BehavesLikeAMapOverManyStrings) {
    std::mt19937 generator(12);
    std::map<std::string, float> model;
    std::string all = "HIFIPARA;output_device;volume_index_switch";
    std::map<std::string, float> derived;
    bool enabled = false;
    int32_t device = gCurOutputDevice;
    for (const SettingRow& row : rows) {
        model[row.stringKey] = 0.0f;
        derived[row.stringKey] = row.derived != nullptr ? *row.derived : 0.0f;
        all = row.stringKey + ";" + all;
    }
    const char* const strangers[] = {"compressionGain=9",
                                     "headphone_compressionGain=9",
                                     "=9",
                                     "x",
                                     "vb_boostlin=9",
                                     "volume_index_switch=9",
                                     "VB_boostlin =9",
                                     " VB_boostlin=9"};
    for (int n = 0; n < 500; ++n) {
        std::string pairs;
        std::map<std::string, float> given;
        for (auto count = generator() % 9; count > 0; --count) {
            const SettingRow& row = rows[generator() % rows.size()];
            const ValueText& value = value_texts()[generator() % value_texts().size()];
            pairs += row.stringKey + "=" + value.text + (generator() % 2 == 0 ? ";" : ";;");
            given[row.stringKey] = static_cast<float>(value.value);
            pairs += std::string(strangers[generator() % std::size(strangers)]) + ";";
        }
        // Of two texts for the switch, and of two devices, the last holds.
        for (auto count = generator() % 3; count > 0; --count) {
            enabled = generator() % 2 == 0;
            pairs += std::string("HIFIPARA=STEREOWIDEN_Enable=") + (enabled ? "true;" : "false;");
            device = static_cast<int32_t>(generator() % 1000);
            pairs += "output_device=" + std::to_string(device) + ";";
        }
        engine::set(pairs.c_str());
        ASSERT_EQ(gCurOutputDevice, device) << pairs;
        std::string answer;
        for (auto& [key, value] : model) {
            value = given.contains(key) ? given[key] : value;
            if (key == "HP_SurroundWidth") {
                answer += std::string("HIFIPARA=STEREOWIDEN_Enable=") + (enabled ? "true;" : "false;");
            }
            answer += key + "=" + answered(value) + ";";
        }
        answer.pop_back();
        ASSERT_EQ(get(all), answer) << pairs;
        for (const SettingRow& row : rows) {
            if (row.derived != nullptr && given.contains(row.stringKey)) {
                derived[row.stringKey] = row.expected(double(given[row.stringKey]));
            }
            ASSERT_TRUE(row.derived == nullptr || same(*row.derived, derived[row.stringKey])) << pairs;
        }
    }
    engine::set("output_device=2");
    EXPECT_EQ(b_parameterMEM.volumeIndexSwitch, 0);
}

TEST_F(Parameters, TheSwitchTakesTwoTextsOnly) {
    const std::pair<const char*, int> steps[] = {{"STEREOWIDEN_Enable=true", 1},
                                                 {"STEREOWIDEN_Enable=TRUE", 1},
                                                 {"STEREOWIDEN_Enable=false ", 1},
                                                 {"", 1},
                                                 {"1", 1},
                                                 {"STEREOWIDEN_Enable=false", 0},
                                                 {"STEREOWIDEN_Enable", 0},
                                                 {"true", 0},
                                                 {"STEREOWIDEN_Enable=true", 1}};
    for (const auto& [value, expected] : steps) {
        engine::set((std::string(zoq_switch) + "=" + value).c_str());
        EXPECT_EQ(b_parameterMEM.stereoWidenEnable, expected) << value;
        EXPECT_EQ(get("HIFIPARA"),
                  expected == 1 ? "HIFIPARA=STEREOWIDEN_Enable=true" : "HIFIPARA=STEREOWIDEN_Enable=false");
    }
    b_parameterMEM.stereoWidenEnable = 2;
    EXPECT_EQ(get("HIFIPARA;CompressionGain"), "CompressionGain=0.000000;HIFIPARA=STEREOWIDEN_Enable=false");
}

TEST_F(Parameters, TheDeviceIsADecimalIntegerAndIsNotAnswered) {
    const std::pair<const char*, int32_t> cases[] = {{"8", 8},
                                                     {"0x8", 0},
                                                     {" -1z", -1},
                                                     {"", 0},
                                                     {"12.9", 12},
                                                     {"9999999999999999999999", 2147483647},
                                                     {"-2147483648", std::numeric_limits<int32_t>::min()}};
    for (const auto& [value, expected] : cases) {
        engine::set((std::string("output_device=") + value).c_str());
        EXPECT_EQ(gCurOutputDevice, expected) << value;
    }
    EXPECT_EQ(get("output_device"), "");
    EXPECT_EQ(get(""), "");
    engine::set("output_device=2");
}

TEST_F(Parameters, HostileStringsDoNoHarm) {
    const std::string megabyte(1 << 20, '7');
    engine::set(("VB_boostlin=" + megabyte).c_str());
    EXPECT_EQ(b_parameterMEM.vbBoostlin, HUGE_VALF);
    engine::set((megabyte + ";DS_stereoWidth=40;" + megabyte + "=" + megabyte).c_str());
    EXPECT_EQ(b_parameterMEM.dsStereoWidth, 40.0f);
    engine::set("EQ_1khzgain=\x01\x02\x7f;\r\n;EQ_2khzgain=\v\f 3\x80;%n%s%s=%n;HIFIPARA=%s");
    EXPECT_EQ(get("EQ_1khzgain;EQ_2khzgain;%n%s;" + megabyte), "EQ_1khzgain=0.000000;EQ_2khzgain=3.000000");
    engine::set("");
    ZOQ_PARAMS_SET(String8());
    ZOQ_PARAMS_SET(String8(static_cast<const char*>(nullptr)));
    EXPECT_EQ(pthread_mutex_trylock(&glock_ZOQ), 0);
    EXPECT_EQ(pthread_mutex_unlock(&glock_ZOQ), 0);
}

TEST_F(Parameters, TheLocaleDoesNotMatter) {
    const CommaLocale locale(ZOQ_TEST_LOCALES);
    if (!locale.works()) {
        GTEST_SKIP() << "no locale with a decimal comma";
    }
    engine::set("DS_stereoWidth=12.5;EQ_62hzgain=1,5");
    EXPECT_EQ(b_parameterMEM.dsStereoWidth, 12.5f);
    EXPECT_EQ(get("DS_stereoWidth;EQ_62hzgain"), "DS_stereoWidth=12.500000;EQ_62hzgain=1.000000");
    EXPECT_TRUE(locale.works()) << "the process' locale is the host's";
}

}  // namespace
