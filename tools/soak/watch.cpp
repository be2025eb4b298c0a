#include "tools/soak/watch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/poison.h"
#include "host/engine_state.h"

namespace soak {

using namespace android;

namespace {

constexpr size_t kGuard = 128;
constexpr int16_t kPattern = 0x5AA5;
constexpr int kRate = 48000;

constexpr int kMostQueued = 4096;         // values in both rings between blocks
constexpr int kLoudest = 32735;           // the compressor clips at 0.999
constexpr int64_t kAllWet = 10000;        // sample frames after which the queue holds nothing from a fade
constexpr int64_t kSilenced = 3 * kRate;  // memories are empty and quiet
constexpr int64_t kFirstSaneHops = 4096;  // sample frames in which what was hostile may still be cleared

// FNV-1a over the words of a record that nothing writes after the factory fill.
uint64_t hash_words(uint64_t hash, const void* first, size_t bytes) {
    const auto* byte = static_cast<const unsigned char*>(first);
    for (size_t i = 0; i < bytes; ++i) {
        hash = (hash ^ byte[i]) * 0x100000001B3u;
    }
    return hash;
}

uint64_t hash_records() {
    uint64_t hash = 0xCBF29CE484222325u;
    const auto field = [&hash](const auto& value) { hash = hash_words(hash, &value, sizeof value); };
    field(b_parameterDEN.wideCurve);
    field(b_parameterDEN.bandEnd);
    field(b_parameterDEN.bandStart);
    field(b_parameterTWS.sameSideFilter);
    field(b_parameterTWS.crossFeedFilter);
    field(b_parameterEQ.trebleSos);
    field(b_parameterEQ.finalSos);
    field(b_parameterDRC.expThreshold);
    field(b_parameterVB.lowpassSos);
    field(b_parameterVB.outputHighpassSos);
    field(b_parameterX2B.numPartitions);
    field(b_parameterX2B.headphoneDrc.expThreshold);
    field(b_parameterGEQ.bandWarp);
    field(b_parameterGEQ.bandQ);
    return hash;
}

// The large tables, too long to hash after every phase, by a few of their bins.
double large_tables() {
    double sum = 0.0;
    for (int p = 0; p < kX2bPartitions; ++p) {
        for (int k = 0; k < kBins; k += 19) {
            sum += double(b_parameterX2B.ipsiResponse[p][1][k].re) +
                   double(b_parameterX2B.contraResponse[p][2][k].im);
        }
    }
    return sum;
}

bool in(int32_t value, int32_t lo, int32_t hi) {
    return value >= lo && value <= hi;
}

}  // namespace

GuardedBlock::GuardedBlock(const std::vector<int16_t>& given, size_t offset)
    : start_(kGuard + offset), size_(given.size()), memory_(start_ + size_ + kGuard, kPattern) {
    std::copy(given.begin(), given.end(), memory_.begin() + static_cast<ptrdiff_t>(start_));
}

bool GuardedBlock::guards_stand() const {
    const auto untouched = [](int16_t value) { return value == kPattern; };
    return std::all_of(memory_.begin(), memory_.begin() + static_cast<ptrdiff_t>(start_), untouched) &&
           std::all_of(memory_.begin() + static_cast<ptrdiff_t>(start_ + size_), memory_.end(), untouched);
}

Watch::Watch() : recordHash_(hash_records()), resets_(poisonResets) {}

void Watch::begin_phase(const Phase& phase) {
    totals.strings += static_cast<int64_t>(phase.strings.size());
    totals.initialisations += phase.initialise ? 1 : 0;
    totals.hostilePhases += phase.temper == Temper::kHostile ? 1 : 0;
    silent_ = wet_ = 0;
    mixRampBefore_ = 0;  // a long block can hold a whole fade
    legal_ = phase.temper == Temper::kHostile ? 0 : legal_;
}

bool Watch::all_wet() const {
    return wet_ > kAllWet && !ranDry_;
}

std::string Watch::check_books() const {
    const parameterMEM& mem = b_parameterMEM;
    if (!in(mem.inFill, 0, kFrameValues - 1) || !in(mem.outFill, 0, kMostQueued) ||
        mem.inFill + mem.outFill > kMostQueued) {
        return "the rings hold " + std::to_string(mem.inFill) + " and " + std::to_string(mem.outFill) +
               " values";
    }
    if (!in(mem.mixRamp, 0, kRampPairs) || mem.settleCountdown > kSettleSampleFrames) {
        return "crossfade at " + std::to_string(mem.mixRamp) + ", settling " +
               std::to_string(mem.settleCountdown);
    }
    if (mem.headphoneMode != ((gCurOutputDevice & kHeadphoneDevices) != 0 ? 1 : 0)) {
        return "the route is not the device's";
    }
    for (const auto& history : mem.frameHistory) {
        if (!std::all_of(std::begin(history), std::end(history),
                         [](float x) { return std::fabs(x) <= 1.0f; })) {
            return "the history of the input holds more than full scale";
        }
    }
    return "";
}

std::string Watch::check_values(const std::vector<int16_t>& given, const GuardedBlock& block) const {
    const bool same = std::equal(given.begin(), given.end(), block.data());
    if (b_parameterMEM.settleCountdown > 0 && !same) {
        return "a block that passes through while the stream settles was changed";
    }
    const int16_t* end = block.data() + block.size();
    if (all_wet() && std::any_of(block.data(), end, [](int v) { return std::abs(v) > kLoudest; })) {
        return "a processed sample lies beyond the clip";
    }
    if (silent_ > kSilenced && std::any_of(block.data(), end, [](int v) { return v != 0; })) {
        return "silence does not come out as silence";
    }
    return "";
}

std::string Watch::check_resets(int64_t blockFrames) {
    const uint32_t resets = poisonResets - resets_;
    resets_ = poisonResets;
    totals.resets += resets;
    return resets != 0 && legal_ - blockFrames > kFirstSaneHops ? "memories were reset under legal settings"
                                                                : "";
}

void Watch::count(const Phase& phase, const std::vector<int16_t>& given) {
    const parameterMEM& mem = b_parameterMEM;
    const int64_t frames = phase.stream.sampleFrames;
    const bool on = mem.stereoWidenEnable == 1 && mem.settleCountdown <= 0;
    const bool pair = phase.stream.channels == 2;
    ++totals.blocks;
    totals.sampleFrames += frames;
    totals.processed[mem.headphoneMode] += on ? frames : 0;
    legal_ += on && phase.temper != Temper::kHostile ? frames : 0;
    wet_ = on && pair && mem.mixRamp == kRampPairs && mixRampBefore_ == kRampPairs ? wet_ + frames : 0;
    silent_ = wet_ > 0 && phase.signal == Signal::kSilence && phase.temper != Temper::kHostile
                  ? silent_ + frames
                  : 0;
    mixRampBefore_ = mem.mixRamp;
    const int32_t queued = mem.inFill + mem.outFill;
    ranDry_ = queuedBefore_ < kFrameValues && queued >= kFrameValues;
    queuedBefore_ = queued;
    totals.values += mem.settleCountdown > 0 || all_wet() ? static_cast<int64_t>(given.size()) : 0;
}

std::string Watch::check_block(const Phase& phase, const std::vector<int16_t>& given,
                               const GuardedBlock& block) {
    count(phase, given);
    if (!block.guards_stand()) {
        return "a value outside the block was written";
    }
    for (const std::string& fault :
         {check_books(), check_values(given, block), check_resets(phase.stream.sampleFrames)}) {
        if (!fault.empty()) {
            return fault;
        }
    }
    return "";
}

std::string Watch::check_records() const {
    static const double tables = large_tables();
    return hash_records() != recordHash_ || large_tables() != tables ? "a record's tables were changed" : "";
}

}  // namespace soak
