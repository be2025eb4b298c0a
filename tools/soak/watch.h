// What must hold after every block, whatever the settings and the stream.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/soak/schedule.h"

namespace soak {

// A block between guards, at an alignment of its own.
class GuardedBlock {
  public:
    explicit GuardedBlock(const std::vector<int16_t>& given, size_t offset);
    int16_t* data() { return memory_.data() + start_; }
    const int16_t* data() const { return memory_.data() + start_; }
    size_t size() const { return size_; }
    bool guards_stand() const;

  private:
    size_t start_, size_;
    std::vector<int16_t> memory_;
};

struct Totals {
    int64_t blocks = 0, sampleFrames = 0, processed[2] = {};  // loudspeaker, headphones
    int64_t values = 0;  // whose blocks were settling or held nothing but processed sound
    int64_t strings = 0, hostilePhases = 0, resets = 0, recoveries = 0, initialisations = 0;
};

// Follows one episode. Every check returns what is wrong, or an empty text.
class Watch {
  public:
    Watch();
    void begin_phase(const Phase& phase);
    std::string check_block(const Phase& phase, const std::vector<int16_t>& given, const GuardedBlock& block);
    std::string check_records() const;
    Totals totals;

  private:
    std::string check_books() const;
    std::string check_values(const std::vector<int16_t>& given, const GuardedBlock& block) const;
    std::string check_resets(int64_t blockFrames);
    bool all_wet() const;  // whether the block holds nothing but processed sound
    void count(const Phase& phase, const std::vector<int16_t>& given);

    uint64_t recordHash_;
    uint32_t resets_;
    // Sample frames in a row that were processed: under legal settings, without any fade, from silence.
    int64_t legal_ = 0, wet_ = 0, silent_ = 0;
    int mixRampBefore_ = 0, queuedBefore_ = 0;
    bool ranDry_ = false;  // the queue was short, so that the block came back as it was
};

}  // namespace soak
