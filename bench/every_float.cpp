// The proof of the grid's logarithms and powers: every float there is through the levels that do not ask the C library for
// every value, beside the C library.
//   every_float [PART PARTS]     e.g. "0 2" and "1 2" side by side; some minutes in all
// Prints the number of values that differ, which must be 0, and returns 1 if there are any.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "dsp/grid.h"
#include "dsp/kernel_level.h"

namespace {

using android::KernelLevel;
using android::kGridPoints;

constexpr uint64_t kFloats = uint64_t{1} << 32;
constexpr size_t kChunk = 1024 * kGridPoints;

bool same(float a, float b) {
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b) || (a != a && b != b);
}

class Tally {
  public:
    // fast works on one grid in place.
    template <typename Library, typename Fast>
    void compare(const std::vector<float>& x, Library library, Fast fast) {
        std::vector<float> expected(x);
        for (float& value : expected) {
            value = float(library(double(value)));
        }
        for (const KernelLevel level : {KernelLevel::kLanes8, KernelLevel::kLanes16}) {
            if (!android::has_kernel_level(level)) {
                continue;
            }
            android::set_kernel_level(level);
            std::vector<float> actual(x);
            for (size_t k = 0; k < actual.size(); k += kGridPoints) {
                fast(&actual[k]);
            }
            for (size_t k = 0; k < actual.size(); ++k) {
                different_ += same(actual[k], expected[k]) ? 0 : 1;
            }
            compared_ += actual.size();
        }
    }

    bool report(const char* function) const {
        std::printf("%s: %llu values compared, %llu differ\n", function,
                    static_cast<unsigned long long>(compared_), static_cast<unsigned long long>(different_));
        return different_ == 0;
    }

  private:
    uint64_t compared_ = 0, different_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    const uint64_t part = argc > 2 ? std::strtoull(argv[1], nullptr, 10) : 0;
    const uint64_t parts = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
    Tally logarithms, powers;
    std::vector<float> x(kChunk);
    for (uint64_t bits = part * kFloats / parts; bits < (part + 1) * kFloats / parts; bits += kChunk) {
        for (size_t i = 0; i < kChunk; ++i) {
            x[i] = std::bit_cast<float>(uint32_t(bits + i));
        }
        logarithms.compare(
            x, [](double v) { return std::log10(v); }, android::b_log10);
        powers.compare(
            x, [](double v) { return std::pow(10.0, v); },
            [](float* grid) { android::power(10.0f, grid, grid); });
    }
    const bool logarithmsHold = logarithms.report("log10"), powersHold = powers.report("10^x");
    return logarithmsHold && powersHold ? 0 : 1;
}
