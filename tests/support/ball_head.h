// A head by formula, for tests that need another one than the measured.
#pragma once

#include <cmath>
#include <numbers>

#include "tables/head.h"

// A rigid ball without pinnae, after Brown and Duda 1998: Woodworth's delay, and a shelf that lifts the treble by
// 6 dB on the near side and takes it away on the far side.
inline zoq::tables::Head ball(double rateHz, double lowestElevation = -45.0) {
    constexpr double kDegree = std::numbers::pi / 180.0, kRadius = 0.0875, kSpeedOfSound = 343.0;
    constexpr double kCorner = kSpeedOfSound / kRadius;  // radians per second
    zoq::tables::Head head;
    head.rateHz = rateHz;
    for (double elevation = lowestElevation; elevation <= 90.0; elevation += 15.0) {
        for (double azimuth = 0.0; azimuth < 360.0; azimuth += 10.0) {
            head.directions.push_back({azimuth, elevation});
            auto& ears = head.responses.emplace_back();
            const double lateral = std::asin(std::sin(azimuth * kDegree) * std::cos(elevation * kDegree));
            for (const zoq::tables::Ear ear : {zoq::tables::kLeftEar, zoq::tables::kRightEar}) {
                const double away =
                    ear == zoq::tables::kLeftEar ? -lateral : lateral;  // positive: on the far side
                const double delay = (away > 0 ? away : std::sin(away)) * kRadius / kSpeedOfSound;
                const double top = 1.05 + 0.95 * std::cos((away / kDegree + 90.0) * 180.0 / 150.0 * kDegree);
                const double b0 = kCorner + top * rateHz, b1 = kCorner - top * rateHz, a0 = kCorner + rateHz,
                             a1 = kCorner - rateHz;
                ears[ear].assign(256, 0.0);
                const auto first = size_t(std::lround(rateHz * (0.0005 + delay)));
                ears[ear][first] = b0 / a0;
                ears[ear][first + 1] = (b1 - a1 * b0 / a0) / a0;
                for (size_t n = first + 2; n < 256; ++n) {
                    ears[ear][n] = -a1 / a0 * ears[ear][n - 1];
                }
            }
        }
    }
    return head;
}
