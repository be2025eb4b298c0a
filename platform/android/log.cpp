#include "android/log.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void __android_log_assert(const char* cond, const char* tag, const char* fmt, ...) {
    std::fprintf(stderr, "%s: assertion failed: %s: ", tag, cond);
    va_list arguments;
    va_start(arguments, fmt);
    // Behind another file in the same run the analyzer no longer knows va_start.
    std::vfprintf(stderr, fmt, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized)
    va_end(arguments);
    std::fputc('\n', stderr);
    std::abort();
}
