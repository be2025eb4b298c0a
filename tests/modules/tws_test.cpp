#include "modules/tws/tws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/support/dft.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

constexpr size_t kFrame = kFrameSamples, kHop = kHopSamples;

// Two transforms round at 4e-7 each of outputs whose peaks lie near 5.
constexpr double kTolerance = 4e-6;

struct Taps {
    std::vector<float> same, cross;
};

// Random responses that fill the 512 samples an overlap-save frame allows.
Taps decaying_taps(uint32_t seed) {
    Taps taps{signals::noise(seed, kHop, 0.3f), signals::noise(seed + 1, kHop, 0.3f)};
    for (size_t n = 0; n < kHop; ++n) {
        taps.same[n] *= std::exp(-static_cast<float>(n) / 150.0f);
        taps.cross[n] *= std::exp(-static_cast<float>(n) / 150.0f);
    }
    return taps;
}

parameterTWS record_with(const Taps& taps, float widthGain, float directDelay) {
    parameterTWS record{};
    record.widthGain = widthGain;
    record.directDelay = directDelay;
    const auto store = [](const std::vector<float>& response, creal32_T* filter) {
        const dft::HalfSpectrum half = dft::half_spectrum(std::span(response));
        for (size_t k = 0; k < kBins; ++k) {
            filter[k] = {static_cast<float>(half[k].real()), static_cast<float>(half[k].imag())};
        }
    };
    store(taps.same, record.sameSideFilter);
    store(taps.cross, record.crossFeedFilter);
    return record;
}

// Three channels of noise, sines, speech and silence; hop h of a channel is its samples 512 h .. 512 h + 511.
struct Stream {
    static constexpr size_t kHops = 12;
    std::vector<float> left, right, centre;

    Stream()
        : left(signals::noise(1, kHops * kHop)),
          right(signals::sine(997.0, kHops * kHop)),
          centre(signals::speech_like(3, kHops * kHop)) {
        std::fill(left.begin() + 6 * kHop, left.begin() + 8 * kHop, 0.0f);
        right[4 * kHop] = -1.0f;
    }

    std::vector<float> frame(size_t hop) const {
        std::vector<float> in;
        for (const auto* channel : {&left, &right, &centre}) {
            const auto begin = channel->begin() + static_cast<std::ptrdiff_t>((hop - 1) * kHop);
            in.insert(in.end(), begin, begin + kFrame);
        }
        return in;
    }
};

double convolved(const std::vector<float>& taps, const std::vector<float>& x, size_t n) {
    double sum = 0.0;
    for (size_t j = 0; j < taps.size() && j <= n; ++j) {
        sum += static_cast<double>(taps[j]) * static_cast<double>(x[n - j]);
    }
    return sum;
}

std::vector<float> widened(const parameterTWS& record, const std::vector<float>& in) {
    std::vector<float> out(2 * kHop);
    TWSmobile_freq(in.data(), &record, out.data());
    return out;
}

}  // namespace

TEST(Tws, EqualsConvolutionInTimeWithDelayedCentreAndLinearBlend) {
    const Stream stream;
    const Taps taps = decaying_taps(7);
    const float gains[] = {1.0f, 0.8f, 0.0f, 2.0f, 0.37f, -0.5f, 1.0f, 0.99f, 0.5f, 0.4f, 0.0f};
    const float delays[] = {180.0f, 0.0f, 511.0f, 0.0f, 7.25f, 180.0f, 13.99f, 180.0f, 511.0f, 0.5f, 1.0f};
    for (size_t hop = 1; hop < Stream::kHops; ++hop) {
        const float gain = gains[hop - 1], delay = delays[hop - 1];
        const std::vector<float> out = widened(record_with(taps, gain, delay), stream.frame(hop));
        const double wet = std::min(1.0, static_cast<double>(gain));
        const auto wholeDelay =
            static_cast<size_t>(std::ceil(delay));  // a fraction reaches back to the sample before
        for (size_t i = 0; i < kHop; ++i) {
            const size_t n = hop * kHop + i;
            const double centre = static_cast<double>(stream.centre[n - wholeDelay]);
            const double left = convolved(taps.same, stream.left, n) + convolved(taps.cross, stream.right, n);
            const double right =
                convolved(taps.cross, stream.left, n) + convolved(taps.same, stream.right, n);
            const double directLeft = static_cast<double>(stream.left[n - wholeDelay]) + 0.7071 * centre;
            const double directRight = static_cast<double>(stream.right[n - wholeDelay]) + 0.7071 * centre;
            ASSERT_NEAR(out[i], wet * (left + 0.5568 * centre) + (1.0 - wet) * directLeft, kTolerance) << n;
            ASSERT_NEAR(out[kHop + i], wet * (right + 0.5568 * centre) + (1.0 - wet) * directRight,
                        kTolerance)
                << n;
        }
    }
}

TEST(Tws, AnyDelayReadsInsideTheFrameAndOnlyTheHopIsWritten) {
    const Taps silent{std::vector<float>(kHop), std::vector<float>(kHop)};
    const std::vector<float> in = Stream().frame(1);
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float delay;
        size_t position;  // of every sample's centre
    } far[] = {{1e9f, 0}, {infinity, 0}, {nan, 0}, {-1e9f, kFrame - 1}, {-infinity, kFrame - 1}};
    for (const auto& [delay, position] : far) {
        std::vector<float> out(2 * kHop + 1, 42.0f);
        const parameterTWS record = record_with(silent, 0.0f, delay);
        TWSmobile_freq(in.data(), &record, out.data());
        const float expected = in[position] + 0.7071f * in[2 * kFrame + position];
        EXPECT_EQ(out[0], expected) << delay;
        EXPECT_EQ(out[kHop - 1], expected) << delay;
        EXPECT_EQ(out[2 * kHop], 42.0f);
    }
}

TEST(Tws, EveryLevelGivesTheSameBits) {
    const Taps taps = decaying_taps(7);
    std::vector<float> in = Stream().frame(1);
    std::fill_n(in.begin() + kHop, 100, -0.0f);
    std::fill_n(in.begin() + 2 * kFrame + 300, 200, -0.0f);
    const float delays[] = {180.0f, 0.0f, 511.0f, 512.0f, 513.0f, -1.0f, 7.25f, 1e9f, -1e9f, NAN};
    for (const float level : {1.0f, 1e-20f, 1e30f, 1e37f}) {
        std::vector<float> scaled(in);
        for (float& sample : scaled) {
            sample *= level;
        }
        for (const float delay : delays) {
            for (const float gain : {0.8f, 1.0f, -0.5f}) {
                const parameterTWS record = record_with(taps, gain, delay);
                kernels::expect_same_bits([&] { return widened(record, scaled); });
            }
        }
    }
}
