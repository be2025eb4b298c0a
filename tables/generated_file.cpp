#include "tables/generated_file.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>

namespace zoq::tables {

namespace {

constexpr size_t kLineLength = 110;
constexpr const char* kIndent = "    ";

struct Token {
    std::string text;
    int line;
};

// Numbers, names and single signs of a C++ text without its comments.
std::vector<Token> tokens(const std::string& text) {
    std::vector<Token> found;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        line.resize(std::min(line.find("//"), line.size()));
        for (size_t i = 0; i < line.size();) {
            size_t end = line.find_first_of(" \t\r{},;", i);
            end = std::min(end, line.size());
            if (end == i) {
                ++end;
            }
            if (!std::isspace(static_cast<unsigned char>(line[i]))) {
                found.push_back({line.substr(i, end - i), number});
            }
            i = end;
        }
    }
    return found;
}

bool read_number(const std::string& token, float& value) {
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    return error == std::errc() && std::string(end, token.data() + token.size()) == "f";
}

// Floats in order, so that neighbours differ by one; both zeros are 0.
std::int64_t place(float value) {
    const std::int32_t bits = std::bit_cast<std::int32_t>(value);
    return bits < 0 ? -std::int64_t(bits & 0x7fffffff) : bits;
}

double peak(const std::vector<Token>& all) {
    double largest = 0.0;
    for (const Token& token : all) {
        if (float value; read_number(token.text, value)) {
            largest = std::max(largest, std::fabs(double(value)));
        }
    }
    return largest;
}

bool same(const Token& a, const Token& b, const Tolerance& tolerance, double largest) {
    float x, y;
    if (!read_number(a.text, x) || !read_number(b.text, y)) {
        return a.text == b.text;
    }
    return std::abs(place(x) - place(y)) <= tolerance.ulps ||
           std::fabs(double(x) - double(y)) <= tolerance.ofPeak * largest;
}

// The first line of the comment ahead that another text lacks.
std::string missing_comment(const std::string& committed, const std::string& remade) {
    static constexpr char kError[] = "// Worst error:";
    std::istringstream lines(remade);
    for (std::string line; std::getline(lines, line) && line.starts_with("//");) {
        if (committed.find(line.starts_with(kError) ? kError : line + "\n") == std::string::npos) {
            return line;
        }
    }
    return "";
}

}  // namespace

SourceText::SourceText(const std::string& include, const std::string& comment) {
    std::istringstream lines(comment);
    for (std::string words; std::getline(lines, words);) {
        line("// " + words);
    }
    line("#include \"" + include + "\"\n\nnamespace android {\n\n// clang-format off");
}

void SourceText::line(const std::string& words) {
    text += words + "\n";
}

void SourceText::items(const std::vector<std::string>& texts) {
    std::string row = kIndent;
    for (const std::string& item : texts) {
        if (row.size() + item.size() + 1 > kLineLength) {
            row.pop_back();
            line(row);
            row = kIndent;
        }
        row += item + ", ";
    }
    row.pop_back();
    line(row);
}

void SourceText::values(std::span<const float> numbers) {
    std::vector<std::string> texts;
    for (const float number : numbers) {
        texts.push_back(shortest(number));
    }
    items(texts);
}

void SourceText::values(std::span<const android::creal32_T> numbers) {
    std::vector<std::string> texts;
    for (const android::creal32_T& number : numbers) {
        texts.push_back("{" + shortest(number.re) + ", " + shortest(number.im) + "}");
    }
    items(texts);
}

std::string SourceText::finish() {
    line("// clang-format on\n\n}  // namespace android");
    return text;
}

std::string shortest(float value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    std::string text(digits, end);
    if (text.find_first_of(".e") == std::string::npos) {
        text += ".0";
    }
    return text + "f";
}

std::string rounded(double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.2g", value);
    return digits;
}

std::string difference(const std::string& committed, const GeneratedFile& remade) {
    if (const std::string line = missing_comment(committed, remade.text); !line.empty()) {
        return "its comment lacks the line '" + line + "'";
    }
    const std::vector<Token> old = tokens(committed);
    const std::vector<Token> fresh = tokens(remade.text);
    const double largest = peak(fresh);
    for (size_t i = 0; i < std::min(old.size(), fresh.size()); ++i) {
        if (!same(old[i], fresh[i], remade.tolerance, largest)) {
            return "line " + std::to_string(old[i].line) + " has " + old[i].text + ", remade it is " +
                   fresh[i].text;
        }
    }
    if (old.size() != fresh.size()) {
        return "it has " + std::to_string(old.size()) + " words and numbers, remade " +
               std::to_string(fresh.size());
    }
    return "";
}

}  // namespace zoq::tables
