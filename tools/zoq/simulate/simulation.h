// A host's playback through the engine, block by block, with a click now and then whose way out is timed.
#pragma once

#include <string>
#include <vector>

#include "tools/zoq/settings_options.h"
#include "tools/zoq/simulate/schedule.h"

namespace zoq {

enum class BlockState { kUntouched, kDry, kFadingIn, kProcessed, kFadingOut, kUnderrun };
const char* state_name(BlockState state);

// A block after it came back.
struct PlayedBlock {
    double seconds;  // when it began
    int frames, rate;
    int64_t device;
    BlockState state;
    int mix;                  // of the crossfade: 0 dry, 5120 processed
    int inFrames, outFrames;  // received and waiting, in sample frames
    Latency latency;          // expected of the sound in it
    int volume;               // index
    int fullDb;               // full compression of the route, at this volume index on the loudspeaker
    bool asPredicted;         // untouched, short and queue as the documentation says
};

struct SimulatedClick {
    double seconds;
    std::vector<int> expected;  // delays in sample frames; two while a fade mixes the input with the result
    int measured;               // of the loudest sample behind it; -1 when it never came out
};

struct SimulationOptions {
    EngineSettings engine;
    std::vector<HostEvent> events;  // in order of time
    double seconds = 2.0;
};

struct Simulation {
    std::vector<PlayedBlock> blocks;
    std::vector<SimulatedClick> clicks;
    std::vector<HostEvent> events;  // those that came to pass
};

// Throws Interrupted.
Simulation simulate(const SimulationOptions& options);

// Block sizes from 1 to 4096 sample frames that ran through the engine without a short queue, over all that such a
// size can do.
struct Scan {
    int sizes = 0;
    std::vector<int> neverShort;
};
Scan scan_block_sizes();

}  // namespace zoq
