#include "tools/zoq/tuning/eq_words.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string_view>

#include "tools/zoq/failure.h"
#include "tools/zoq/tuning/config_text.h"
#include "tools/zoq/tuning/key_names.h"

namespace zoq {

namespace {

constexpr char kFigures[] = "0123456789";

void replace_all(std::string& text, std::string_view what, std::string_view by) {
    for (size_t i = text.find(what); i != std::string::npos; i = text.find(what, i + by.size())) {
        text.replace(i, what.size(), by);
    }
}

std::string with_point(std::string word, bool frequency) {
    const size_t comma = word.find(',');
    if (comma == std::string::npos) {
        return word;
    }
    const size_t end = std::min(word.find_first_not_of(kFigures, comma + 1), word.size());
    if (frequency && end - comma - 1 == 3) {
        word.erase(comma, 1);
    } else {
        word[comma] = '.';
    }
    return word;
}

}  // namespace

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

bool one_of(const std::string& word, std::initializer_list<const char*> list) {
    return std::find(list.begin(), list.end(), word) != list.end();
}

std::string plain_line(std::string line) {
    replace_all(line, "\xE2\x88\x92", "-");
    replace_all(line, "\xC2\xA0", " ");
    replace_all(line, "\xEF\xBB\xBF", "");
    const size_t start = line.find_first_not_of(" \t\r\v\f"), end = line.find_last_not_of(" \t\r\v\f");
    return start != std::string::npos ? line.substr(start, end - start + 1) : "";
}

EqWords::EqWords(const std::string& text) {
    std::istringstream stream{lowered(text)};
    for (std::string word; stream >> word;) {
        words_.push_back(word);
    }
}

bool EqWords::take_if(const char* word) {
    const bool there = !done() && peek() == word;
    next_ += there ? 1 : 0;
    return there;
}

bool EqWords::at_number() const {
    return !done() && peek().find_first_of(std::string("+-.") + kFigures) == 0 &&
           peek().find_first_of(kFigures) <= 2;
}

double EqWords::number(const std::string& what, bool frequency) {
    if (!at_number()) {
        throw Failure(what + " is not followed by a number" + (done() ? "" : ": " + shown(peek())));
    }
    const std::string text = with_point(take(), frequency);
    const NumberReading reading = read_number(text);
    std::string unit = text.substr(reading.used);
    if (unit.empty() && !done() && one_of(peek(), {"hz", "khz", "db"})) {
        unit = take();
    }
    const bool known = frequency ? one_of(unit, {"", "hz", "khz"}) : one_of(unit, {"", "db"});
    if (!known || reading.used == 0 || !std::isfinite(reading.value)) {
        throw Failure(shown(text) + " is no number to use for " + what);
    }
    return unit == "khz" ? 1000.0 * reading.value : reading.value;
}

void EqWords::expect_end() const {
    if (!done()) {
        throw Failure(shown(peek()) + " is too much");
    }
}

}  // namespace zoq
