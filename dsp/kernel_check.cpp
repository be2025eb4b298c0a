#include "dsp/kernel_check.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace android {

namespace kernel {

namespace {

bool is_nan(uint32_t bits) {
    return (bits & 0x7FFFFFFFu) > 0x7F800000u;
}

// Which not-a-number an operation returns is the processor's choice.
bool same(const unsigned char* a, const unsigned char* b) {
    uint32_t x, y;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    return x == y || (is_nan(x) && is_nan(y));
}

}  // namespace

void Check::fail(const char* what, size_t array, size_t word) const {
    std::fprintf(stderr, "kernel %s: %s (array %zu, word %zu)\n", name_, what, array, word);
    std::abort();
}

Check::Check(const char* name, std::initializer_list<Written> written) : name_(name) {
    size_t used = 0;
    for (const Written& array : written) {
        if (count_ == kMaxArrays || used + array.bytes > kMaxBytes || array.bytes % 4 != 0) {
            fail("the check has no room for what it writes", count_, used / 4);
        }
        std::memcpy(before_ + used, array.data, array.bytes);
        used += array.bytes;
        arrays_[count_++] = array;
    }
}

void Check::scalar_done() {
    size_t used = 0;
    for (size_t i = 0; i < count_; ++i) {
        std::memcpy(scalar_ + used, arrays_[i].data, arrays_[i].bytes);
        std::memcpy(arrays_[i].data, before_ + used, arrays_[i].bytes);
        used += arrays_[i].bytes;
    }
}

void Check::fast_done() const {
    const unsigned char* expected = scalar_;
    for (size_t i = 0; i < count_; ++i) {
        const auto* actual = static_cast<const unsigned char*>(arrays_[i].data);
        for (size_t byte = 0; byte < arrays_[i].bytes; byte += 4) {
            if (!same(actual + byte, expected + byte)) {
                fail("differs from the scalar form", i, byte / 4);
            }
        }
        expected += arrays_[i].bytes;
    }
}

}  // namespace kernel

}  // namespace android
