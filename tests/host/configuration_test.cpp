// The configuration file: tokens, keys and values, and what a path may lead to.
#include "host/configuration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "tests/host/engine.h"
#include "tests/host/setting_rows.h"

using namespace android;

namespace {

constexpr size_t kLimit = 131071;

void apply(const std::string& text) {
    apply_configuration_text(text.data(), text.size());
}

class Configuration : public ::testing::Test {
  protected:
    Configuration() { clear(); }
    static void clear() {
        b_parameterMEM = {};
        apply_defaults();
    }
    parameterMEM& mem = b_parameterMEM;
    const std::vector<SettingRow> rows = setting_rows();
};

TEST_F(Configuration, EveryKeyStoresAndDerives) {
    for (const SettingRow& row : rows) {
        for (const ValueText& value : value_texts()) {
            if (std::string(value.text).find(',') != std::string::npos) {
                continue;  // a separator here
            }
            SCOPED_TRACE(row.fileKey + " = " + value.text);
            clear();
            apply(row.fileKey + " = " + value.text);
            const float x = static_cast<float>(value.value);
            EXPECT_TRUE(same(*row.stored, x)) << *row.stored;
            if (row.derived != nullptr) {
                EXPECT_TRUE(same(*row.derived, row.expected(double(x)))) << *row.derived;
            }
        }
    }
}

TEST_F(Configuration, ReadsTokensInOrder) {
    const struct {
        const char* text;
        float compression, band62;
        int32_t volume;
    } cases[] = {
        {"", 0, 0, 15},
        {"compressionGain", 0, 0, 15},
        {"compressionGain=", 0, 0, 15},
        {"EQ_62hzgain 3 compressionGain", 0, 3, 15},
        {"compressionGain=70", 70, 0, 15},
        {"CompressionGain=70;Headphone_CompressionGain=1", 0, 0, 15},
        {"compressionGain,70", 70, 0, 15},
        {"[compressionGain]\r\n{\t70}", 70, 0, 15},
        {"compressionGain\v70", 0, 0, 15},
        {"{ EQ_62hzgain: 3 }", 0, 0, 15},
        {"# EQ_62hzgain 3", 0, 3, 15},
        {"EQ_62hzgain 3 4 EQ_62hzgain 5", 0, 5, 15},
        {"EQ_62hzgain compressionGain 5", 0, 0, 15},
        {"EQ_62hzgain compressionGain compressionGain 5", 5, 0, 15},
        {"EQ_62hzgain EQ_62hzgain EQ_62hzgain 5", 0, 5, 15},
        {"volume_index_switch 10.9", 0, 0, 10},
        {"volume_index_switch x", 0, 0, 0},
        {"volume_index_switch -99999999999", 0, 0, -2147483647 - 1},
        {"output_device 8 HIFIPARA STEREOWIDEN_Enable true", 0, 0, 15},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        clear();
        apply(c.text);
        EXPECT_EQ(mem.compressionGain, c.compression);
        EXPECT_EQ(mem.eqBandGain[0], c.band62);
        EXPECT_EQ(mem.volumeIndexSwitch, c.volume);
        EXPECT_EQ(mem.stereoWidenEnable, 0);
        EXPECT_EQ(gCurOutputDevice, 2);
    }
    clear();
    apply("VB_boostlin 0");
    EXPECT_EQ(b_parameterVB.boostLin, -1.0f);
}

TEST_F(Configuration, EndsAtTheLengthAtANulAndAtTheLimit) {
    apply_configuration_text(nullptr, 0);
    apply_configuration_text(nullptr, 100);
    apply_configuration_text("compressionGain 70", 17);
    EXPECT_EQ(mem.compressionGain, 7.0f);
    apply_configuration_text("compressionGain 60", SIZE_MAX);
    EXPECT_EQ(mem.compressionGain, 60.0f);
    apply(
        std::string("compressionGain 5\0"
                    "0 EQ_62hzgain 3",
                    33));
    EXPECT_EQ(mem.compressionGain, 5.0f);
    EXPECT_EQ(mem.eqBandGain[0], 0.0f);
    // The limit cuts 1234 at every place, and then the key before it.
    const std::string pair = "EQ_62hzgain 1234";
    for (const size_t cut : {0u, 1u, 2u, 3u, 4u, 5u}) {
        clear();
        apply(std::string(kLimit - pair.size() + cut, ' ') + pair + " EQ_125hzgain 9");
        const float expected[] = {1234.0f, 123.0f, 12.0f, 1.0f, 0.0f, 0.0f};
        EXPECT_EQ(mem.eqBandGain[0], expected[cut]);
        EXPECT_EQ(mem.eqBandGain[1], 0.0f);
    }
}

// The settings as a reading by streams leaves them: up to a NUL and the limit.
struct Model {
    std::vector<float> stored, derived;
    int32_t volume = 15;

    Model(std::string text, const std::vector<SettingRow>& rows) : stored(rows.size(), 0.0f) {
        for (const SettingRow& row : rows) {
            derived.push_back(row.derived != nullptr ? *row.derived : 0.0f);
        }
        text.resize(std::min({text.find('\0'), kLimit, text.size()}));
        std::replace_if(
            text.begin(), text.end(), [](char c) { return std::strchr(" ,;{}[]=\t\n\r", c) != nullptr; },
            ' ');
        std::stringstream stream(text);
        for (std::string key, value; std::getline(stream >> std::ws, key, ' ');) {
            const auto row =
                std::find_if(rows.begin(), rows.end(), [&](const auto& each) { return each.fileKey == key; });
            const bool known = row != rows.end() || key == "volume_index_switch";
            if (known && std::getline(stream >> std::ws, value, ' ')) {
                known_value(row - rows.begin(), row != rows.end() ? &*row : nullptr, value);
            }
        }
    }

    void known_value(std::ptrdiff_t index, const SettingRow* row, const std::string& value) {
        if (row == nullptr) {
            const double whole =
                std::trunc(std::atof(value.substr(0, value.find_first_of(".eExXnNpP")).c_str()));
            volume = static_cast<int32_t>(std::clamp(whole, -2147483648.0, 2147483647.0));
            return;
        }
        const auto known = std::find_if(value_texts().begin(), value_texts().end(),
                                        [&](const auto& each) { return each.text == value; });
        const double x = known != value_texts().end() ? known->value : std::strtod(value.c_str(), nullptr);
        const auto i = static_cast<size_t>(index);
        stored[i] = static_cast<float>(x);
        derived[i] = row->expected != nullptr ? row->expected(double(stored[i])) : 0.0f;
    }
};

std::string generated(std::mt19937& generator, const std::vector<SettingRow>& rows, size_t tokens) {
    static const std::string kSeparators = " ,;{}[]=\t\n\r";
    std::string text;
    for (; tokens > 0; --tokens) {
        const auto kind = generator() % 16;
        text += kind == 0   ? "volume_index_switch"
                : kind < 6  ? rows[generator() % rows.size()].fileKey
                : kind < 14 ? value_texts()[generator() % value_texts().size()].text
                            : "\x80:#";
        for (auto count = 1 + generator() % 3; count > 0; --count) {
            text += kSeparators[generator() % kSeparators.size()];
        }
    }
    return text;
}

// Texts of keys, values and rubbish between any separators: short ones, with a NUL somewhere, across the limit, and of a
// megabyte.
TEST_F(Configuration, AgreesWithAModelOnAnyText) {
    std::mt19937 generator(99);
    for (int n = 0; n < 2000; ++n) {
        std::string text = generated(generator, rows, n % 400 == 0 ? 100000 : generator() % 20);
        if (n % 5 == 1) {
            text.insert(generator() % (text.size() + 1), 1, '\0');
        } else if (n % 100 == 2) {
            text.insert(generator() % (text.size() + 1), kLimit - text.size() / 2, ' ');
        }
        clear();
        const Model model(text, rows);
        apply(text);
        for (size_t i = 0; i < rows.size(); ++i) {
            ASSERT_TRUE(same(*rows[i].stored, model.stored[i]))
                << rows[i].fileKey << " of " << text.substr(0, 500);
            ASSERT_TRUE(rows[i].derived == nullptr || same(*rows[i].derived, model.derived[i]))
                << rows[i].fileKey << " of " << text.substr(0, 500);
        }
        ASSERT_EQ(mem.volumeIndexSwitch, model.volume) << text.substr(0, 500);
    }
}

class Files : public Configuration {
  protected:
    Files() { std::filesystem::create_directory(folder_); }
    ~Files() override { std::filesystem::remove_all(folder_); }

    std::string path(const char* name) const { return (folder_ / name).string(); }
    std::string written(const char* name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }

  private:
    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("zoq_configuration_test." + std::to_string(getpid()));
};

TEST_F(Files, AreReadUpToTheLimitAndToANul) {
    const std::string pair = "EQ_62hzgain 1234";
    EXPECT_TRUE(apply_configuration_file(
        written("long", std::string(kLimit - pair.size() + 2, ' ') + pair + " EQ_125hzgain 9").c_str()));
    EXPECT_EQ(mem.eqBandGain[0], 12.0f);
    EXPECT_EQ(mem.eqBandGain[1], 0.0f);
    EXPECT_TRUE(
        apply_configuration_file(written("nul", std::string("EQ_125hzgain 2\0 EQ_125hzgain 3", 30)).c_str()));
    EXPECT_EQ(mem.eqBandGain[1], 2.0f);
    EXPECT_TRUE(apply_configuration_file(written("empty", "").c_str()));
    std::filesystem::create_symlink(written("linked", "EQ_250hzgain 4"), path("link"));
    EXPECT_TRUE(apply_configuration_file(path("link").c_str()));
    EXPECT_EQ(mem.eqBandGain[2], 4.0f);
}

TEST_F(Files, ThatAreNoneChangeNothingAndDoNotBlock) {
    alarm(20);  // a blocked read ends the test
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    const std::string secret = written("secret", "EQ_62hzgain 3");
    ASSERT_EQ(chmod(secret.c_str(), 0), 0);
    std::vector<std::string> others = {path("missing"), path("fifo"), "/",
                                       "/dev/zero",     "",           std::string(100000, 'x')};
    if (access(secret.c_str(), R_OK) != 0) {
        others.push_back(secret);
    }
    const parameterMEM before = mem;
    for (const std::string& other : others) {
        EXPECT_FALSE(apply_configuration_file(other.c_str())) << other.substr(0, 100);
    }
    EXPECT_EQ(std::memcmp(&mem, &before, sizeof mem), 0);
    alarm(0);
}

}  // namespace
