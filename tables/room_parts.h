// What follows the direct sound in a room response: early reflections and the tail.
#pragma once

#include <array>

#include "tables/head_model.h"
#include "tables/signal.h"

namespace zoq::tables {

using EarSignals = std::array<Signal, 2>;  // [ear on the source's side, other ear]

// Reflections of a source at this azimuth (0..180), taps counted from the direct sound's arrival straight
// ahead.
EarSignals early_reflections(const HeadModel& head, double azimuth, size_t taps);

// A diffuse tail; seed: another number, another tail of the same statistics.
EarSignals diffuse_tail(unsigned seed, size_t taps);

}  // namespace zoq::tables
