#include "host/locale_free.h"

#include <locale.h>
#include <pthread.h>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace android {

namespace {

// Made once, at first use, and never freed: a host may still call while the process ends.
locale_t c_locale() {
    static locale_t the;
    static pthread_once_t made = PTHREAD_ONCE_INIT;
    pthread_once(&made, [] { the = newlocale(LC_ALL_MASK, "C", nullptr); });
    return the;
}

// The "C" locale on the calling thread for a scope; the thread's own serves if it cannot be made.
class CLocale {
  public:
    CLocale() : previous_(c_locale() != nullptr ? uselocale(c_locale()) : nullptr) {}
    ~CLocale() {
        if (previous_ != nullptr) {
            uselocale(previous_);
        }
    }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

  private:
    locale_t previous_;
};

}  // namespace

double parse_double(const char* text) {
    const CLocale scope;
    return std::strtod(text, nullptr);
}

float parse_float(const char* text, bool* parsed) {
    const CLocale scope;
    char* end = nullptr;
    const float value = std::strtof(text, &end);
    *parsed = end != text;
    return value;
}

int32_t parse_int(const char* text, bool* parsed) {
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (parsed != nullptr) {
        *parsed = end != text;
    }
    constexpr long long kLow = std::numeric_limits<int32_t>::min(),
                        kHigh = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(value < kLow ? kLow : value > kHigh ? kHigh : value);
}

int format_float(char* buffer, size_t size, float value, int decimals) {
    const CLocale scope;
    return std::snprintf(buffer, size, "%.*f", decimals, double(value));
}

}  // namespace android
