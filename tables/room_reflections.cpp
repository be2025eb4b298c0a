#include <cmath>
#include <numbers>

#include "dsp/frame.h"
#include "tables/room_parts.h"

namespace zoq::tables {

namespace {

struct Point {
    double x, y, z;  // metres: to the front, to the left, up
};

// A furnished living room, the listener a little off its middle so that no two walls answer together.
constexpr Point kRoom = {5.2, 4.0, 2.6};
constexpr Point kListener = {2.4, 1.9, 1.2};
constexpr double kSourceDistance = 1.8;
constexpr double kWallReflection = 0.62;  // of the pressure, per wall
constexpr double kWallCornerHz = 6000.0;  // walls take the treble; lower with every further wall
constexpr int kOrder = 3;
constexpr double kLevel = 0.33;  // quieter than in the room: enough to leave the head, not to colour

// At low frequencies all reflections add in phase, which would boom.
constexpr double kBassCornerHz = 180.0;

constexpr double kSpeedOfSound = 343.0;
constexpr double kFlattened = 0.6;
constexpr size_t kHeadTaps = 192;
constexpr double kLowestElevation = -40.0;  // where the measurements of heads end

// Coordinate of a source seen m times mirrored along an axis of a room.
double mirrored(int m, double length, double source) {
    return m * length + (m % 2 == 0 ? source : length - source);
}

struct Image {
    Direction direction;
    double distance;
    int walls;
};

std::vector<Image> images(double azimuth) {
    const double a = azimuth * std::numbers::pi / 180.0;
    const Point source = {kListener.x + kSourceDistance * std::cos(a),
                          kListener.y + kSourceDistance * std::sin(a), kListener.z};
    std::vector<Image> found;
    for (int i = -kOrder; i <= kOrder; ++i) {
        for (int j = -kOrder; j <= kOrder; ++j) {
            for (int k = -kOrder; k <= kOrder; ++k) {
                const int walls = std::abs(i) + std::abs(j) + std::abs(k);
                if (walls == 0 || walls > kOrder) {
                    continue;
                }
                const double x = mirrored(i, kRoom.x, source.x) - kListener.x;
                const double y = mirrored(j, kRoom.y, source.y) - kListener.y;
                const double z = mirrored(k, kRoom.z, source.z) - kListener.z;
                const double distance = std::hypot(x, y, z), degree = std::numbers::pi / 180.0;
                const double elevation = std::max(std::asin(z / distance) / degree, kLowestElevation);
                found.push_back({{std::atan2(y, x) / degree, elevation}, distance, walls});
            }
        }
    }
    return found;
}

// Adds one reflection; its delay is rounded to the sample, which a reflection's direction can bear.
void add(const HeadModel& head, const Image& image, EarSignals& ears) {
    const double late = (image.distance - kSourceDistance) / kSpeedOfSound * android::kSampleRateHz;
    const double level = kLevel * std::pow(kWallReflection, image.walls) * kSourceDistance / image.distance;
    const HeadModel::Ears heard = head.towards(image.direction, kFlattened);
    const Section wall = lowpass(kWallCornerHz / std::sqrt(double(image.walls)));
    for (size_t ear = 0; ear < 2; ++ear) {
        const Signal response = filtered(wall, minimum_phase(heard.magnitude[ear], kHeadTaps));
        const auto first = size_t(std::lround(late + heard.arrivalSamples[ear]));
        for (size_t n = 0; n < response.size() && first + n < ears[ear].size(); ++n) {
            ears[ear][first + n] += level * response[n];
        }
    }
}

}  // namespace

EarSignals early_reflections(const HeadModel& head, double azimuth, size_t taps) {
    EarSignals ears = {Signal(taps, 0.0), Signal(taps, 0.0)};
    for (const Image& image : images(azimuth)) {
        add(head, image, ears);
    }
    for (Signal& ear : ears) {
        ear = filtered(highpass(kBassCornerHz), ear);
    }
    return ears;
}

}  // namespace zoq::tables
