// What the documentation says about blocks, in closed form: where output is untouched, delayed or short. It knows
// nothing of the engine, whose answers are held against it.
#pragma once

#include <cstdint>

namespace zoq {

class BlockPrediction {
  public:
    struct Answer {
        bool untouched = false;  // the stream settles
        bool restarts = false;   // the first block behind the untouched ones
        bool underrun = false;
        int queueFrames = 0;  // delay of the sound that this block brings
    };

    // The next block, of so many sample frames, at this rate, on this route.
    Answer next(int blockFrames, int rate, bool headphone);

    // The host initialises the engine between two blocks.
    void initialise();

  private:
    int blockFrames_ = 0, rate_ = 0;
    bool headphone_ = false;
    int64_t untouchedFrames_ = 0;  // since the last change
    int64_t blocks_ = 0;           // since the first processed one
    int queueFrames_ = 0;
    bool wasShort_ = false;
};

// Whether blocks of this size never run the queue short.
bool never_underruns(int blockFrames);

}  // namespace zoq
