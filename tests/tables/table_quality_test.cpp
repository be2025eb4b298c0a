// The functions that measure room responses, on responses of known properties. What the committed tables are to achieve
// is held by the report of zoq tables, which measures with them.
#include <gtest/gtest.h>

#include <cmath>

#include "tables/quality.h"
#include "tests/support/dft.h"

using namespace android;
using namespace zoq::tables;

namespace {

// Room tables whose responses are given tap by tap: value(side, tap) for all four.
template <typename Value>
std::array<std::vector<creal32_T>, 2> made_rooms(Value value) {
    std::array<std::vector<creal32_T>, 2> tables;
    for (int side = 0; side < 2; ++side) {
        for (int p = 0; p < kX2bPartitions; ++p) {
            std::vector<double> taps;
            for (int n = 0; n < kHopSamples; ++n) {
                taps.push_back(value(side, p * kHopSamples + n));
            }
            const dft::HalfSpectrum half = dft::half_spectrum<double>(taps);
            for (int r = 0; r < kX2bResponses; ++r) {
                for (const dft::Complex& bin : half) {
                    tables[size_t(side)].push_back({float(bin.real()), float(bin.imag())});
                }
            }
        }
    }
    return tables;
}

}  // namespace

TEST(Measuring, FindsDelayLevelAndColourOfKnownResponses) {
    // Single echoes: the far ear 20 samples late and 6.02 dB down, in all octaves; no colour at all.
    const auto pair =
        made_rooms([](int side, int n) { return side == 0 ? (n == 10) * 0.632 : (n == 30) * 0.316; });
    const RoomTables rooms = {pair[0], pair[1]};
    const ResponseQuality quality = measure_response(rooms, 1);
    EXPECT_EQ(quality.arrival[0], 10);
    EXPECT_EQ(quality.arrival[1], 30);
    EXPECT_NEAR(quality.bin0[0], 0.632, 1e-6);
    EXPECT_NEAR(quality.share[1][0], 1.0, 1e-6);
    EXPECT_NEAR(quality.energyRatio, 0.25, 1e-6);
    EXPECT_NEAR(quality.ears.delaySamples, 20.0, 0.1);
    for (const double db : quality.ears.levelDb) {
        EXPECT_NEAR(db, 6.02, 0.01);
    }
    const RenderingQuality lateral = measure_lateral(rooms, 0.7);
    EXPECT_NEAR(lateral.levelDb, 10.0 * std::log10((0.632 * 0.632 + 0.316 * 0.316) / 0.499849), 0.01);
    EXPECT_LT(lateral.colourationDb, 0.01);

    // A comb of two equal taps a sample apart is 4 cos^2(w/2): -7.5 dB at 16 kHz against 125 Hz.
    const auto comb = made_rooms([](int, int n) { return double(n == 10 || n == 11); });
    EXPECT_NEAR(measure_centre({comb[0], comb[1]}, 1.0).rangeDb, 6.0, 0.3);
}

TEST(Measuring, FindsTheDecayAndTheLikenessOfTails) {
    uint32_t seed = 1;
    const auto noise = [&seed] { return double(int32_t(seed = seed * 1664525u + 1013904223u)) * 0x1p-31; };
    const auto decay = [](int n) { return std::pow(10.0, -3.0 * n / (0.15 * kSampleRateHz)); };
    const auto apart = made_rooms([&](int, int n) { return noise() * decay(n); });
    const ResponseQuality quality = measure_response({apart[0], apart[1]}, 0);
    EXPECT_NEAR(quality.tailT60Seconds, 0.15, 0.015);
    EXPECT_LT(quality.tailCoherence, 0.3);

    const ResponseQuality alike = measure_response({apart[0], apart[0]}, 0);
    EXPECT_NEAR(alike.tailCoherence, 1.0, 1e-6);
}
