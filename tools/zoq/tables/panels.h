// Each diagram of the tables as gnuplot has it.
#pragma once

#include <string>
#include <vector>

#include "tables/check.h"

namespace zoq {

struct Panel {
    std::string data;      // named data blocks; they stand before all panels
    std::string commands;  // from a reset state to the plot
};

Panel curve_panel(const android::parameterDEN& den);
// Magnitudes, impulse responses.
std::vector<Panel> widening_panels(const android::parameterTWS& tws);
// For each side the first milliseconds; for each side the decay.
std::vector<Panel> room_panels(const tables::RoomTables& rooms);
Panel bass_panel(const std::array<android::parameterVB, tables::kBassCutoffsHz.size()>& records);

}  // namespace zoq
