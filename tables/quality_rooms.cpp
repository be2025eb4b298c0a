#include <algorithm>
#include <cmath>
#include <numbers>

#include "tables/quality.h"

namespace zoq::tables {

namespace {

using android::kBins;
using android::kHopSamples;
using android::kSampleRateHz;
using android::kX2bPartitions;

constexpr size_t kLength = 4096;  // of the spectra that are measured: 11.7 Hz per bin
constexpr double kArrivalShare = 0.1;
constexpr double kDelayFromHz = 100.0, kDelayToHz = 1500.0;
constexpr int kLongestDelay = 60, kDelaySteps = 10;  // samples, and parts of one
constexpr double kTailFromSeconds = 0.010, kTailToSeconds = 0.036;
constexpr double kLowestThirdHz = 125.0;
constexpr size_t kDirectTaps = kSampleRateHz / 400;  // 2.5 ms
constexpr double kDryPower = 0.707 * 0.707;

double hz(size_t bin) {
    return double(bin) * kSampleRateHz / double(kLength);
}

Bins stored(const RoomTables& rooms, int side, int p, int r) {
    return (side == kSameSide ? rooms.sameSide : rooms.oppositeSide).subspan(first_bin(p, r), kBins);
}

// The 512 taps that a partition stands for.
Signal partition(const RoomTables& rooms, int side, int p, int r) {
    Signal taps = impulse_response(stored(rooms, side, p, r));
    taps.resize(kHopSamples);
    return taps;
}

using Gains = std::array<double, kX2bPartitions>;

// The whole response, each partition with its gain.
Signal response(const RoomTables& rooms, int side, int r, const Gains& gains = {1, 1, 1, 1}) {
    Signal all;
    for (int p = 0; p < kX2bPartitions; ++p) {
        for (const double tap : partition(rooms, side, p, r)) {
            all.push_back(gains[size_t(p)] * tap);
        }
    }
    return all;
}

double band_power(const Spectrum& bins, double hzPerBin, double low, double high) {
    double sum = 0.0;
    for (size_t k = 0; k < bins.size(); ++k) {
        if (double(k) * hzPerBin >= low && double(k) * hzPerBin < high) {
            sum += std::norm(bins[k]);
        }
    }
    return sum;
}

int arrival(const Signal& x) {
    double peak = 0.0;
    for (const double value : x) {
        peak = std::max(peak, std::fabs(value));
    }
    const auto found = std::find_if(x.begin(), x.end(),
                                    [&](double value) { return std::fabs(value) > kArrivalShare * peak; });
    return int(found - x.begin());
}

// Both ears' tails, limited to the frequencies above low.
std::array<Signal, 2> tails(const RoomTables& rooms, int r, double low) {
    std::array<Signal, 2> found;
    for (const int side : {kSameSide, kOppositeSide}) {
        Spectrum bins = transform(response(rooms, side, r), kLength);
        for (size_t k = 0; k < bins.size() && hz(k) < low; ++k) {
            bins[k] = 0.0;
        }
        const Signal x = inverse_transform(bins);
        found[size_t(side)] = Signal(x.begin() + int(kTailFromSeconds * kSampleRateHz),
                                     x.begin() + int(kTailToSeconds * kSampleRateHz));
    }
    return found;
}

// Straight line through the levels of short blocks, as long as 60 dB would take.
double tail_t60(const std::array<Signal, 2>& tail) {
    constexpr size_t kBlock = 96;  // 2 ms
    double n = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
    for (size_t start = 0; start + kBlock <= tail[0].size(); start += kBlock) {
        double power = 0.0;
        for (const Signal& ear : tail) {
            for (size_t i = start; i < start + kBlock; ++i) {
                power += ear[i] * ear[i];
            }
        }
        const double x = double(start) / kSampleRateHz, y = decibel(power);
        n += 1, sx += x, sy += y, sxx += x * x, sxy += x * y;
    }
    return -60.0 * (n * sxx - sx * sx) / (n * sxy - sx * sy);
}

double coherence(const std::array<Signal, 2>& ears) {
    constexpr std::ptrdiff_t kReach = kSampleRateHz / 1000;
    const auto size = std::ptrdiff_t(ears[0].size());
    double highest = 0.0;
    for (std::ptrdiff_t lag = -kReach; lag <= kReach; ++lag) {
        double sum = 0.0;
        for (auto i = std::max<std::ptrdiff_t>(0, -lag); i < std::min(size, size - lag); ++i) {
            sum += ears[0][size_t(i)] * ears[1][size_t(i + lag)];
        }
        highest = std::max(highest, std::fabs(sum));
    }
    return highest / std::sqrt(energy(ears[0]) * energy(ears[1]));
}

Interaural interaural_at(const Spectrum& near, const Spectrum& far, double hzPerBin) {
    Interaural found{};
    double highest = -1e300;
    for (int step = -kLongestDelay * kDelaySteps; step <= kLongestDelay * kDelaySteps; ++step) {
        const double delay = double(step) / kDelaySteps;
        double correlation = 0.0;
        for (size_t k = size_t(kDelayFromHz / hzPerBin); double(k) * hzPerBin < kDelayToHz; ++k) {
            const double turn = 2.0 * std::numbers::pi * double(k) * hzPerBin * delay / kSampleRateHz;
            correlation += (std::conj(near[k]) * far[k] * std::polar(1.0, turn)).real();
        }
        if (correlation > highest) {
            highest = correlation;
            found.delaySamples = delay;
        }
    }
    for (size_t octave = 0; octave < found.levelDb.size(); ++octave) {
        const double low = kLevelOctavesHz[octave] / std::numbers::sqrt2, high = 2.0 * low;
        found.levelDb[octave] =
            decibel(band_power(near, hzPerBin, low, high) / band_power(far, hzPerBin, low, high));
    }
    return found;
}

RenderingQuality rendering(const Signal& near, const Signal& far, double dryPower) {
    const auto a = third_powers(near), b = third_powers(far);
    std::array<double, kThirds> levels;
    double power = 0.0, mean = 0.0, square = 0.0;
    for (size_t third = 0; third < levels.size(); ++third) {
        const double share = (a[third] + b[third]) / dryPower;
        levels[third] = decibel(share);
        power += share / kThirds;
        mean += levels[third] / kThirds;
        square += levels[third] * levels[third] / kThirds;
    }
    const auto [lowest, highest] = std::minmax_element(levels.begin(), levels.end());
    return {decibel(power), std::sqrt(std::max(square - mean * mean, 0.0)), *highest - *lowest};
}

// What one ear gets of a side channel: the narrower and the wider response, crossfaded.
Signal side_response(const RoomTables& rooms, int side, double width) {
    const double wide = width * 0.8 + 0.2;
    const Gains same = {1, 1, 1, 1}, opposite = {1.0, width + 1.0, width + 1.0, 2.0 * width * (width + 1.0)};
    const Gains& gains = side == kSameSide ? same : opposite;
    Signal x = response(rooms, side, 1, gains);
    const Signal wider = response(rooms, side, 2, gains);
    std::transform(x.begin(), x.end(), wider.begin(), x.begin(),
                   [&](double a, double b) { return (1.0 - wide) * a + wide * b; });
    return x;
}

}  // namespace

Signal room_response(const RoomTables& rooms, int side, int r) {
    return response(rooms, side, r);
}

Interaural interaural(const Spectrum& near, const Spectrum& far) {
    return interaural_at(near, far, 0.5 * kSampleRateHz / double(near.size() - 1));
}

Interaural interaural(const Head& head, const Direction& direction) {
    const size_t measurement = nearest(head, direction);
    const bool left = std::sin(direction.azimuth * std::numbers::pi / 180.0) >= 0.0;
    Spectrum near, far;
    for (size_t k = 0; hz(k) < std::min(0.5 * head.rateHz, kLevelOctavesHz.back() * std::numbers::sqrt2);
         ++k) {
        near.push_back(response_at(head, measurement, left ? kLeftEar : kRightEar, hz(k)));
        far.push_back(response_at(head, measurement, left ? kRightEar : kLeftEar, hz(k)));
    }
    return interaural_at(near, far, hz(1));
}

ResponseQuality measure_response(const RoomTables& rooms, int r) {
    ResponseQuality quality{};
    double all = 0.0, wrapped = 0.0;
    std::array<double, 2> total{};
    for (const int side : {kSameSide, kOppositeSide}) {
        const auto s = size_t(side);
        for (int p = 0; p < kX2bPartitions; ++p) {
            const Bins bins = stored(rooms, side, p, r);
            const Signal x = impulse_response(bins);
            quality.share[s][size_t(p)] = energy(partition(rooms, side, p, r));
            total[s] += quality.share[s][size_t(p)];
            all += energy(x);
            wrapped += energy({x.begin() + kHopSamples, x.end()});
            raise(quality.edgeImaginary, std::fabs(double(bins.front().im)));
            raise(quality.edgeImaginary, std::fabs(double(bins.back().im)));
        }
        for (double& share : quality.share[s]) {
            share /= total[s];
        }
        quality.arrival[s] = arrival(partition(rooms, side, 0, r));
        quality.bin0[s] = double(stored(rooms, side, 0, r).front().re);
    }
    quality.energy = total;
    quality.energyRatio = total[kOppositeSide] / total[kSameSide];
    quality.ears = interaural(transform(response(rooms, kSameSide, r), kLength),
                              transform(response(rooms, kOppositeSide, r), kLength));
    quality.tailT60Seconds = tail_t60(tails(rooms, r, 300.0));
    quality.tailCoherence = coherence(tails(rooms, r, 1000.0));
    quality.wrapAroundDb = decibel(wrapped / all + 1e-30);
    return quality;
}

RenderingQuality measure_lateral(const RoomTables& rooms, double width) {
    return rendering(side_response(rooms, kSameSide, width), side_response(rooms, kOppositeSide, width),
                     kDryPower);
}

RenderingQuality measure_centre(const RoomTables& rooms, double width) {
    const Signal x = response(rooms, kSameSide, 0, {1.0, 1.0, width, width});
    return rendering(x, x, 2.0 * kDryPower);
}

std::array<double, 2> direct_to_reverberant_db(const RoomTables& rooms, double width) {
    std::array<double, 2> ratio{};
    for (const int side : {kSameSide, kOppositeSide}) {
        const Signal x = side_response(rooms, side, width);
        const auto end = x.begin() + std::ptrdiff_t(std::min(x.size(), size_t(arrival(x)) + kDirectTaps));
        ratio[size_t(side)] = decibel(energy({x.begin(), end}) / energy({end, x.end()}));
    }
    return ratio;
}

std::array<double, kThirds> third_powers(const Signal& response) {
    const Spectrum bins = transform(response, kLength);
    std::array<double, kThirds> powers{};
    for (int third = 0; third < kThirds; ++third) {
        const double low = kLowestThirdHz * std::exp2((third - 0.5) / 3.0), high = low * std::exp2(1.0 / 3.0);
        const double count = std::ceil(high / hz(1)) - std::ceil(low / hz(1));
        powers[size_t(third)] = band_power(bins, hz(1), low, high) / count;
    }
    return powers;
}

}  // namespace zoq::tables
