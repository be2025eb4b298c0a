// Equalizer texts as headphone databases and measuring programs write them, read as one curve in dB.
//
//   Preamp: -6.2 dB
//   Filter 1: ON PK Fc 105 Hz Gain -2.1 dB Q 0.70        also LS LSC LSQ HS HSC HSQ LP LPQ HP HPQ BP NO AP, BW Oct n
//   GraphicEQ: 20 -0.5; 21 -0.4; 22 -0.3
//
// Fc is a shelf's middle; of an LS or HS without a Q it is the corner. A graphic curve is linear in dB over the
// logarithm of frequency and level outside its points.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/zoq/tuning/eq_design.h"

namespace zoq {

struct GraphicPoint {
    double hz, db;
};

struct EqTarget {
    std::vector<EqSection> sections;
    std::vector<std::vector<GraphicPoint>> graphs;
    double preampDb = 0.0;             // the sum of the Preamp lines; not part of db()
    std::vector<std::string> remarks;  // one line each on what was passed over

    double db(double hz) const;
};

// Throws Failure, with the line's number, where the text cannot be followed. name is for messages.
EqTarget read_eq_text(std::string_view text, const std::string& name);

}  // namespace zoq
