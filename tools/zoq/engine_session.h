// The engine as a phone drives it: through the exported entry points, block by block.
//
// The engine's state is process-wide, so one session at a time; what was set in an earlier one stays set.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zoq {

inline constexpr int kEngineRate = 48000;  // Hz

enum class Route { kSpeaker, kHeadphone };

// One hop of the engine: a block of that size comes back in the same call, without a queue, and the queue
// never runs short.
inline constexpr int kDefaultBlockFrames = 512;
inline constexpr int kMaxBlockFrames = 18432;

// How much later the output is than the input, in sample frames.
struct Latency {
    int queue = 0;     // from blocks that are not whole hops
    int chain = 0;     // the chain's own hop
    int widening = 0;  // the widening filters
    int total() const { return queue + chain + widening; }
};

class EngineSession {
  public:
    // Initialises the engine, configuration file included, for stereo blocks of 1..18432 sample frames at
    // 48000 Hz, with processing off, for the loudspeaker.
    explicit EngineSession(int blockFrames);

    // Settings, at any time between two blocks.
    void set(const std::string& keyValuePairs);
    std::string get(const std::string& keys) const;
    void set_processing(bool on);
    void set_route(Route route);
    void set_volume(int index);

    // One block, in place.
    void play(int16_t* block);

    // Plays silence until nothing but the input changes the output: the pass-through after a change of stream
    // is over, processing is faded in or out, and the queue will not run short any more.
    void settle();

    // Now; all zero while blocks pass through untouched.
    Latency latency() const;

    int block_frames() const { return blockFrames_; }
    int64_t blocks() const { return blocks_; }  // played so far
    // The blocks, counted from 0, that came back unprocessed because the queue ran short.
    const std::vector<int64_t>& short_blocks() const { return shortBlocks_; }
    double seconds() const { return seconds_; }  // spent inside the engine

  private:
    bool steady() const;

    const int blockFrames_;
    int64_t blocks_ = 0;
    std::vector<int64_t> shortBlocks_;
    double seconds_ = 0.0;
};

}  // namespace zoq
