#include <cmath>

#include "tables/check.h"
#include "tables/room_responses.h"

namespace zoq::tables {

namespace {

using android::kX2bPartitions;
using android::kX2bResponses;

constexpr double kEnergyRatioOff = 0.05;
// Partition 0 carries almost all; at the opposite ear, whose direct sound is shadowed, most.
constexpr double kLeastShare[] = {0.95, 0.6};
constexpr double kWrapAroundDb = -120.0;  // float rounding leaves -140

// Against a measured head, whose pinnae differ more from ear to ear than these.
constexpr double kDelayOff = 3.0, kLevelOff = 4.0;

// A room that is heard as one and ends before the response does.
constexpr double kShortestT60 = 0.05, kLongestT60 = 0.25, kCoherence = 0.4;

// The direct sound stays in front; at the other ear the room is what takes the sound out of the head.
constexpr double kDirectWidth = 0.7, kNearLowestDb = 12.0, kFarLowestDb = -4.0, kFarHighestDb = 6.0;

constexpr double kWidths[] = {0.2, 0.5, 0.7, 1.0};
constexpr double kLevelDb = 1.0, kColourationDb = 1.5, kRangeDb = 7.0;

constexpr const char* kSides[] = {"same side", "opposite side"};

std::string digits(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text + "0" : text;
}

// What a value given to six digits leaves open.
double half_of_sixth_digit(double value) {
    return 0.5 * std::pow(10.0, std::floor(std::log10(value)) - 5.0);
}

void check_first_partition(const ResponseQuality& quality, const ResponsePlan& plan,
                           std::vector<Property>& properties) {
    Property arrival{"first arrival, tap", "", {}}, bin0{"bin 0", "", {}};
    for (size_t side = 0; side < 2; ++side) {
        const double tap = plan.arrivalTap[side];
        arrival.figures.push_back({kSides[side], double(quality.arrival[side]), tap, tap});
        const double off = half_of_sixth_digit(plan.bin0[side]);
        bin0.figures.push_back(
            {kSides[side], quality.bin0[side], plan.bin0[side] - off, plan.bin0[side] + off});
    }
    properties.push_back(std::move(arrival));
    properties.push_back(std::move(bin0));
}

void check_energies(const ResponseQuality& quality, const ResponsePlan& plan,
                    std::vector<Property>& properties) {
    // A head decides where the plan has no ratio; straight ahead both ears get the same.
    const bool ahead = plan.azimuth == 0.0;
    const double wanted = ahead ? 1.0 : plan.energyRatio;
    properties.push_back(within(wanted > 0.0 ? wanted * (1 - kEnergyRatioOff) : 0.01,
                                wanted > 0.0 ? wanted * (1 + kEnergyRatioOff) : 0.5,
                                "energy, opposite over same side", "", {{"", quality.energyRatio}}));
    for (size_t side = 0; side < 2; ++side) {
        Property energies{std::string("energy of partition, ") + kSides[side], "dB", {}};
        double above = kUnbounded;
        for (int p = 0; p < kX2bPartitions; ++p) {
            const double value = decibel(quality.energy[side] * quality.share[side][size_t(p)]);
            energies.figures.push_back({"partition " + std::to_string(p), value, -kUnbounded, above});
            above = std::nextafter(value, -kUnbounded);
        }
        properties.push_back(std::move(energies));
        properties.push_back(within(kLeastShare[side], 1,
                                    std::string("share of partition 0, ") + kSides[side], "",
                                    {{"", quality.share[side][0]}}));
    }
}

void check_ears(const Interaural& ears, const ResponsePlan& plan, const Listener& listener,
                std::vector<Property>& properties) {
    Property delay{"interaural delay", "samples", {{"", ears.delaySamples}}, listener.absent};
    Property level{"interaural level", "dB", {}, listener.absent};
    for (size_t octave = 0; octave < ears.levelDb.size(); ++octave) {
        level.figures.push_back({digits(kLevelOctavesHz[octave] / 1000.0) + " kHz", ears.levelDb[octave]});
    }
    if (listener.head != nullptr) {
        const Interaural head = interaural(*listener.head, {plan.azimuth, 0.0});
        delay.figures[0].low = head.delaySamples - kDelayOff;
        delay.figures[0].high = head.delaySamples + kDelayOff;
        for (size_t octave = 0; octave < head.levelDb.size(); ++octave) {
            level.figures[octave].low = head.levelDb[octave] - kLevelOff;
            level.figures[octave].high = head.levelDb[octave] + kLevelOff;
        }
    }
    properties.push_back(std::move(delay));
    properties.push_back(std::move(level));
}

TableReport check_response(const RoomTables& rooms, int r, const Listener& listener) {
    const ResponsePlan& plan = kResponsePlans[size_t(r)];
    const ResponseQuality quality = measure_response(rooms, r);
    TableReport report{
        "room response " + std::to_string(r + 1) + ", " + std::to_string(int(plan.azimuth)) + " degrees", {}};
    std::vector<Property>& properties = report.properties;
    check_first_partition(quality, plan, properties);
    check_energies(quality, plan, properties);
    check_ears(quality.ears, plan, listener, properties);
    properties.push_back(within(0, 0, "imaginary part at bins 0 and 512", "", {{"", quality.edgeImaginary}}));
    properties.push_back(
        within(-kUnbounded, kWrapAroundDb, "wrap-around", "dB", {{"", quality.wrapAroundDb}}));
    properties.push_back(
        within(kShortestT60, kLongestT60, "T60 of the tail", "s", {{"", quality.tailT60Seconds}}));
    properties.push_back(
        within(0, kCoherence, "likeness of the ears' tails", "", {{"", quality.tailCoherence}}));
    return report;
}

TableReport check_rendering(const RoomTables& rooms) {
    TableReport report{"room rendering", {}};
    const auto [near, far] = direct_to_reverberant_db(rooms, kDirectWidth);
    const std::string at = "width " + digits(kDirectWidth);
    report.properties.push_back(
        within(kNearLowestDb, kUnbounded, "sides, direct over reverberant, same side", "dB", {{at, near}}));
    report.properties.push_back(within(kFarLowestDb, kFarHighestDb,
                                       "sides, direct over reverberant, opposite side", "dB", {{at, far}}));
    for (const auto& [name, measure] :
         {std::pair{"sides", &measure_lateral}, std::pair{"centre", &measure_centre}}) {
        std::vector<Figure> level, colouration, range;
        for (const double width : kWidths) {
            const RenderingQuality quality = measure(rooms, width);
            level.push_back({"width " + digits(width), quality.levelDb});
            colouration.push_back({"width " + digits(width), quality.colourationDb});
            range.push_back({"width " + digits(width), quality.rangeDb});
        }
        const std::string who = name;
        report.properties.push_back(
            within(-kLevelDb, kLevelDb, who + ", level against the dry path", "dB", std::move(level)));
        report.properties.push_back(within(0, kColourationDb,
                                           who + ", colouration, standard deviation by thirds", "dB",
                                           std::move(colouration)));
        report.properties.push_back(
            within(0, kRangeDb, who + ", colouration, highest over lowest third", "dB", std::move(range)));
    }
    return report;
}

}  // namespace

std::vector<TableReport> check_rooms(const RoomTables& rooms, const Listener& listener) {
    std::vector<TableReport> reports;
    for (int r = 0; r < kX2bResponses; ++r) {
        reports.push_back(check_response(rooms, r, listener));
    }
    reports.push_back(check_rendering(rooms));
    return reports;
}

}  // namespace zoq::tables
