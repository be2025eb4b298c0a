// modules/x2b/x2b_tables.cpp: four room responses per ear side, from a measured head and a modelled room.
#pragma once

#include <array>
#include <vector>

#include "modules/x2b/x2b.h"
#include "tables/generated_file.h"
#include "tables/head.h"
#include "tables/quality.h"

namespace zoq::tables {

// What characterises a response. Indices [ear on the source's side, other ear].
struct ResponsePlan {
    double azimuth;
    std::array<int, 2> arrivalTap;
    std::array<double, 2> bin0;  // of partition 0: the sum of its taps
    double energyRatio;          // other ear over near ear; 0: as the head has it
};
extern const std::array<ResponsePlan, android::kX2bResponses> kResponsePlans;

struct RoomResponses {
    std::vector<android::creal32_T> sameSide, oppositeSide;  // as parameterX2B holds them: [4][4][513]

    RoomTables tables() const { return {sameSide, oppositeSide}; }
};

// Throws HeadError if the head lacks directions, or is so unusual that the plans cannot be met.
RoomResponses make_room_responses(const Head& head);

// maker: the program; source: where the head comes from and whom to thank, lines of a comment.
GeneratedFile room_responses_file(const RoomResponses& rooms, const std::string& maker,
                                  const std::string& source);

}  // namespace zoq::tables
