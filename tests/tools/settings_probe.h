// Texts of settings to try the tools with, and whether the engine holds what they predict.
#pragma once

#include <gtest/gtest.h>
#include <random>
#include <string>

#include "tests/tools/engine_probe.h"

namespace zoq {

// Compares every stored value and every derived field, bit for bit.
inline testing::AssertionResult engine_holds(const Prediction& prediction) {
    const int row = engine_difference(prediction);
    if (row < 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "row " << row << ": predicted " << prediction.stored_text(row);
}

// Texts from tidy to hostile, the same for the same seed.
class TextMaker {
  public:
    explicit TextMaker(uint32_t seed) : random_(seed) {}

    size_t below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random_); }

    template <size_t N>
    std::string one_of(const char* const (&list)[N]) {
        return list[below(N)];
    }

    std::string tidy_number(int row) {
        const bool band = row >= 9 && row < 27;
        const auto value = static_cast<double>(below(band ? 241 : 1001)) / 10.0 - (band ? 12.0 : 0.0);
        return row == 27 ? std::to_string(below(30)) : number(value);
    }

    std::string any_value() {
        static constexpr const char* kOdd[] = {"",     "abc",   "10dB",  "2,5",    "-3",     "1e3",  "1e39",
                                               "0x10", "nan",   "-inf",  ":",      ":3",     "70%",  "+.5",
                                               "-0",   "100.5", "-0.01", "1e-320", "9e999",  "10.9", "--1",
                                               "3.",   "\"7\"", "#",     "\v8",    "nan(1)", "true"};
        static constexpr const char* kLong[] = {"STEREOWIDEN_Enable=true", "STEREOWIDEN_Enable=false",
                                                "99999999999", "12345678901234567890"};
        if (below(15) == 0) {
            return one_of(kLong);
        }
        return below(2) == 0 ? one_of(kOdd) : number(static_cast<double>(below(40000)) / 100.0 - 150.0);
    }

    std::string any_key(bool tidy, bool file) {
        const android::Setting& setting = android::settings()[below(android::kSettings)];
        const char* key = file ? setting.fileKey : setting.stringKey;
        const char* other = file ? setting.stringKey : setting.fileKey;
        if (key == nullptr || (!tidy && below(8) == 0 && other != nullptr)) {
            return tidy ? (file ? "compressionGain" : "CompressionGain") : other;
        }
        std::string text = key;
        if (!tidy && below(4) == 0) {
            spoil(text);
        }
        return text;
    }

    // Letters, separators, and bytes of all kinds.
    std::string noise(size_t length) {
        static constexpr char kLikely[] = "EQ_62hzgain 0123456789.,;:={}[]\t\n\r#/*";
        std::string text;
        while (text.size() < length) {
            text += below(5) == 0 ? static_cast<char>(below(256)) : kLikely[below(sizeof kLikely)];
        }
        return text;
    }

  private:
    static std::string number(double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.4g", value);
        return text;
    }

    void spoil(std::string& text) {
        static constexpr const char* kGlue[] = {":",        "\"", "=", " ", "\xEF\xBB\xBF",
                                                "\xC2\xA0", "\v", ".", "\n"};
        const size_t at = below(text.size());
        switch (below(5)) {
            case 0:
                text[at] = static_cast<char>(text[at] ^ 0x20);
                break;
            case 1:
                text.erase(at, 1);
                break;
            case 2:
                text += one_of(kGlue);
                break;
            case 3:
                text = one_of(kGlue) + text;
                break;
            default:
                text.insert(at, 1, static_cast<char>('a' + below(26)));
        }
    }

    std::mt19937 random_;
};

}  // namespace zoq
