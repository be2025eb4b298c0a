#include "tables/report.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "tables/room_responses.h"
#include "tables/widening_filters.h"

namespace zoq::tables {

namespace {

[[gnu::format(printf, 1, 2)]] std::string format(const char* form, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, form);
    std::vsnprintf(text, sizeof text, form, arguments);
    va_end(arguments);
    return text;
}

void report_checkpoints(std::ostream& out, const char* name, Bins filter,
                        const std::vector<BinLevel>& checkpoints) {
    out << name << ":";
    for (const BinLevel& point : checkpoints) {
        out << format("  bin %d %.6g", point.bin, magnitude(filter, point.bin));
    }
    out << "\n";
}

void report_ears(std::ostream& out, const char* name, const Interaural& ears) {
    out << name << format(": delay %.1f samples, level by octaves from 500 Hz", ears.delaySamples);
    for (const double level : ears.levelDb) {
        out << format(" %.1f", level);
    }
    out << " dB\n";
}

void report_rendering(std::ostream& out, const char* name, double width, const RenderingQuality& quality) {
    out << name
        << format(" at width %.1f: %.2f dB against the dry path, thirds deviate by %.2f dB, range %.1f dB\n",
                  width, quality.levelDb, quality.colourationDb, quality.rangeDb);
}

}  // namespace

void report_widening(std::ostream& out, Bins sameSide, Bins crossFeed, const Head& head) {
    report_checkpoints(out, "same side ", sameSide, kSameSideCheckpoints);
    report_checkpoints(out, "cross-feed", crossFeed, kCrossFeedCheckpoints);
    const WideningQuality quality = measure_widening(sameSide, crossFeed);
    out << format("cross-feed bins 1, 2: %.4f %.4f\n", magnitude(crossFeed, 1), magnitude(crossFeed, 2));
    out << format("peaks at samples %d and %d; outside 7..466 %.0f dB\n", quality.sameSidePeak,
                  quality.crossFeedPeak, quality.outsideDb);
    out << format("centre gains at most %.2f dB, at bin %d\n", quality.midGainDb, quality.midGainBin);
    for (const double degrees : {5.0, 10.0, 15.0}) {
        out << format("far ear, loudspeakers at +-%2.0f degrees, thirds 500 Hz..2 kHz, dB:", degrees);
        for (const double level : far_ear_db(sameSide, crossFeed, head, degrees)) {
            out << format(" %.1f", level);
        }
        out << "\n";
    }
}

void report_rooms(std::ostream& out, const RoomTables& rooms, const Head& head) {
    for (int r = 0; r < android::kX2bResponses; ++r) {
        const ResponseQuality q = measure_response(rooms, r);
        const double azimuth = kResponsePlans[size_t(r)].azimuth;
        out << format("response %d, azimuth %.0f: arrivals %d %d, bin 0 %.7g %.7g, energy ratio %.5f\n",
                      r + 1, azimuth, q.arrival[0], q.arrival[1], q.bin0[0], q.bin0[1], q.energyRatio);
        for (const auto& share : q.share) {
            out << "   partitions:";
            for (const double part : share) {
                out << format(" %.5f (%.1f dB)", part, decibel(part));
            }
            out << "\n";
        }
        report_ears(out, "   ears", q.ears);
        report_ears(out, "   head", interaural(head, {azimuth, 0.0}));
        out << format(
            "   tail: T60 %.3f s, correlation of the ears %.2f; wrap-around %.0f dB, imaginary at the edges "
            "%g\n",
            q.tailT60Seconds, q.tailCoherence, q.wrapAroundDb, q.edgeImaginary);
    }
    for (const double width : {0.2, 0.5, 0.7, 1.0}) {
        report_rendering(out, "lateral", width, measure_lateral(rooms, width));
        report_rendering(out, "centre ", width, measure_centre(rooms, width));
    }
}

}  // namespace zoq::tables
