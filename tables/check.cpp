#include "tables/check.h"

namespace zoq::tables {

using android::kBins;
using android::kX2bPartitions;
using android::kX2bResponses;

RoomTables Records::rooms() const {
    constexpr size_t kSize = size_t{kX2bPartitions} * kX2bResponses * kBins;
    return {Bins(&x2b.ipsiResponse[0][0][0], kSize), Bins(&x2b.contraResponse[0][0][0], kSize)};
}

std::vector<TableReport> check_all(const Records& records, const Listener& listener) {
    std::vector<TableReport> reports = check_rooms(records.rooms(), listener);
    reports.insert(reports.begin(), {check_curves(records.den), check_widening(records.tws, listener)});
    reports.push_back(check_bass(records.vb));
    return reports;
}

std::string third_name(int third) {
    static const char* const kNames[kThirds] = {
        "125 Hz", "160 Hz",  "200 Hz",   "250 Hz",  "315 Hz",   "400 Hz",  "500 Hz",   "630 Hz",
        "800 Hz", "1 kHz",   "1.25 kHz", "1.6 kHz", "2 kHz",    "2.5 kHz", "3.15 kHz", "4 kHz",
        "5 kHz",  "6.3 kHz", "8 kHz",    "10 kHz",  "12.5 kHz", "16 kHz"};
    return kNames[third];
}

}  // namespace zoq::tables
