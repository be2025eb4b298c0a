// Logarithms and powers on the grid: doubles in vectors, rounded to float where the rounding is certain.
//
// The series below lie within 2^-38 of the exact value, relatively, and so does the C library. Where both ends of
// that interval round to the same float, the library's value rounds to it, too; the library is asked for all others,
// one value in some ten thousand, and for the inputs that the series do not cover.
#include <cmath>
#include <cstring>

#include "dsp/double_lanes.h"
#include "dsp/frame.h"

namespace android::ZOQ_LEVEL {

namespace {

constexpr double kErrorBound = 0x1p-38;
constexpr double kLn2 = 0.69314718055994530942, kLn10 = 2.3025850929940456840;

// Bits to calculate with: inputs that the series do not cover may wrap around.
typedef uint32_t HalfWords __attribute__((vector_size(4 * kDoubles)));
typedef uint64_t LongWords __attribute__((vector_size(8 * kDoubles)));

struct Rounded {
    HalfFloats value;
    HalfInts uncertain;  // masks
};

ZOQ_INLINE Rounded rounded(Doubles y) {
    const HalfFloats one = floats_of(y * (1.0 - kErrorBound)), other = floats_of(y * (1.0 + kErrorBound));
    return {one, one != other};
}

// log10(2^e m) = e log10(2) + 2 / ln(10) artanh(s) with m from sqrt(1/2) to sqrt(2) and s = (m - 1) / (m + 1), by the
// odd powers of s up to the 13th: the next one is below 2^-39 of the first. Nothing cancels: m lies around 1.
ZOQ_INLINE Rounded log10_of(HalfFloats x) {
    constexpr int32_t kRootOfHalf = 0x3F3504F3, kLeastNormal = 0x00800000, kInfinity = 0x7F800000;
    constexpr double kScale = 2.0 / kLn10;
    const HalfInts bits = HalfInts(x);
    const HalfInts exponent = HalfInts(HalfWords(bits) - uint32_t{kRootOfHalf}) >> 23;
    const Doubles m = doubles_of(HalfFloats(HalfWords(bits) - (HalfWords(exponent) << 23)));
    const Doubles s = (m - 1.0) / (m + 1.0), z = s * s, z2 = z * z;
    const Doubles low = (kScale + z * (kScale / 3)) + z2 * (kScale / 5 + z * (kScale / 7));
    const Doubles high = (kScale / 9 + z * (kScale / 11)) + z2 * (kScale / 13);
    Rounded y = rounded(doubles_of(exponent) * (kLn2 / kLn10) + s * (low + (z2 * z2) * high));
    y.uncertain |= (bits < kLeastNormal) | (bits >= kInfinity);
    return y;
}

// 10^x = 2^n e^f with n the whole number next to x log2(10) and f within +-ln(2)/2, by the powers of f up to the
// 10th: the next one is below 2^-42.
ZOQ_INLINE Rounded exp10_of(HalfFloats x) {
    constexpr double kToWhole = 0x1.8p52;  // leaves a whole number, in the lowest bits of the sum
    const Doubles t = doubles_of(x) * (kLn10 / kLn2);
    const Doubles shifted = t + kToWhole;
    const Doubles f = (t - (shifted - kToWhole)) * kLn2, f2 = f * f, f4 = f2 * f2;
    const Doubles low = (1.0 + f) + f2 * (1.0 / 2 + f * (1.0 / 6));
    const Doubles middle = (1.0 / 24 + f * (1.0 / 120)) + f2 * (1.0 / 720 + f * (1.0 / 5040));
    const Doubles high = (1.0 / 40320 + f * (1.0 / 362880)) + f2 * (1.0 / 3628800);
    const Doubles fraction = low + f4 * (middle + f4 * high);
    Rounded y = rounded(Doubles(LongWords(fraction) + (LongWords(shifted) << 52)));
    y.uncertain |= ~((x > -37.0f) & (x < 38.0f));  // else the result is no normal number
    return y;
}

// Asks the library for the lanes that are not certain.
template <typename Library>
[[gnu::noinline, gnu::cold]] void settle(Library library, HalfFloats x, Rounded y, float* out) {
    for (int i = 0; i < kDoubles; ++i) {
        out[i] = y.uncertain[i] != 0 ? library(x[i]) : y.value[i];
    }
}

template <typename Curve, typename Library>
ZOQ_INLINE void follow_block(Curve curve, Library library, const float* x, float* out) {
    HalfFloats in;
    std::memcpy(&in, x, sizeof in);
    const Rounded y = curve(in);
    if (__builtin_expect(any(y.uncertain), false)) {
        settle(library, in, y, out);
    } else {
        std::memcpy(out, &y.value, sizeof y.value);
    }
}

// The curve along the grid; out may be x.
template <typename Curve, typename Library>
ZOQ_INLINE void follow(Curve curve, Library library, const float* x, float* out) {
    constexpr int kRest = kGridPoints % kDoubles, kWhole = kGridPoints - kRest;
    for (int k = 0; k < kWhole; k += kDoubles) {
        follow_block(curve, library, x + k, out + k);
    }
    float rest[kDoubles];
    std::memcpy(rest, x + kWhole, kRest * sizeof(float));
    for (int i = kRest; i < kDoubles; ++i) {
        rest[i] = 1.0f;
    }
    follow_block(curve, library, rest, rest);
    std::memcpy(out + kWhole, rest, kRest * sizeof(float));
}

}  // namespace

void log10_on_grid(float* x) {
    follow(
        [](HalfFloats v) __attribute__((always_inline)) { return log10_of(v); },
        [](float v) { return float(std::log10(double(v))); }, x, x);
}

void exp10_on_grid(const float* x, float* y) {
    follow(
        [](HalfFloats v) __attribute__((always_inline)) { return exp10_of(v); },
        [](float v) { return float(std::pow(10.0, double(v))); }, x, y);
}

}  // namespace android::ZOQ_LEVEL
