#include "modules/x2b/x2b.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "tests/support/dft.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

constexpr size_t kFrame = kFrameSamples, kHop = kHopSamples, kPartitions = kX2bPartitions;
constexpr size_t kTaps = kPartitions * kHop;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Two transforms round at 4e-7 each of outputs whose peaks lie near 14.
constexpr double kTolerance = 1.2e-5;

using Responses = std::array<std::vector<float>, 3>;  // front, narrow, wide: 2048 taps each

// A record with random decaying rooms; the fourth response, which nothing selects, holds not-a-numbers.
struct Rooms {
    Responses ipsi, contra;
    std::unique_ptr<parameterX2B> record = std::make_unique<parameterX2B>();

    Rooms() {
        record->numPartitions = 4.0f;
        std::fill_n(&record->ipsiResponse[0][0][0], kPartitions * 4 * kBins, creal32_T{kNan, kNan});
        std::fill_n(&record->contraResponse[0][0][0], kPartitions * 4 * kBins, creal32_T{kNan, kNan});
        for (uint32_t r = 0; r < 3; ++r) {
            ipsi[r] = decaying(2 * r + 10);
            contra[r] = decaying(2 * r + 11);
            for (size_t p = 0; p < kPartitions; ++p) {
                store(ipsi[r], p, record->ipsiResponse[p][r]);
                store(contra[r], p, record->contraResponse[p][r]);
            }
        }
    }

    static std::vector<float> decaying(uint32_t seed) {
        std::vector<float> taps = signals::noise(seed, kTaps, 0.3f);
        for (size_t n = 0; n < kTaps; ++n) {
            taps[n] *= std::exp(-static_cast<float>(n) / 800.0f);
        }
        return taps;
    }

    static void store(const std::vector<float>& taps, size_t p, creal32_T* spectrum) {
        const dft::HalfSpectrum half = dft::half_spectrum(std::span(taps).subspan(p * kHop, kHop));
        for (size_t k = 0; k < kBins; ++k) {
            spectrum[k] = {static_cast<float>(half[k].real()), static_cast<float>(half[k].imag())};
        }
    }
};

Rooms& rooms() {
    static Rooms instance;
    return instance;
}

using Stream = std::array<std::vector<float>, 3>;

Stream test_stream(size_t hops) {
    Stream x{signals::noise(1, hops * kHop), signals::speech_like(2, hops * kHop, 4.0f),
             signals::sine(440.0, hops * kHop)};
    for (size_t n = 14 * kHop; n < 17 * kHop && n < hops * kHop; ++n) {
        x[0][n] = x[1][n] = x[2][n] = 0.0f;
    }
    return x;
}

// Hop 0 has silence before it.
std::vector<float> frame_of(const Stream& x, size_t hop) {
    std::vector<float> in(3 * kFrame, 0.0f);
    for (size_t c = 0; c < 3; ++c) {
        const size_t silent = hop == 0 ? kHop : 0;
        std::copy_n(x[c].data() + hop * kHop + silent - kHop, kFrame - silent,
                    in.data() + c * kFrame + silent);
    }
    return in;
}

std::vector<float> render(const Stream& x, size_t hop, float channels, float width) {
    rooms().record->surroundWidth = width;
    std::vector<float> out(2 * kHop);
    X2Binaural_v1(frame_of(x, hop).data(), channels, rooms().record.get(), out.data());
    return out;
}

struct Setting {
    int channels;
    float width;
};

// 512 taps of partition p from a channel (0..2) to an ear (0, 1).
std::vector<double> segment(const Setting& setting, size_t ear, size_t channel, size_t p) {
    const double w = static_cast<double>(setting.width);
    const bool fading = w < 0.2, mono = setting.channels == 1;
    const Responses& table = channel == ear || channel == 2 ? rooms().ipsi : rooms().contra;
    const auto& narrow = table[channel == 2 || mono ? 0 : 1];
    const auto& wide = table[channel == 2 || mono ? 0 : 2];
    double gain = 1.0, wideShare = fading ? 0.0 : 0.2 + 0.8 * w;
    if (channel == 2) {
        gain = p < 2 ? 1.0 : w;
    } else if (channel != ear) {
        gain = p == 0 ? 1.0 : p < 3 ? 1.0 + w : 2.0 * w * (1.0 + w);
    }
    if (fading) {
        gain = channel == 2 || channel == ear ? gain * 4.0 * w : 0.0;
    }
    std::vector<double> taps(kHop);
    for (size_t j = 0; j < kHop; ++j) {
        const double a = static_cast<double>(narrow[p * kHop + j]),
                     b = static_cast<double>(wide[p * kHop + j]);
        taps[j] = gain * (wideShare * b + (1.0 - wideShare) * a);
    }
    if (fading && p == 0 && (channel == 2 || channel == ear)) {
        taps[0] += 0.707 * (1.0 - 4.0 * w);
    }
    return taps;
}

// The partition that arrives after p hops was weighted by the settings of p hops ago.
std::vector<double> convolved_hop(const Stream& x, const std::vector<Setting>& settings, size_t hop) {
    std::vector<double> out(2 * kHop, 0.0);
    for (size_t p = 0; p < std::min(kPartitions, hop + 1); ++p) {
        const Setting& setting = settings[hop - p];
        for (size_t path = 0; path < 2 * static_cast<size_t>(setting.channels); ++path) {
            const size_t ear = path % 2, channel = path / 2;
            const std::vector<double> taps = segment(setting, ear, channel, p);
            for (size_t i = 0; i < kHop; ++i) {
                const size_t newest = (hop - p) * kHop + i;
                for (size_t j = 0; j < kHop && j <= newest; ++j) {
                    out[ear * kHop + i] += taps[j] * static_cast<double>(x[channel][newest - j]);
                }
            }
        }
    }
    return out;
}

}  // namespace

TEST(X2b, EqualsDirectConvolutionWhileWidthAndChannelsChange) {
    const size_t hops = 24;
    const Stream x = test_stream(hops);
    const Setting turns[] = {{3, 0.7f}, {3, 1.0f},  {2, 0.2f}, {2, 0.1999f}, {1, 0.7f},  {1, 0.1f},
                             {3, 0.0f}, {3, 0.05f}, {2, 0.5f}, {3, 1.5f},    {3, -0.2f}, {2, 1.0f}};
    std::vector<Setting> settings;
    X2Binaural_v1_init();
    for (size_t hop = 0; hop < hops; ++hop) {
        settings.push_back(turns[hop / 2]);
        const std::vector<float> out =
            render(x, hop, static_cast<float>(settings[hop].channels), settings[hop].width);
        const std::vector<double> expected = convolved_hop(x, settings, hop);
        for (size_t i = 0; i < 2 * kHop; ++i) {
            ASSERT_NEAR(out[i], expected[i], kTolerance) << "hop " << hop << " sample " << i;
        }
    }
}

TEST(X2b, ResetEqualsFreshAndWithoutItTheTailCarriesOn) {
    const Stream x = test_stream(3), silence{std::vector<float>(3 * kHop), std::vector<float>(3 * kHop),
                                             std::vector<float>(3 * kHop)};
    X2Binaural_v1_init();
    const std::vector<float> fresh = render(x, 0, 2.0f, 0.7f);
    const std::vector<float> again = render(x, 0, 2.0f, 0.7f);
    EXPECT_GT(signals::worst_difference(fresh, again), 0.1);
    X2Binaural_v1_init();
    EXPECT_EQ(render(x, 0, 2.0f, 0.7f), fresh);
    X2Binaural_v1_init();
    EXPECT_EQ(signals::rms(render(silence, 0, 3.0f, 0.7f)), 0.0);
}

TEST(X2b, CountsOutsideTheirRangesAreKeptWithin) {
    const Stream x = test_stream(6);
    const auto run = [&x](float partitions, float channels) {
        X2Binaural_v1_init();
        rooms().record->numPartitions = partitions;
        std::vector<float> all;
        for (size_t hop = 0; hop < 6; ++hop) {
            const std::vector<float> out = render(x, hop, channels, 0.7f);
            all.insert(all.end(), out.begin(), out.end());
        }
        rooms().record->numPartitions = 4.0f;
        X2Binaural_v1_init();
        return all;
    };
    const auto full = run(4.0f, 3.0f), two = run(2.0f, 1.0f);
    for (float many : {4.9f, 1e9f, std::numeric_limits<float>::infinity()}) {
        EXPECT_EQ(run(many, many), full) << many;
    }
    for (float few : {-1e9f, 0.0f, 1.9f, kNan}) {
        EXPECT_EQ(run(2.9f, few), two) << few;
    }
    for (float none : {-3.0f, 0.5f, kNan}) {
        EXPECT_EQ(signals::rms(run(none, 2.0f)), 0.0) << none;
    }
    EXPECT_GT(signals::worst_difference(full, run(3.0f, 3.0f)), 0.1);
}

TEST(X2b, SlotsBehindThePartitionsInUseWait) {
    Stream x{signals::impulse(0, kHop), std::vector<float>(kHop), std::vector<float>(kHop)};
    x[0].resize(8 * kHop);
    x[1].resize(8 * kHop);
    x[2].resize(8 * kHop);
    const float partitions[] = {4.0f, 1.0f, 1.0f, 0.0f, 2.0f, 4.0f, 4.0f, 4.0f};
    const size_t sounding[] = {0, 1, 9, 9, 9, 2, 9, 3};  // partition of the impulse's room; 9: none
    X2Binaural_v1_init();
    for (size_t hop = 0; hop < 8; ++hop) {
        rooms().record->numPartitions = partitions[hop];
        const std::vector<float> out = render(x, hop, 2.0f, 1.0f);
        for (size_t n = 0; n < kHop; ++n) {
            const float expected = sounding[hop] < 4 ? rooms().ipsi[2][sounding[hop] * kHop + n] : 0.0f;
            ASSERT_NEAR(out[n], expected, 1e-6) << "hop " << hop << " sample " << n;
        }
    }
    rooms().record->numPartitions = 4.0f;
}

// One hop after another with ever other settings, inputs and records.
std::vector<float> restless_run(float level) {
    const float widths[] = {0.0f, 0.1f, 0.199999f, 0.2f, 0.7f, 1.0f, 1.3f, -0.2f};
    Stream x = test_stream(48);
    std::fill_n(x[0].begin() + 3 * kHop, kHop, -0.0f);
    parameterX2B& record = *rooms().record;
    std::vector<float> all;
    X2Binaural_v1_init();
    for (size_t hop = 0; hop < 48; ++hop) {
        record.numPartitions = static_cast<float>(hop < 24 ? 4 : hop % 5);
        std::swap(record.ipsiResponse[hop % 4][1], record.contraResponse[hop % 4][2]);
        std::vector<float> in = frame_of(x, hop);
        for (float& sample : in) {
            sample *= level;
        }
        record.surroundWidth = widths[hop % 8];
        all.resize(all.size() + 2 * kHop);
        X2Binaural_v1(in.data(), static_cast<float>(1 + hop % 3), &record, &all[2 * kHop * hop]);
    }
    for (size_t hop = 48; hop-- > 0;) {
        std::swap(record.ipsiResponse[hop % 4][1], record.contraResponse[hop % 4][2]);
    }
    record.numPartitions = 4.0f;
    X2Binaural_v1_init();
    return all;
}

TEST(X2b, EveryLevelGivesTheSameBits) {
    for (const float level : {1.0f, 1e-20f, 1e30f, 1e36f, -0.0f}) {
        kernels::expect_same_bits([=] { return restless_run(level); });
    }
}
