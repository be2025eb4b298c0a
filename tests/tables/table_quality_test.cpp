// What the committed widening filters and room responses are to achieve. Taps, sums and energies are taken
// from a transform by its definition; delays, levels and colour from the measuring functions, which the last
// tests check against signals of known properties.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "modules/tws/tws_tables.h"
#include "modules/x2b/x2b_tables.h"
#include "tables/head_file.h"
#include "tables/quality.h"
#include "tests/support/dft.h"

using namespace android;
using namespace zoq::tables;

namespace {

std::vector<double> impulse(const creal32_T* bins) {
    dft::HalfSpectrum half;
    for (int k = 0; k < kBins; ++k) {
        half.emplace_back(double(bins[k].re), double(bins[k].im));
    }
    return dft::frame_of(half);
}

double power(const std::vector<double>& x, size_t from, size_t to) {
    double sum = 0.0;
    for (size_t n = from; n < to; ++n) {
        sum += x[n] * x[n];
    }
    return sum;
}

size_t loudest(const std::vector<double>& x) {
    return size_t(
        std::max_element(x.begin(), x.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); }) -
        x.begin());
}

double level(const creal32_T& bin) {
    return std::hypot(double(bin.re), double(bin.im));
}

const Head& kemar() {
    static const Head head = load_head(kDefaultHeadFile);
    return head;
}

const Bins kSame(kSameSideFilter), kCross(kCrossFeedFilter);

const RoomTables kRooms = {Bins(&kIpsiResponse[0][0][0], kX2bPartitions* kX2bResponses* kBins),
                           Bins(&kContraResponse[0][0][0], kX2bPartitions* kX2bResponses* kBins)};

}  // namespace

TEST(WideningFilters, HaveTheirCharacter) {
    const std::pair<int, double> same[] = {{0, 0.627}, {10, 1.24}, {43, 0.67}, {171, 2.07}};
    const std::pair<int, double> cross[] = {{0, 0.0023}, {10, 1.20}, {43, 0.52}, {171, 1.22}, {384, 0.012}};
    for (const auto& [bin, magnitude] : same) {
        EXPECT_NEAR(level(kSameSideFilter[bin]), magnitude, 0.001 * magnitude) << bin;
    }
    for (const auto& [bin, magnitude] : cross) {
        EXPECT_NEAR(level(kCrossFeedFilter[bin]), magnitude, 0.001 * magnitude) << bin;
    }
    EXPECT_LT(level(kCrossFeedFilter[1]), 0.01);
    EXPECT_LT(level(kCrossFeedFilter[2]), 0.04);
    EXPECT_EQ(level(kSameSideFilter[512]), 0.0);
    EXPECT_EQ(level(kCrossFeedFilter[512]), 0.0);
    EXPECT_EQ(kSameSideFilter[0].im, 0.0f);
    EXPECT_EQ(kCrossFeedFilter[0].im, 0.0f);
}

TEST(WideningFilters, AreShorterThanAHopAndPeakWhereTheDirectPathsDo) {
    for (const creal32_T* filter : {kSameSideFilter, kCrossFeedFilter}) {
        const std::vector<double> x = impulse(filter);
        const double outside = power(x, 0, 7) + power(x, 467, 1024);
        EXPECT_LT(10.0 * std::log10(outside / power(x, 0, 1024)), -120.0);
    }
    EXPECT_EQ(loudest(impulse(kSameSideFilter)), 183u);
    EXPECT_EQ(loudest(impulse(kCrossFeedFilter)), 189u);
}

TEST(WideningFilters, SilenceTheFarEarAndSpareTheCentre) {
    for (const double db : far_ear_db(kSame, kCross, kemar(), 10.0)) {
        EXPECT_LT(db, -8.0);
    }
    EXPECT_LT(measure_widening(kSame, kCross).midGainDb, 3.0);
    for (int k = 0; k < kBins; ++k) {
        const creal32_T &a = kSameSideFilter[k], &b = kCrossFeedFilter[k];
        EXPECT_LT(20.0 * std::log10(level({a.re + b.re, a.im + b.im}) + 1e-9), 3.0) << k;
    }
}

TEST(RoomResponses, ArriveSumAndShareTheirEnergyAsPlanned) {
    const struct {
        size_t taps[2];
        double bin0[2], digit, ratio;
    } plans[] = {
        {{4, 4}, {0.0834302, 0.0826205}, 0.5e-7, 1.0},
        {{5, 17}, {0.0576914, 0.0656744}, 0.5e-7, 0.1},
        {{5, 29}, {0.108685, 0.102684}, 0.5e-6, 1.0 / 30.0},
        {{7, 26}, {0.14005, 0.157914}, 0.5e-6, 0.0},
    };
    for (int r = 0; r < kX2bResponses; ++r) {
        double total[2] = {};
        for (int side = 0; side < 2; ++side) {
            double partition[kX2bPartitions];
            for (int p = 0; p < kX2bPartitions; ++p) {
                const creal32_T* bins = side == 0 ? kIpsiResponse[p][r] : kContraResponse[p][r];
                const std::vector<double> x = impulse(bins);
                EXPECT_EQ(bins[0].im, 0.0f);
                EXPECT_EQ(bins[512].im, 0.0f);
                partition[p] = power(x, 0, 512);
                total[side] += partition[p];
                // Float rounding of the bins, 140 dB below the first partition.
                EXPECT_LT(power(x, 512, 1024), 1e-14 * power(impulse(kIpsiResponse[0][r]), 0, 512));
                if (p > 0) {
                    EXPECT_LT(partition[p], partition[p - 1]) << r << " " << side << " " << p;
                    continue;
                }
                // The onset is the peak itself, so every detector finds it: nothing lies before.
                EXPECT_EQ(loudest(x), plans[r].taps[side]) << r;
                EXPECT_LT(power(x, 0, plans[r].taps[side]), 1e-12 * partition[0]) << r;
                double sum = 0.0;
                for (int n = 0; n < kHopSamples; ++n) {
                    sum += x[size_t(n)];
                }
                EXPECT_NEAR(sum, plans[r].bin0[side], 1e-6) << r;
                EXPECT_NEAR(double(bins[0].re), plans[r].bin0[side], plans[r].digit) << r;
            }
            if (side == 0) {
                EXPECT_GT(partition[0] / total[0], 0.95) << r;
            }
        }
        if (plans[r].ratio > 0.0) {
            EXPECT_NEAR(total[1] / total[0] / plans[r].ratio, 1.0, 0.05) << r;
        }
    }
}

TEST(RoomResponses, PlaceTheSidesAsTheHeadDoes) {
    for (const auto& [r, azimuth] : {std::pair{1, 30.0}, std::pair{2, 60.0}}) {
        const Interaural ears = measure_response(kRooms, r).ears, head = interaural(kemar(), {azimuth, 0.0});
        EXPECT_NEAR(ears.delaySamples, head.delaySamples, 3.0) << azimuth;
        for (size_t octave = 0; octave < ears.levelDb.size(); ++octave) {
            EXPECT_NEAR(ears.levelDb[octave], head.levelDb[octave], 4.0) << azimuth << " " << octave;
        }
    }
    const Interaural front = measure_response(kRooms, 0).ears;
    EXPECT_NEAR(front.delaySamples, 0.0, 0.5);
    for (const double db : front.levelDb) {
        EXPECT_NEAR(db, 0.0, 0.5);
    }
}

TEST(RoomResponses, EndInADiffuseTail) {
    for (int r = 0; r < kX2bResponses; ++r) {
        const ResponseQuality quality = measure_response(kRooms, r);
        EXPECT_GT(quality.tailT60Seconds, 0.05) << r;
        EXPECT_LT(quality.tailT60Seconds, 0.25) << r;
        EXPECT_LT(quality.tailCoherence, 0.4) << r;
    }
}

TEST(RoomResponses, AreAsLoudAsThePlainPathAndHardlyColoured) {
    for (const double width : {0.2, 0.5, 0.7, 1.0}) {
        for (const RenderingQuality& quality :
             {measure_lateral(kRooms, width), measure_centre(kRooms, width)}) {
            EXPECT_NEAR(quality.levelDb, 0.0, 1.0) << width;
            EXPECT_LT(quality.colourationDb, 1.5) << width;
        }
    }
}

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
