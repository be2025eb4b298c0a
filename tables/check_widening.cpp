#include <algorithm>
#include <cmath>

#include "tables/check.h"
#include "tables/widening_filters.h"

namespace zoq::tables {

namespace {

using android::kBins;
using android::parameterTWS;

// Four digits are more than the checkpoints have, so a miss is a fault and not a limit of the fit.
constexpr double kCheckpointShare = 1e-3;
constexpr double kNothing = 1e-6;

// Below the cross-feed, where cancelling would only cost level.
constexpr struct {
    int bin;
    double most;
} kBass[] = {{1, 0.01}, {2, 0.04}};

constexpr double kOutsideDb = -120.0;  // float rounding leaves -150
constexpr double kCentreDb = 3.0;      // what a centred voice may gain
constexpr double kLeastAtPeak = 0.1;   // with this sign: the filters meet dry paths

// Plain stereo leaves -1 to -3 dB at the far ear; the filters are made for 10 degrees.
constexpr struct { double degrees, most; } kSpeakers[] = {{5.0, -5.0}, {10.0, -8.0}, {15.0, -5.0}};

std::string bin_name(int bin) {
    return "bin " + std::to_string(bin);
}

Property checkpoints(const std::string& name, Bins filter, const std::vector<BinLevel>& points) {
    Property property{name + ", magnitude", "", {}};
    for (const BinLevel& point : points) {
        const auto bass = std::find_if(std::begin(kBass), std::end(kBass),
                                       [&](const auto& limit) { return limit.bin == point.bin; });
        const bool free = bass != std::end(kBass) && point.bin < 10 && name == "cross-feed";
        const double off = std::max(kCheckpointShare * point.magnitude, kNothing);
        property.figures.push_back({bin_name(point.bin), magnitude(filter, point.bin),
                                    free ? 0.0 : point.magnitude - off,
                                    free ? bass->most : point.magnitude + off});
    }
    return property;
}

Property far_ear(const parameterTWS& tws, const Listener& listener, double degrees, double most) {
    Property property{"far over near ear, loudspeakers at +-" + std::to_string(int(degrees)) + " degrees",
                      "dB",
                      {},
                      listener.absent};
    if (listener.head == nullptr) {
        return property;
    }
    const auto levels = far_ear_db(tws.sameSideFilter, tws.crossFeedFilter, *listener.head, degrees);
    for (size_t third = 0; third < levels.size(); ++third) {
        property.figures.push_back(
            {third_name(int(third) + kThirdAt500Hz), levels[third], -kUnbounded, most});
    }
    return property;
}

}  // namespace

TableReport check_widening(const parameterTWS& tws, const Listener& listener) {
    const Bins same(tws.sameSideFilter), cross(tws.crossFeedFilter);
    const WideningQuality quality = measure_widening(same, cross);
    std::vector<Figure> thirds;
    for (int third = 0; third < kThirds; ++third) {
        thirds.push_back({third_name(third), quality.midThirdsDb[size_t(third)]});
    }
    TableReport report{"widening filters", {}};
    report.properties = {
        checkpoints("same side", same, kSameSideCheckpoints),
        checkpoints("cross-feed", cross, kCrossFeedCheckpoints),
        within(0, 0, "imaginary part at bins 0 and 512", "", {{"", quality.edgeImaginary}}),
        within(kSameSidePeak, kSameSidePeak, "same side, peak", "samples",
               {{"", double(quality.sameSidePeak)}}),
        within(kCrossFeedPeak, kCrossFeedPeak, "cross-feed, peak", "samples",
               {{"", double(quality.crossFeedPeak)}}),
        within(kLeastAtPeak, kUnbounded, "same side, amplitude at its peak", "",
               {{"", quality.sameSideAtPeak}}),
        within(-kUnbounded, -kLeastAtPeak, "cross-feed, amplitude at its peak", "",
               {{"", quality.crossFeedAtPeak}}),
        within(-kUnbounded, kOutsideDb, "energy outside samples 7..466", "dB", {{"", quality.outsideDb}}),
        within(-kUnbounded, kCentreDb, "centre's gain, any bin", "dB",
               {{bin_name(quality.midGainBin), quality.midGainDb}}),
        within(-kUnbounded, kCentreDb, "centre's gain by thirds of an octave", "dB", thirds),
    };
    for (const auto& [degrees, most] : kSpeakers) {
        report.properties.push_back(far_ear(tws, listener, degrees, most));
    }
    return report;
}

}  // namespace zoq::tables
