#include "tools/zoq/tuning/config_text.h"

#include <locale.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "host/configuration.h"

namespace zoq {

namespace {

bool starts_with(std::string_view text, std::string_view head) {
    return text.substr(0, head.size()) == head;
}

// Marks what other formats would take for comments: to the end of a line, or up to "*/".
void mark_comments(std::vector<Token>& tokens) {
    int commentLine = 0;
    bool block = false;
    for (Token& token : tokens) {
        if (starts_with(token.text, "#") || starts_with(token.text, "//")) {
            commentLine = token.place.line;
        }
        block = block || starts_with(token.text, "/*");
        token.comment = block || token.place.line == commentLine;
        block = block && token.text.find("*/") == std::string_view::npos;
    }
}

Token piece(PlaceFinder& places, std::string_view text, size_t from, size_t to) {
    return {text.substr(from, to - from), places.at(from)};
}

}  // namespace

Place PlaceFinder::at(size_t offset) {
    for (; last_.offset < offset; ++last_.offset) {
        const bool lineEnds = text_[last_.offset] == '\n';
        last_.line += lineEnds ? 1 : 0;
        last_.column = lineEnds ? 1 : last_.column + 1;
    }
    return last_;
}

TextExtent file_extent(std::string_view text) {
    TextExtent extent;
    extent.limited = text.size() > android::kConfigurationMaxBytes;
    extent.length = extent.limited ? android::kConfigurationMaxBytes : text.size();
    const size_t nul = text.find('\0');
    if (nul < extent.length) {
        extent = {nul, true, false};
    }
    return extent;
}

bool is_utf16(std::string_view text) {
    return starts_with(text, "\xFF\xFE") || starts_with(text, "\xFE\xFF");
}

bool is_separator(char c) {
    return c != '\0' && std::strchr(android::kConfigurationSeparators, c) != nullptr;
}

std::vector<Token> file_tokens(std::string_view text, size_t from) {
    std::vector<Token> tokens;
    PlaceFinder places(text);
    for (size_t i = from; i < text.size();) {
        if (is_separator(text[i])) {
            ++i;
            continue;
        }
        const size_t start = i;
        while (i < text.size() && !is_separator(text[i])) {
            ++i;
        }
        tokens.push_back(piece(places, text, start, i));
    }
    mark_comments(tokens);
    return tokens;
}

std::vector<Pair> string_pairs(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    std::vector<Pair> pairs;
    PlaceFinder places(text);
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(';', start), text.size());
        const size_t equals = std::min(text.find('=', start), end);
        if (end > start) {
            Pair pair;
            pair.key = piece(places, text, start, equals);
            pair.hasValue = equals < end;
            pair.value = piece(places, text, std::min(equals + 1, end), end);
            pairs.push_back(pair);
        }
        start = end + 1;
    }
    return pairs;
}

NumberReading read_number(const std::string& text) {
    static const locale_t kPlain = newlocale(LC_ALL_MASK, "C", nullptr);
    char* end = nullptr;
    const double value = strtod_l(text.c_str(), &end, kPlain);
    return {value, static_cast<size_t>(end - text.c_str())};
}

IntegerReading read_integer(const std::string& text) {
    constexpr long long kLow = std::numeric_limits<int32_t>::min();
    constexpr long long kHigh = std::numeric_limits<int32_t>::max();
    char* end = nullptr;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    const long long kept = std::clamp(value, kLow, kHigh);
    return {static_cast<int32_t>(kept), static_cast<size_t>(end - text.c_str()), kept != value};
}

std::string integer_text(double value) {
    if (std::isnan(value)) {
        return "0";
    }
    constexpr double kLow = std::numeric_limits<int32_t>::min(), kHigh = std::numeric_limits<int32_t>::max();
    return std::to_string(static_cast<int32_t>(std::clamp(std::trunc(value), kLow, kHigh)));
}

}  // namespace zoq
