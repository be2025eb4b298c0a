// Stand-in for the platform's fatal assertion.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Prints tag, condition and the formatted message to standard error and aborts.
void __android_log_assert(const char* cond, const char* tag, const char* fmt, ...)
    __attribute__((noreturn, format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif
