#include <string>

#include "tables/room_responses.h"
#include "tools/zoq/tables/panel_text.h"
#include "tools/zoq/tables/panels.h"

namespace zoq {

namespace {

using android::kSampleRateHz;
using gnuplot::block;
using gnuplot::joined;
using gnuplot::line;
using gnuplot::power_db;
using gnuplot::Rows;
using tables::Signal;

const char* side_name(int side) {
    return side == tables::kSameSide ? "ear on the same side" : "opposite ear";
}

std::string response_title(int r) {
    return std::to_string(r + 1) + ": " + std::to_string(int(tables::kResponsePlans[size_t(r)].azimuth)) +
           " degrees";
}

std::vector<std::string> response_lines(const std::string& source, double width) {
    std::vector<std::string> lines;
    for (int r = 0; r < android::kX2bResponses; ++r) {
        lines.push_back(line(source, "1:" + std::to_string(r + 2), response_title(r), size_t(r), width));
    }
    return lines;
}

Panel room_start(const tables::RoomTables& rooms, int side) {
    constexpr size_t kShown = kSampleRateHz / 1000 * 3 / 2;  // 1.5 ms
    Rows rows(kShown);
    for (size_t n = 0; n < kShown; ++n) {
        rows[n].push_back(double(n) * 1000.0 / kSampleRateHz);
        for (int r = 0; r < android::kX2bResponses; ++r) {
            rows[n].push_back(tables::room_response(rooms, side, r)[n]);
        }
    }
    const std::string name = side == tables::kSameSide ? "start_same" : "start_opposite";
    return {block(name, rows), std::string("set title 'room responses: ") + side_name(side) +
                                   ", first 1.5 ms'\n" +
                                   "set xrange [0:1.5]\nset xlabel 'time (ms)'\nset ylabel 'amplitude'\n"
                                   "set xzeroaxis lt 1 lc rgb '#909090'\n" +
                                   joined(response_lines("$" + name, 1.8))};
}

// Level of half-millisecond blocks, as thick lines; what is left from each moment on, as thin ones.
Panel room_decay(const tables::RoomTables& rooms, int side) {
    constexpr size_t kBlock = kSampleRateHz / 2000;
    constexpr size_t kBlocks = size_t(tables::kRoomTaps) / kBlock;
    Rows levels(kBlocks), left(kBlocks);
    for (size_t i = 0; i < kBlocks; ++i) {
        levels[i].push_back((double(i) + 0.5) * kBlock * 1000.0 / kSampleRateHz);
        left[i].push_back(double(i) * kBlock * 1000.0 / kSampleRateHz);
    }
    for (int r = 0; r < android::kX2bResponses; ++r) {
        const Signal x = tables::room_response(rooms, side, r);
        double behind = tables::energy({x.begin() + kBlocks * kBlock, x.end()});
        for (size_t i = kBlocks; i-- > 0;) {
            const double power = tables::energy(
                {x.begin() + std::ptrdiff_t(i * kBlock), x.begin() + std::ptrdiff_t((i + 1) * kBlock)});
            behind += power;
            levels[i].push_back(power_db(power / kBlock));
            left[i].push_back(power_db(behind));
        }
    }
    const std::string name = side == tables::kSameSide ? "same" : "opposite";
    std::vector<std::string> lines = response_lines("$level_" + name, 2.2);
    for (std::string thin : response_lines("$left_" + name, 1.0)) {
        thin.resize(thin.rfind(" title"));
        lines.push_back(thin + " dt 2");
    }
    return {block("level_" + name, levels) + block("left_" + name, left),
            std::string("set title 'room responses: ") + side_name(side) +
                ", power per sample; dashed: energy still to come'\n"
                "set xrange [0:42.7]\nset yrange [-110:5]\nset ytics 20\nset xlabel 'time (ms)'\n"
                "set ylabel 'level (dB)'\n" +
                joined(lines)};
}

}  // namespace

std::vector<Panel> room_panels(const tables::RoomTables& rooms) {
    return {room_start(rooms, tables::kSameSide), room_start(rooms, tables::kOppositeSide),
            room_decay(rooms, tables::kSameSide), room_decay(rooms, tables::kOppositeSide)};
}

}  // namespace zoq
