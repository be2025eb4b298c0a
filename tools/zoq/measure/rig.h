// A signal through a freshly started engine.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tools/zoq/measure/measurements.h"

namespace zoq {

using Signal = std::vector<int16_t>;  // one channel

struct Recording {
    Channels<std::vector<double>> channel;  // full scale 1, from the signal's first sample frame on
    Latency latency;                        // at the end
};

// Called ahead of every block with the number of its first sample frame.
using BeforeBlock = std::function<void(EngineSession&, size_t)>;

// Plays the signal as the excitation says, and silence behind it for as long as it comes out late. The engine is
// settled first, with processing on or off. As many sample frames as the signal has, the latency and what
// fills the last block.
Recording record(const MeasureOptions& options, const Signal& signal, bool processing = true,
                 const BeforeBlock& beforeBlock = nullptr);

}  // namespace zoq
