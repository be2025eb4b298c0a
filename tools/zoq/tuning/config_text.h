// Configuration files and parameter strings cut into tokens with their places, as the engine cuts them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zoq {

// Both counted from 1, columns in bytes; a line ends behind its line feed.
struct Place {
    size_t offset = 0;
    int line = 1, column = 1;
};

// Places of ascending offsets in one text, in one pass.
class PlaceFinder {
  public:
    explicit PlaceFinder(std::string_view text) : text_(text) {}
    Place at(size_t offset);

  private:
    std::string_view text_;
    Place last_;
};

struct Token {
    std::string_view text;
    Place place;
    bool comment = false;  // behind a "#", "//" or "/*" as other formats write comments

    size_t end() const { return place.offset + text.size(); }
};

// How much of a file the engine reads.
struct TextExtent {
    size_t length = 0;     // bytes looked at
    bool nul = false;      // ended by a NUL byte
    bool limited = false;  // ended by the limit of bytes
};
TextExtent file_extent(std::string_view text);

// A UTF-16 text begins with a byte-order mark; every other byte of its letters is NUL.
bool is_utf16(std::string_view text);

// The tokens of a text from an offset on, every byte of which is looked at.
std::vector<Token> file_tokens(std::string_view text, size_t from = 0);

bool is_separator(char c);  // of the file; NUL is none

// One piece of a parameter string between two ";".
struct Pair {
    Token key;
    bool hasValue = false;  // there is a "="
    Token value;
};
std::vector<Pair> string_pairs(std::string_view text);

// The number a text begins with, as the C library reads it with a decimal point: white space, sign, decimal or
// hexadecimal digits, exponent, "inf", "nan".
struct NumberReading {
    double value = 0.0;
    size_t used = 0;  // bytes, white space included; 0: no number
};
NumberReading read_number(const std::string& text);

struct IntegerReading {
    int32_t value = 0;
    size_t used = 0;
    bool saturated = false;
};
IntegerReading read_integer(const std::string& text);

// A number's whole part in 32 bits, saturated; "0" for not-a-number.
std::string integer_text(double value);

}  // namespace zoq
