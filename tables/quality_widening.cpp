#include <algorithm>
#include <cmath>
#include <numbers>

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
    WideningQuality quality{};
    quality.sameSidePeak = peak(same);
    quality.crossFeedPeak = peak(cross);
    quality.sameSideAtPeak = same[size_t(quality.sameSidePeak)];
    quality.crossFeedAtPeak = cross[size_t(quality.crossFeedPeak)];
    quality.outsideDb = outside_db(same);
    raise(quality.outsideDb, outside_db(cross));
    quality.midGainDb = -1000.0;
    for (int k = 0; k < kBins; ++k) {
        const double gain = decibel(std::norm(value(sameSide, k) + value(crossFeed, k)) + 1e-30);
        if (!(gain <= quality.midGainDb) && !std::isnan(quality.midGainDb)) {
            quality.midGainDb = gain;
            quality.midGainBin = k;
        }
    }
    Signal mid(same);
    std::transform(mid.begin(), mid.end(), cross.begin(), mid.begin(), std::plus());
    const auto powers = third_powers(mid);
    std::transform(powers.begin(), powers.end(), quality.midThirdsDb.begin(), decibel);
    for (const Bins filter : {sameSide, crossFeed}) {
        for (const int k : {0, kBins - 1}) {
            raise(quality.edgeImaginary, std::fabs(value(filter, k).imag()));
        }
    }
    return quality;
}

double cascade_power(const float* sos, int sections, double hz) {
    const std::complex<double> z = std::polar(1.0, -2.0 * std::numbers::pi * hz / kSampleRateHz);
    std::complex<double> h = 1.0;
    for (int s = 0; s < sections; ++s) {
        const auto c = [&](int j) { return double(sos[3 * j + s]); };
        h *= (c(0) + z * (c(1) + z * c(2))) / (c(3) + z * (c(4) + z * c(5)));
    }
    return std::norm(h);
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
