#include "tools/zoq/simulate/prediction.h"

namespace zoq {

namespace {

constexpr int kHop = 512;  // sample frames
constexpr int kSettleFrames = 6000;
constexpr int kZerosOfInit = 2048;  // sample frames in the queue behind an initialisation
constexpr int kLowestRate = 8000, kHighestRate = 48000;

}  // namespace

BlockPrediction::Answer BlockPrediction::next(int blockFrames, int rate, bool headphone) {
    if (blockFrames != blockFrames_ || rate != rate_ || headphone != headphone_) {
        blockFrames_ = blockFrames;
        rate_ = rate;
        headphone_ = headphone;
        untouchedFrames_ = 0;
        blocks_ = -1;
    }
    Answer answer;
    if (blocks_ < 0) {
        untouchedFrames_ += blockFrames;
        if (untouchedFrames_ < kSettleFrames) {
            answer.untouched = true;
            return answer;
        }
        answer.restarts = true;
        blocks_ = 0;
        queueFrames_ = blockFrames % kHop;
        wasShort_ = false;
    }
    // What earlier blocks left over of whole hops; the queue bridges the rest of a hop if it holds that much.
    const auto over = static_cast<int>(blocks_ * blockFrames % kHop);
    ++blocks_;
    if (!wasShort_ && over > 0 && over + blockFrames % kHop < kHop) {
        answer.underrun = true;
        wasShort_ = true;
        queueFrames_ = kHop + static_cast<int>(blocks_ * blockFrames % kHop);
    }
    answer.queueFrames = queueFrames_;
    return answer;
}

// The stream is remembered, so that it goes on without settling, or settles on; only a rate out of range is forgotten.
// More than a hop in the queue is never short.
void BlockPrediction::initialise() {
    if (rate_ < kLowestRate || rate_ > kHighestRate) {
        rate_ = kHighestRate;
    }
    if (blocks_ >= 0) {
        blocks_ = 0;
        queueFrames_ = kZerosOfInit;
        wasShort_ = true;
    }
}

// What is left over takes every multiple of the greatest common divisor of block and hop, a power of two; the least
// of them, that divisor itself, must be enough.
bool never_underruns(int blockFrames) {
    const int rest = blockFrames % kHop;
    const int divisor = blockFrames & -blockFrames;
    return rest == 0 || kHop - rest <= divisor;
}

}  // namespace zoq
