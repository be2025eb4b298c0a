// What the tables must achieve, measured on the records as the library fills them, wherever their data came from.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "modules/den/den.h"
#include "modules/tws/tws.h"
#include "modules/vb/vb.h"
#include "tables/properties.h"
#include "tables/quality.h"

namespace zoq::tables {

inline constexpr std::array<int, 10> kBassCutoffsHz = {60, 70, 80, 100, 120, 150, 180, 200, 220, 250};

// The factory contents that hold tables.
struct Records {
    android::parameterDEN den;
    android::parameterTWS tws;
    android::parameterX2B x2b;
    std::array<android::parameterVB, kBassCutoffsHz.size()> vb;  // one for each cutoff

    RoomTables rooms() const;
};

// The measured head that filters and rooms are compared with, or why there is none.
struct Listener {
    const Head* head = nullptr;
    std::string absent = {};
};

TableReport check_curves(const android::parameterDEN& den);
TableReport check_widening(const android::parameterTWS& tws, const Listener& listener);
std::vector<TableReport> check_rooms(const RoomTables& rooms, const Listener& listener);
TableReport check_bass(const std::array<android::parameterVB, kBassCutoffsHz.size()>& records);

std::vector<TableReport> check_all(const Records& records, const Listener& listener);

// Names of the thirds of an octave that quality.h measures by.
std::string third_name(int third);

}  // namespace zoq::tables
