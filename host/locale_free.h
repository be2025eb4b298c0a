// Numbers as text with a decimal point, whatever locale the process runs in. Control threads only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace android {

// The number that text begins with after white space (decimal, hexadecimal, inf, nan); 0 when there is none.
double parse_double(const char* text);

// The same, rounded once, to single precision; parsed says whether there is a number.
float parse_float(const char* text, bool* parsed);

// The decimal integer that text begins with after white space, saturated; 0 when there is none. parsed, when given,
// says which.
int32_t parse_int(const char* text, bool* parsed = nullptr);

// Formats into a buffer of size bytes, cut to it; returns the length that printf would have written.
//        decimals    digits behind the point
int format_float(char* buffer, size_t size, float value, int decimals);

}  // namespace android
