// What a block must come back as while processing is off: a second, plain set of books.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "fuzz/require.h"
#include "zoq2processing.h"

struct BlockShape {
    int bytes, rate, channels;
    bool hasSamples;
};

class DryStream {
  public:
    void initialised() {
        waiting_.clear();
        queue_.assign(4096, 0);
        known_ = android::b_parameterMEM.stereoWidenEnable == 0;
        rate_ = rate_ < 8000 || rate_ > 48000 ? 48000 : rate_;
        settle_ = settle_ < 0 || settle_ > 32768 ? 0 : settle_;
    }

    // What comes out is no longer what came in, until the stream settles anew with processing off.
    void processing_is_on() { known_ = false; }

    void check(const BlockShape& shape, const std::vector<int16_t>& before,
               const std::vector<int16_t>& after) {
        const bool taken = takes(shape);
        if (!taken) {
            require(after == before, "a block that isn't played comes back untouched");
            return;
        }
        if (!known_) {
            return;
        }
        waiting_.insert(waiting_.end(), before.begin(), before.end());
        while (waiting_.size() >= 1024) {
            queue_.insert(queue_.end(), waiting_.begin(), waiting_.begin() + 1024);
            waiting_.erase(waiting_.begin(), waiting_.begin() + 1024);
        }
        if (queue_.size() < before.size()) {
            require(after == before, "a short queue leaves the block alone");
            known_ = false;  // a frame's worth of older sound stays behind it
            return;
        }
        require(std::equal(after.begin(), after.end(), queue_.begin()), "what comes out is what came in");
        queue_.erase(queue_.begin(), queue_.begin() + static_cast<std::ptrdiff_t>(after.size()));
    }

  private:
    // Whether a block is queued rather than passed through.
    bool takes(const BlockShape& shape) {
        if (shape.bytes >> 1 > android::kMaxBlockValues || shape.channels < 0 || shape.channels > 6) {
            return false;
        }
        const bool wasHeadphone = headphone_;
        headphone_ = (android::gCurOutputDevice & 0x18C) != 0;
        if (shape.rate != rate_ || shape.bytes != bytes_ || headphone_ != wasHeadphone) {
            rate_ = shape.rate;
            bytes_ = shape.bytes;
            settle_ = 6000;
        }
        if (settle_ > 0) {
            settle_ -= shape.channels != 0 ? shape.bytes / shape.channels / 2 : 0;
            if (settle_ > 0) {
                return false;
            }
            waiting_.clear();
            queue_.assign(static_cast<size_t>(shape.bytes / 2 % 1024), 0);
            known_ = android::b_parameterMEM.stereoWidenEnable == 0;
        }
        return shape.hasSamples && shape.bytes >= 0 && shape.channels > 0;
    }

    std::deque<int16_t> waiting_, queue_ = std::deque<int16_t>(4096, 0);
    int rate_ = 48000, bytes_ = 0;  // as the first initialisation leaves them
    long settle_ = 0;
    bool headphone_ = false, known_ = true;
};
