#include "host/locale_free.h"

#include <locale.h>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace android {

namespace {

// The "C" locale on the calling thread for a scope. Made once, at first use; should that fail, the thread's own
// serves.
class CLocale {
  public:
    CLocale() : previous_(instance().locale_ != nullptr ? uselocale(instance().locale_) : nullptr) {}
    ~CLocale() {
        if (previous_ != nullptr) {
            uselocale(previous_);
        }
    }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

  private:
    struct Instance {
        Instance() : locale_(newlocale(LC_ALL_MASK, "C", nullptr)) {}
        ~Instance() {
            if (locale_ != nullptr) {
                freelocale(locale_);
            }
        }
        Instance(const Instance&) = delete;
        Instance& operator=(const Instance&) = delete;
        locale_t locale_;
    };
    static const Instance& instance() {
        static const Instance the;
        return the;
    }

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
