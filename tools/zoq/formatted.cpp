#include "tools/zoq/formatted.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace zoq {

std::string formatted(const char* format, ...) {
    va_list values;
    va_start(values, format);
    char* text = nullptr;
    const int length = vasprintf(&text, format, values);
    va_end(values);
    if (length < 0) {
        throw std::bad_alloc();
    }
    std::string result(text, static_cast<size_t>(length));
    std::free(text);
    return result;
}

}  // namespace zoq
