// Impulse responses from an exponential sweep.
//
// The engine is level dependent (compressor, expander, virtual bass) and its virtual bass makes harmonics. A sweep's
// frequency rises so that each harmonic of the whole sweep is the sweep itself, earlier by a fixed time: divided by the
// sweep, the output falls apart into the impulse response of the linear part and, well ahead of it, one for each
// harmonic, which are cut off. What remains is the response at the sweep's level, each frequency with the gain that
// the compressor had at its time.
#pragma once

#include "tools/zoq/measure/measurements.h"

namespace zoq {

inline constexpr int kImpulseLead = 960;    // sample frames ahead of the expected latency
inline constexpr int kImpulseTail = 24000;  // and behind it

struct SweepResult {
    Latency latency;  // as the engine's state has it
    Impulse impulse;  // kImpulseLead + kImpulseTail sample frames
};

SweepResult play_sweep(const MeasureOptions& options);

}  // namespace zoq
