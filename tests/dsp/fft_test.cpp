#include "dsp/fft.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "dsp/fft_tables.h"
#include "tests/support/dft.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

using Spectrum = std::vector<creal32_T>;
using Exact = std::vector<dft::Complex>;

constexpr size_t kN = kFrameSamples;

// Taken before the first transform of the process can have run.
const bool tableEmptyAtStart = fft_table_flag == 0 && fft_table[1] == 0 && fft_table[1023] == 0;

Spectrum complex_noise(uint32_t seed) {
    const std::vector<float> v = signals::noise(seed, 2 * kN);
    Spectrum x(kN);
    std::memcpy(x.data(), v.data(), sizeof(float) * v.size());
    return x;
}

dft::Complex exact(creal32_T v) {
    return {double(v.re), double(v.im)};
}

Exact exact(const Spectrum& x) {
    Exact z;
    for (creal32_T v : x) {
        z.push_back(exact(v));
    }
    return z;
}

Exact exact(const std::vector<float>& x) {
    return Exact(x.begin(), x.end());
}

// The sum as it is defined; sign -1 forward, +1 inverse (not scaled).
Exact naive(const Exact& x, int sign) {
    Exact y(kN);
    for (size_t k = 0; k < kN; ++k) {
        for (size_t n = 0; n < kN; ++n) {
            y[k] += x[n] * (sign > 0 ? dft::root(n * k) : std::conj(dft::root(n * k)));
        }
    }
    return y;
}

template <typename Transform, typename Input>
Spectrum run(Transform transform, const Input& x) {
    Spectrum y(kN);
    transform(x.data(), y.data());
    return y;
}

// The rms of the difference over the rms of the exact values, for the first bins of both.
double relative_error(const Spectrum& y, const Exact& reference) {
    double error = 0.0, power = 0.0;
    for (size_t k = 0; k < y.size(); ++k) {
        error += std::norm(exact(y[k]) - reference[k]);
        power += std::norm(reference[k]);
    }
    return std::sqrt(error / power);
}

bool same_bits(const Spectrum& a, const Spectrum& b) {
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(creal32_T)) == 0;
}

// The bound the header states, twice what ten stages of independent roundings near 3.5e-8 rms add up to.
constexpr double kBound = 2.5e-7;

TEST(Fft, BuildsItsTableOnceAtTheFirstCall) {
    EXPECT_TRUE(tableEmptyAtStart);
    const Spectrum x = complex_noise(1);
    const Spectrum y = run(fft, x);
    EXPECT_EQ(fft_table_flag, 1);
    for (int i = 0; i < kFrameSamples; ++i) {
        int reversed = 0;
        for (int bit = 0; bit < 10; ++bit) {
            reversed |= (i >> bit & 1) << (9 - bit);
        }
        ASSERT_EQ(fft_table[i], reversed);
    }
    // The table is the one in use and is left alone while the flag stands.
    std::swap(fft_table[3], fft_table[700]);
    EXPECT_FALSE(same_bits(run(fft, x), y));
    EXPECT_NE(fft_table[3], 768);
    fft_table_flag = 0;
    EXPECT_TRUE(same_bits(run(ifft, run(fft, x)), run(ifft, y)));

    int small[8];
    init_fft_index_table(8, small);
    EXPECT_EQ(std::vector<int>(small, small + 8), (std::vector<int>{0, 4, 2, 6, 1, 5, 3, 7}));
}

TEST(Fft, AgreesWithTheSum) {
    const Spectrum x = complex_noise(2);
    const std::vector<float> real = signals::speech_like(3, kN);
    EXPECT_LT(relative_error(run(fft, x), naive(exact(x), -1)), kBound);
    EXPECT_LT(relative_error(run(c_fft, real), naive(exact(real), -1)), kBound);
    Exact inverse = naive(exact(x), +1);
    for (auto& value : inverse) {
        value /= double(kN);
    }
    EXPECT_LT(relative_error(run(ifft, x), inverse), kBound);
    EXPECT_LT(relative_error(run(ifft, run(fft, x)), exact(x)), 2 * kBound);
}

TEST(Fft, TheVariantsAndRepeatsGiveTheSameBits) {
    const Spectrum x = complex_noise(6);
    const Spectrum y = run(fft, x);
    EXPECT_TRUE(same_bits(run(fft, x), y));
    EXPECT_TRUE(same_bits(run(b_fft, x), y));
    EXPECT_TRUE(same_bits(run(ifft, x), run(ifft, x)));
    const std::vector<float> real = signals::noise(7, kN);
    Spectrum widened;
    for (float sample : real) {
        widened.push_back({sample, 0.0f});
    }
    EXPECT_TRUE(same_bits(run(c_fft, real), run(fft, widened)));
}

TEST(Fft, TwoRealFramesShareOneTransform) {
    const std::vector<float> left = signals::speech_like(8, kN), right = signals::noise(9, kN, 0.1f);
    Spectrum leftHalf(kBins), rightHalf(kBins), frame(kN);
    split_stereo_spectrum(left.data(), right.data(), leftHalf.data(), rightHalf.data());
    // What one channel rounds shows in the other, so the error is judged against both together.
    const Exact a = naive(exact(left), -1), b = naive(exact(right), -1);
    double power = 0.0, error = 0.0;
    for (size_t k = 0; k < kBins; ++k) {
        error += std::norm(exact(leftHalf[k]) - a[k]);
        error += std::norm(exact(rightHalf[k]) - b[k]);
        power += std::norm(a[k]) + std::norm(b[k]);
    }
    EXPECT_LT(std::sqrt(error / power), kBound);

    merge_stereo_spectrum(leftHalf.data(), rightHalf.data(), frame.data());
    Exact pair = exact(left);
    for (size_t n = 0; n < kN; ++n) {
        pair[n] += dft::Complex(0.0, double(right[n]));
    }
    EXPECT_LT(relative_error(frame, pair), 2 * kBound);

    merge_mono_spectrum(leftHalf.data(), frame.data());
    EXPECT_LT(relative_error(frame, exact(left)), 2 * kBound);
}

// The fast forms load the twiddles of the lower half of a stage alone and turn them by -j for the upper half.
TEST(Fft, TheUpperHalfOfAStagesTwiddlesIsTheLowerOneTurned) {
    const auto expect_turned = [](const float* re, const float* im, int first, int half) {
        for (int i = first; i < first + half; ++i) {
            ASSERT_EQ(std::bit_cast<uint32_t>(re[i + half]), std::bit_cast<uint32_t>(im[i])) << i;
            ASSERT_EQ(std::bit_cast<uint32_t>(im[i + half]), std::bit_cast<uint32_t>(-re[i])) << i;
        }
    };
    for (int span = 2; span < kFrameSamples; span *= 2) {
        expect_turned(kStageCos, kStageSin, span, span / 2);
        if (span >= 16) {
            expect_turned(kStageCosInPairs, kStageSinInPairs, span, span / 2);
        }
    }
}

// Every transform of one input of 2048 floats, one behind the other.
std::vector<float> all_transforms(const std::vector<float>& x) {
    std::vector<creal32_T> in(kN), y(4 * kN + 2 * kBins), merged(2 * kN);
    std::memcpy(in.data(), x.data(), sizeof(creal32_T) * kN);
    fft(in.data(), &y[0]);
    b_fft(in.data(), &y[kN]);
    ifft(in.data(), &y[2 * kN]);
    c_fft(x.data() + 3, &y[3 * kN]);
    split_stereo_spectrum(x.data(), x.data() + kN, &y[4 * kN], &y[4 * kN + kBins]);
    merge_stereo_spectrum(&in[1], &in[kN - kBins], &merged[0]);
    merge_mono_spectrum(&in[0], &merged[kN]);
    y.insert(y.end(), merged.begin(), merged.end());
    std::vector<float> floats(2 * y.size());
    std::memcpy(floats.data(), y.data(), sizeof(creal32_T) * y.size());
    return floats;
}

TEST(Fft, EveryLevelGivesTheSameBits) {
    std::vector<std::vector<float>> inputs = {
        signals::noise(10, 2 * kN), signals::noise(11, 2 * kN, 1e30f), signals::noise(12, 2 * kN, 1e-25f),
        signals::noise(13, 2 * kN, 3e38f), signals::speech_like(14, 2 * kN)};
    for (const float value : {0.0f, -0.0f, 1.0f, -1.0f}) {
        inputs.emplace_back(2 * kN, value);
    }
    // Zeros of both signs among few values: nothing must multiply where the scalar form does not.
    std::vector<float> sparse = signals::noise(15, 2 * kN);
    for (size_t i = 0; i < sparse.size(); ++i) {
        sparse[i] = i % 7 == 0 ? std::round(2.0f * sparse[i]) : std::copysign(0.0f, sparse[i]);
    }
    inputs.push_back(sparse);
    for (const size_t position : {size_t{0}, size_t{1}, size_t{700}, 2 * kN - 1}) {
        inputs.push_back(signals::impulse(position, 2 * kN, -0.7f));
        inputs.push_back(inputs.front());
        inputs.back()[position] = INFINITY;
    }
    for (const std::vector<float>& x : inputs) {
        kernels::expect_same_bits([&] { return all_transforms(x); });
    }
}

TEST(Fft, EveryLevelFollowsAHostsTable) {
    const std::vector<float> x = signals::noise(16, 2 * kN);
    const std::vector<float> usual = all_transforms(x);
    for (const size_t position : {size_t{0}, size_t{2}, size_t{9}, size_t{512}, size_t{1023}}) {
        std::swap(fft_table[position], fft_table[300]);
        kernels::expect_same_bits([&] { return all_transforms(x); });
        EXPECT_NE(all_transforms(x), usual);
        std::swap(fft_table[position], fft_table[300]);
        fft_table[position] += 1024;  // beyond the frame: the index is masked
        kernels::expect_same_bits([&] { return all_transforms(x); });
        fft_table[position] -= 1024;
    }
    EXPECT_EQ(all_transforms(x), usual);
}

}  // namespace
