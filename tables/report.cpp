#include "tables/report.h"

#include <cstdarg>
#include <cstdio>
#include <string>

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

}  // namespace zoq::tables
