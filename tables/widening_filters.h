// modules/tws/tws_tables.cpp: the two frequency responses of the stereo widening.
//
// The pair is a recursive crosstalk canceller for two loudspeakers at about 10 degrees to each side. What the
// far ear hears of a loudspeaker is c times what the near ear hears, c = g(f) and 6 samples late; feeding -c
// of each channel into the other, and -c of that back, and so on, sums to
//     same side E / (1 - c^2),   cross-feed -c E / (1 - c^2).
// g is close to a head's shadow at that angle; E is an overall response that keeps the gain in bounds.
#pragma once

#include <span>
#include <vector>

#include "dsp/frame.h"
#include "tables/generated_file.h"

namespace zoq::tables {

struct BinLevel {
    int bin;
    double magnitude;
};

// The magnitudes that characterise the pair; every one is met exactly.
inline const std::vector<BinLevel> kSameSideCheckpoints = {
    {0, 0.627}, {10, 1.24}, {43, 0.67}, {171, 2.07}, {512, 0.0}};
inline const std::vector<BinLevel> kCrossFeedCheckpoints = {
    {0, 0.0023}, {1, 0.008}, {2, 0.03}, {10, 1.20}, {43, 0.52}, {171, 1.22}, {384, 0.012}, {512, 0.0}};

// The impulse responses are 0 outside these samples, and peak at these two.
inline constexpr int kFilterFirstTap = 7, kFilterLastTap = 466;
inline constexpr int kSameSidePeak = 183, kCrossFeedPeak = 189;

struct WideningFilters {
    std::vector<android::creal32_T> sameSide, crossFeed;  // 513 bins each
};

WideningFilters make_widening_filters();

GeneratedFile widening_filters_file();

}  // namespace zoq::tables
