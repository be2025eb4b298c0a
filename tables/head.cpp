#include "tables/head.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace zoq::tables {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kLowestRateHz = 32000.0, kHighestRateHz = 192000.0;

using Point = std::array<double, 3>;

Point unit(const Direction& direction) {
    const double azimuth = direction.azimuth * kDegree, elevation = direction.elevation * kDegree;
    return {std::cos(elevation) * std::cos(azimuth), std::cos(elevation) * std::sin(azimuth),
            std::sin(elevation)};
}

double dot(const Point& a, const Point& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void require(bool good, const std::string& problem) {
    if (!good) {
        throw HeadError(problem);
    }
}

bool finite(const Signal& x) {
    return std::all_of(x.begin(), x.end(), [](double value) { return std::isfinite(value); });
}

std::string degrees(double angle) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", angle);
    return text;
}

// Sounds from the left must be louder at the left ear; some exporters swap the ears or run azimuth clockwise.
void require_left_first(const Head& head) {
    double near = 0.0, far = 0.0;
    for (size_t m = 0; m < head.directions.size(); ++m) {
        const double side = std::sin(head.directions[m].azimuth * kDegree);
        if (std::fabs(side) > 0.5 && std::fabs(head.directions[m].elevation) < 45.0) {
            near += energy(head.responses[m][side > 0 ? kLeftEar : kRightEar]);
            far += energy(head.responses[m][side > 0 ? kRightEar : kLeftEar]);
        }
    }
    require(near >= far,
            "the head's ears are exchanged: sounds from the left are louder at the second receiver; "
            "put the left ear first and let azimuth run anticlockwise");
}

std::string name(const Direction& direction) {
    return "azimuth " + std::to_string(std::lround(direction.azimuth)) + ", elevation " +
           std::to_string(std::lround(direction.elevation));
}

// What a head lacks near a direction, or nothing.
std::string missing(const Head& head, const NeededDirection& needed) {
    const Direction& found = head.directions[nearest(head, needed.direction)];
    const double off = angle(found, needed.direction);
    return off <= needed.within
               ? ""
               : "near " + name(needed.direction) + " (" + std::to_string(std::lround(needed.within)) +
                     " degrees off are allowed, the nearest is " + std::to_string(std::lround(off)) +
                     " off at " + name(found) + ")";
}

}  // namespace

void require_directions(const Head& head, std::span<const NeededDirection> needed) {
    std::string all;
    for (const NeededDirection& each : needed) {
        const std::string lack = missing(head, each);
        all += all.empty() || lack.empty() ? lack : "; " + lack;
    }
    if (!all.empty()) {
        throw HeadError("the head has no measurement " + all + "; use a set that covers the sphere");
    }
}

void require_sound(const Head& head) {
    require(head.rateHz >= kLowestRateHz && head.rateHz <= kHighestRateHz,
            "the head's sampling rate is " +
                std::to_string(std::isfinite(head.rateHz) ? std::lround(head.rateHz) : 0) +
                " Hz; 32000 to 192000 are usable, resample the set");
    require(!head.directions.empty() && head.directions.size() == head.responses.size(),
            "the head has no measurements");
    for (size_t m = 0; m < head.directions.size(); ++m) {
        const std::string where = "the head's measurement " + std::to_string(m + 1);
        require(std::isfinite(head.directions[m].azimuth) && std::isfinite(head.directions[m].elevation),
                where + " has no finite direction; remove it or measure it again");
        // A hair beyond: positions converted from metres are rounded.
        require(std::fabs(head.directions[m].azimuth) <= 360.001 &&
                    std::fabs(head.directions[m].elevation) <= 90.001,
                where + " lies at azimuth " + degrees(head.directions[m].azimuth) + ", elevation " +
                    degrees(head.directions[m].elevation) +
                    "; degrees within 360 and 90 are usable, check the units of the positions");
        for (const Signal& response : head.responses[m]) {
            require(finite(response),
                    where + " holds values that are not finite; remove it or measure it again");
            require(energy(response) > 0.0, where + " is silent; remove it or measure it again");
        }
    }
    require_left_first(head);
}

double angle(const Direction& a, const Direction& b) {
    return std::acos(std::clamp(dot(unit(a), unit(b)), -1.0, 1.0)) / kDegree;
}

// Of two equally near the first counts: without the margin, rounding would choose, on each machine anew.
size_t nearest(const Head& head, const Direction& wanted) {
    constexpr double kMargin = 1e-9;
    const Point towards = unit(wanted);
    size_t best = 0;
    double closest = -2.0;
    for (size_t m = 0; m < head.directions.size(); ++m) {
        if (const double cosine = dot(unit(head.directions[m]), towards); cosine > closest + kMargin) {
            closest = cosine;
            best = m;
        }
    }
    return best;
}

std::complex<double> response_at(const Head& head, size_t measurement, Ear ear, double hz) {
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * hz / head.rateHz);
    std::complex<double> sum = 0.0;
    const Signal& x = head.responses[measurement][ear];
    for (size_t i = x.size(); i-- > 0;) {
        sum = sum * step + x[i];
    }
    return sum;
}

}  // namespace zoq::tables
