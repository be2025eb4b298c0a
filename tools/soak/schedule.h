// What happens next in an episode: a phase of settings, stream and signal, and what it may be expected to sound like.
#pragma once

#include <string>
#include <vector>

#include "tools/soak/random.h"
#include "tools/soak/signals.h"

namespace soak {

struct Stream {
    int sampleFrames, channels, sampleRate;
    int values() const { return sampleFrames * channels; }
};

// How far the settings in force may take the engine.
enum class Temper {
    kModest,   // bands within +-6 dB: music stays well audible
    kLegal,    // anything within the documented ranges
    kHostile,  // not-a-numbers, infinities and absurd numbers
};

struct Phase {
    Temper temper;
    Stream stream;
    Signal signal;
    int64_t sampleFrames;
    int volume;
    bool initialise;                   // ZOQ_OUTPROC_PLAY_INIT comes first
    bool badBlocks;                    // a block that cannot be played stands before every tenth
    bool recovers;                     // sane settings for every key behind hostile ones, music
    std::vector<std::string> strings;  // for ZOQ_PARAMS_SET
    std::string text;                  // for the configuration reader
};

class Schedule {
  public:
    explicit Schedule(uint64_t seed) : random_(seed) {}
    Phase next();

  private:
    void choose_settings(Phase& phase);
    Stream any_stream();

    Random random_;
    Stream stream_ = {512, 2, 48000};
    std::string switch_ = "true";
    int device_ = 2;
    bool recovering_ = false;
};

}  // namespace soak
