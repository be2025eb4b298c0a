#include "tools/zoq/tuning/config_fix.h"

#include <algorithm>
#include <cmath>

#include "tools/zoq/tuning/check_ignored.h"
#include "tools/zoq/tuning/check_value.h"
#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using How = KeyGuess::How;
using Kind = android::Setting::Kind;

// A key that is near enough to be taken for the one it resembles.
bool trusted(const KeyGuess& guess) {
    constexpr size_t kFewEdits = 2;
    return guess.certain() || (guess.how == How::kNear && guess.nearest.unique && guess.nearest.sameDigits &&
                               guess.nearest.edits <= kFewEdits);
}

bool plain_decimal(const std::string& text) {
    constexpr size_t kLongest = 16;
    return text.size() <= kLongest && read_number(text).used == text.size() &&
           text.find_first_not_of("0123456789+-.eE") == std::string::npos;
}

// The value as the writer meant it, "" when no number can be made out.
std::string meant_number(int row, const std::string& text) {
    const size_t start = text.find_first_not_of(": \t\n\v\f\r\"'<>");
    const std::string trimmed = start != std::string::npos ? text.substr(start) : "";
    const NumberReading reading = read_number(trimmed);
    const auto value = static_cast<float>(reading.value);
    if (reading.used == 0 || !std::isfinite(value)) {
        return "";
    }
    if (android::settings()[row].kind != Kind::kNumber) {
        return integer_text(reading.value);
    }
    const std::optional<Range> range = setting_doc(row).range();
    if (range && !range->holds(value)) {
        return number_text(std::clamp(value, range->lo, range->hi));
    }
    return plain_decimal(trimmed) ? trimmed : number_text(value);
}

// The same for any setting of a parameter string.
std::string meant_value(int row, const std::string& text) {
    if (android::settings()[row].kind != Kind::kSwitch) {
        return meant_number(row, text);
    }
    const size_t end = text.find_last_not_of(" \t\n\r");
    const std::string value = end != std::string::npos ? text.substr(0, end + 1) : "";
    return value == "STEREOWIDEN_Enable=true" || value == "STEREOWIDEN_Enable=false" ? value : "";
}

std::string place_text(const Place& place) {
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": ";
}

class FileReader {
  public:
    explicit FileReader(std::string_view text) : text_(text), tokens_(file_tokens(text)) {
        std::erase_if(tokens_, [](const Token& token) { return token.comment; });
    }

    Meant read() {
        while (next_ < tokens_.size()) {
            const Token& token = tokens_[next_++];
            const KeyGuess guess = guess_key(token.text, Dialect::kFile);
            if (trusted(guess)) {
                take(token, guess);
            } else if (guess.how == How::kNear) {
                drop(token, "no key has this name (nearest: " + std::string(any_spelling(guess.row)) + ")");
            }
        }
        return meant_;
    }

  private:
    bool at_key() const {
        return next_ >= tokens_.size() || guess_key(tokens_[next_].text, Dialect::kFile).certain();
    }

    void take(const Token& key, const KeyGuess& guess) {
        if (spelling(guess.row, Dialect::kFile) == nullptr) {
            drop(key, "the file has no such key");
            return;
        }
        const std::string value = value_text(guess);
        if (value.empty()) {
            drop(key, "it has no value");
            return;
        }
        const std::string number = meant_number(guess.row, value);
        if (number.empty()) {
            drop(key, shown(value) + " is no number to use");
            return;
        }
        meant_.settings[guess.row] = number;
    }

    // What is glued behind the key, or the next token, a lone ":" skipped.
    std::string value_text(const KeyGuess& guess) {
        if (guess.suffix.find_first_of("0123456789") != std::string::npos) {
            return guess.suffix;
        }
        if (!at_key() && tokens_[next_].text == ":") {
            ++next_;
        }
        if (at_key()) {
            return "";
        }
        const size_t i = next_++;
        std::string value(tokens_[i].text);
        if (decimal_comma(text_, tokens_, i)) {
            value += "." + std::string(tokens_[next_++].text);
        }
        return value;
    }

    void drop(const Token& key, const std::string& why) {
        meant_.dropped.push_back(place_text(key.place) + shown(key.text) + " is left out: " + why);
    }

    std::string_view text_;
    std::vector<Token> tokens_;
    size_t next_ = 0;
    Meant meant_;
};

// A NUL byte separates for a reader who wants everything.
std::string without_nul(std::string_view text, char separator) {
    std::string copy(text);
    std::replace(copy.begin(), copy.end(), '\0', separator);
    return copy;
}

// Commas in front of a key become ";", decimal commas points.
std::string without_commas(std::string text) {
    for (size_t i = text.find(','); i != std::string::npos; i = text.find(',', i + 1)) {
        const size_t end = text.find_first_of("=,;", i + 1);
        const std::string behind = text.substr(i + 1, end != std::string::npos ? end - i - 1 : end);
        if (trusted(guess_key(behind, Dialect::kString))) {
            text[i] = ';';
        } else if (is_whole_number(behind)) {
            text[i] = '.';
        }
    }
    return text;
}

}  // namespace

Meant meant_by_file(std::string_view text) {
    const std::string copy = without_nul(text, ' ');
    return FileReader(copy).read();
}

Meant meant_by_parameter_string(std::string_view text) {
    const std::string copy = without_commas(without_nul(text, ';'));
    Meant meant;
    for (const Pair& pair : string_pairs(copy)) {
        const KeyGuess guess = guess_key(pair.key.text, Dialect::kString);
        std::string value;
        if (trusted(guess) && spelling(guess.row, Dialect::kString) != nullptr) {
            value = meant_value(guess.row, std::string(pair.value.text));
        }
        if (value.empty()) {
            meant.dropped.push_back(place_text(pair.key.place) + shown(pair.key.text) +
                                    " is left out: no known key with a usable value");
        } else {
            meant.settings[guess.row] = value;
        }
    }
    return meant;
}

std::string settings_text(const Settings& settings, Dialect dialect) {
    std::string text;
    for (const auto& [row, value] : settings) {
        const char* key = spelling(row, dialect);
        if (key == nullptr) {
            continue;
        }
        if (dialect == Dialect::kFile) {
            text += std::string(key) + " = " + value + "\n";
        } else {
            text += (text.empty() ? "" : ";") + std::string(key) + "=" + value;
        }
    }
    return text;
}

}  // namespace zoq
