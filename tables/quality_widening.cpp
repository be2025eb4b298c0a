#include <algorithm>
#include <cmath>

#include "tables/quality.h"
#include "tables/widening_filters.h"

namespace zoq::tables {

namespace {

using android::kBins;
using android::kFrameSamples;
using android::kSampleRateHz;

std::complex<double> value(Bins filter, int bin) {
    return {double(filter[size_t(bin)].re), double(filter[size_t(bin)].im)};
}

int peak(const Signal& x) {
    const auto found =
        std::max_element(x.begin(), x.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    return int(found - x.begin());
}

double outside_db(const Signal& x) {
    const Signal inside(x.begin() + kFilterFirstTap, x.begin() + kFilterLastTap + 1);
    Signal outside(x);
    std::fill(outside.begin() + kFilterFirstTap, outside.begin() + kFilterLastTap + 1, 0.0);
    return decibel(energy(outside) / energy(x));
}

}  // namespace

Signal impulse_response(Bins filter) {
    Spectrum bins;
    for (int k = 0; k < kBins; ++k) {
        bins.push_back(value(filter, k));
    }
    return inverse_transform(bins);
}

double magnitude(Bins filter, int bin) {
    return std::abs(value(filter, bin));
}

WideningQuality measure_widening(Bins sameSide, Bins crossFeed) {
    const Signal same = impulse_response(sameSide), cross = impulse_response(crossFeed);
    WideningQuality quality{peak(same), peak(cross), std::max(outside_db(same), outside_db(cross)), -1000.0,
                            0};
    for (int k = 0; k < kBins; ++k) {
        const double gain = decibel(std::norm(value(sameSide, k) + value(crossFeed, k)) + 1e-30);
        if (gain > quality.midGainDb) {
            quality.midGainDb = gain;
            quality.midGainBin = k;
        }
    }
    return quality;
}

std::array<double, 7> far_ear_db(Bins sameSide, Bins crossFeed, const Head& head, double speakerDegrees) {
    const size_t left = nearest(head, {speakerDegrees, 0.0}),
                 right = nearest(head, {360.0 - speakerDegrees, 0.0});
    std::array<double, 7> levels{};
    for (size_t third = 0; third < levels.size(); ++third) {
        const double centre = 500.0 * std::exp2(double(third) / 3.0);
        double nearPower = 0.0, farPower = 0.0;
        for (int k = 1; k < kBins; ++k) {
            const double hz = double(k) * kSampleRateHz / kFrameSamples;
            if (std::fabs(std::log2(hz / centre)) > 1.0 / 6.0) {
                continue;
            }
            const auto at = [&](Ear ear) {
                return value(sameSide, k) * response_at(head, left, ear, hz) +
                       value(crossFeed, k) * response_at(head, right, ear, hz);
            };
            nearPower += std::norm(at(kLeftEar));
            farPower += std::norm(at(kRightEar));
        }
        levels[third] = decibel(farPower / nearPower);
    }
    return levels;
}

}  // namespace zoq::tables
