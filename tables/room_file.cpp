#include <algorithm>
#include <cmath>

#include "tables/room_responses.h"

namespace zoq::tables {

using android::creal32_T;
using android::kBins;
using android::kX2bPartitions;
using android::kX2bResponses;

namespace {

void add_table(SourceText& text, const std::string& name, const std::vector<creal32_T>& table) {
    text.line("const creal32_T " + name + "[kX2bPartitions][kX2bResponses][kBins] = {");
    for (int p = 0; p < kX2bPartitions; ++p) {
        text.line("    {");
        for (int r = 0; r < kX2bResponses; ++r) {
            text.line("    {  // partition " + std::to_string(p) + ", response " + std::to_string(r + 1));
            text.values(Bins(table).subspan(first_bin(p, r), kBins));
            text.line("    },");
        }
        text.line("    },");
    }
    text.line("};");
}

std::string worst_error(const RoomTables& rooms) {
    double bin0 = 0.0, ratio = 0.0;
    for (int r = 0; r < kX2bResponses; ++r) {
        const ResponsePlan& plan = kResponsePlans[size_t(r)];
        const ResponseQuality quality = measure_response(rooms, r);
        for (size_t ear = 0; ear < 2; ++ear) {
            bin0 = std::max(bin0, std::fabs(quality.bin0[ear] / plan.bin0[ear] - 1.0));
        }
        if (plan.energyRatio > 0.0) {
            ratio = std::max(ratio, std::fabs(quality.energyRatio / plan.energyRatio - 1.0));
        }
    }
    return rounded(bin0) + " of bin 0, " + rounded(ratio) +
           " of the energy ratios; the arrival taps are exact.";
}

}  // namespace

GeneratedFile room_responses_file(const RoomResponses& rooms, const std::string& maker,
                                  const std::string& source) {
    SourceText text("modules/x2b/x2b_tables.h", "The room responses. Made by \"" + maker +
                                                    "\" (tables/room_responses.cpp).\n" + source +
                                                    R"(
Formula: direct sound of the head, diffuse-field equalised and of minimum phase, at its arrival tap; mirror
images of a 5.2 x 4.0 x 2.6 m room, each through the head; a diffuse tail; a high-pass that sets bin 0.
Azimuths 0, 30, 60 and 130 degrees; rows are half spectra of the 512-tap partitions.
Worst error: )" + worst_error(rooms.tables()));
    add_table(text, "kIpsiResponse", rooms.sameSide);
    text.line("");
    add_table(text, "kContraResponse", rooms.oppositeSide);
    // Small values lose digits to the rounding of sums whose order is the compiler's: 1e-12 of the peak.
    // Allowed is half a unit in the last place of the largest value.
    return {"modules/x2b/x2b_tables.cpp", text.finish(), {.ulps = 1, .ofPeak = 0x1p-24}};
}

}  // namespace zoq::tables
