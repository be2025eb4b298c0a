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

// Whether a text behind a number says nothing: punctuation and units.
bool says_nothing(std::string_view text) {
    std::string word;
    for (const char c : text) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'), digit = c >= '0' && c <= '9';
        if (letter || digit || static_cast<unsigned char>(c) >= 0x80) {
            word += letter ? static_cast<char>(c | 0x20) : c;
        }
    }
    return word.empty() || word == "db" || word == "hz";
}

// A value as the writer meant it.
struct MeantValue {
    std::string text;    // "" when none can be made out
    std::string change;  // how it differs from the one that was written, "" for not at all
    std::string rest;    // what stands behind the number and says something
};

MeantValue meant_number(int row, const std::string& text) {
    const size_t start = text.find_first_not_of(": \t\n\v\f\r\"'<>");
    const std::string trimmed = start != std::string::npos ? text.substr(start) : "";
    const NumberReading reading = read_number(trimmed);
    const auto value = static_cast<float>(reading.value);
    MeantValue meant;
    if (reading.used == 0 || !std::isfinite(value)) {
        return meant;
    }
    if (const std::string rest = trimmed.substr(reading.used); !says_nothing(rest)) {
        meant.rest = rest;
    }
    const std::optional<Range> range = setting_doc(row).range();
    if (android::settings()[row].kind != Kind::kNumber) {
        meant.text = integer_text(reading.value);
    } else if (range && !range->holds(value)) {
        meant.text = number_text(std::clamp(value, range->lo, range->hi));
        meant.change = number_text(value) + " lies outside " + number_text(range->lo) + ".." +
                       number_text(range->hi) + ", which the engine would use as it stands: " + meant.text +
                       " is written";
    } else {
        meant.text = plain_decimal(trimmed) ? trimmed : number_text(value);
    }
    return meant;
}

// The same for any setting of a parameter string.
MeantValue meant_value(int row, const std::string& text) {
    if (android::settings()[row].kind != Kind::kSwitch) {
        return meant_number(row, text);
    }
    const size_t end = text.find_last_not_of(" \t\n\r");
    const std::string value = end != std::string::npos ? text.substr(0, end + 1) : "";
    const bool known = value == "STEREOWIDEN_Enable=true" || value == "STEREOWIDEN_Enable=false";
    return {known ? value : "", "", ""};
}

std::string place_text(const Place& place) {
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": ";
}

// Takes over a value, and says what of it changes or is lost.
void store(Meant& meant, int row, const MeantValue& value, const Place& place, Dialect dialect) {
    const std::string key = spelling(row, dialect);
    meant.settings[row] = value.text;
    meant.changed.erase(row);
    if (!value.change.empty()) {
        meant.changed[row] = place_text(place) + key + " is changed: " + value.change;
    }
    if (!value.rest.empty()) {
        meant.dropped.push_back(place_text(place) + shown(value.rest) +
                                " is left out: it follows the value of " + key);
    }
}

class FileReader {
  public:
    explicit FileReader(std::string_view text) : text_(text), tokens_(file_tokens(text)) {
        std::erase_if(tokens_, [](const Token& token) { return token.comment; });
    }

    Meant read() {
        while (next_ < tokens_.size()) {
            const size_t i = next_++;
            const Token& token = tokens_[i];
            const KeyGuess guess = guess_key(token.text, Dialect::kFile);
            if (trusted(guess)) {
                take(i, guess);
            } else if (guess.how == How::kNear || meant_as_key(text_, tokens_, i)) {
                const int nearest = guess.row >= 0 ? guess.row : closest_key(token.text, Dialect::kFile).row;
                drop(i, "no key has this name (nearest: " + std::string(any_spelling(nearest)) + ")");
            } else if (!says_nothing(token.text)) {
                drop(i, "no key in front of it takes it");
            }
        }
        return meant_;
    }

  private:
    bool at_key() const {
        return next_ >= tokens_.size() || guess_key(tokens_[next_].text, Dialect::kFile).certain();
    }

    void take(size_t i, const KeyGuess& guess) {
        if (spelling(guess.row, Dialect::kFile) == nullptr) {
            drop(i, "the file has no such key");
            return;
        }
        const std::string text = value_text(guess);
        if (text.empty()) {
            drop(i, "it has no value");
            return;
        }
        const MeantValue value = meant_number(guess.row, text);
        if (value.text.empty()) {
            drop(i, shown(text) + " is no number to use");
            return;
        }
        store(meant_, guess.row, value, tokens_[i].place, Dialect::kFile);
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

    // Leaves out a token and what stands behind it up to the end of the line or the next name.
    void drop(size_t i, const std::string& why) {
        const Token& first = tokens_[i];
        while (!at_key() && tokens_[next_].place.line == first.place.line &&
               !meant_as_key(text_, tokens_, next_) &&
               tokens_[next_].place.offset - first.place.offset < kLongestDrop) {
            ++next_;
        }
        const size_t end = tokens_[next_ - 1].end();
        meant_.dropped.push_back(place_text(first.place) +
                                 shown(text_.substr(first.place.offset, end - first.place.offset)) +
                                 " is left out: " + why);
    }

    static constexpr size_t kLongestDrop = 40;  // bytes, of which a remark shows all

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

// And so does white space of all kinds, byte by byte.
std::string plain_space(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\v' || c == '\f'; }, ' ');
    for (size_t i = text.find("\xC2\xA0"); i != std::string::npos; i = text.find("\xC2\xA0", i + 2)) {
        text[i] = text[i + 1] = ' ';
    }
    return text;
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

std::string clean_number(int row, const std::string& text) {
    return meant_number(row, text).text;
}

Meant meant_by_file(std::string_view text) {
    const std::string copy = plain_space(without_nul(text, ' '));
    return FileReader(copy).read();
}

Meant meant_by_parameter_string(std::string_view text) {
    const std::string copy = without_commas(without_nul(text, ';'));
    Meant meant;
    for (const Pair& pair : string_pairs(copy)) {
        const KeyGuess guess = guess_key(pair.key.text, Dialect::kString);
        MeantValue value;
        if (trusted(guess) && spelling(guess.row, Dialect::kString) != nullptr) {
            value = meant_value(guess.row, std::string(pair.value.text));
        }
        if (value.text.empty()) {
            meant.dropped.push_back(place_text(pair.key.place) + shown(pair.key.text) +
                                    " is left out: no known key with a usable value");
        } else {
            store(meant, guess.row, value, pair.key.place, Dialect::kString);
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
