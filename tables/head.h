// A measured head: impulse responses from many directions to both ears.
#pragma once

#include <array>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tables/signal.h"

namespace zoq::tables {

// As SOFA has them: azimuth anticlockwise from straight ahead (90 is left), elevation up; degrees.
struct Direction {
    double azimuth, elevation;
};

enum Ear { kLeftEar, kRightEar };

struct Head {
    double rateHz = 0.0;
    std::vector<Direction> directions;
    std::vector<std::array<Signal, 2>> responses;  // [direction][ear], all of one length, delays included
    std::vector<std::string> credits;              // what its file says of source, authors and licence
};

// What is wrong with a file and what to do about it, in one sentence.
struct HeadError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Throws HeadError unless the rate is sensible, all values are finite, no response is silent and the left ear
// comes first. read_head (tables/head_file.h) has done it.
void require_sound(const Head& head);

// Directions that a head must have been measured near to be of use, and how near: degrees.
struct NeededDirection {
    Direction direction;
    double within;
};
// Throws HeadError that names those it lacks.
void require_directions(const Head& head, std::span<const NeededDirection> needed);

// Angle between two directions, degrees.
double angle(const Direction& a, const Direction& b);
// The measurement nearest to a direction.
size_t nearest(const Head& head, const Direction& wanted);

// The response of one measurement at one frequency.
std::complex<double> response_at(const Head& head, size_t measurement, Ear ear, double hz);

}  // namespace zoq::tables
