// The worst block of an hour: music, noise and silence in blocks of one hop, settings legal and hostile, routes and
// the switch changing between them. The same hour is played several times and every block keeps its least time, so
// that what else the machine did falls away and what the block itself costs stays.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <vector>

#include "host/configuration.h"
#include "tools/soak/schedule.h"
#include "zoq2processing.h"

namespace {

using namespace android;

constexpr int kBlockFrames = kHopSamples;
constexpr double kBlockMicroseconds = 1e6 * kBlockFrames / kSampleRateHz;

// What a block did.
enum Kind { kLoudspeaker, kHeadphones, kUnprocessed, kKinds };
constexpr const char* kNames[] = {"loudspeaker", "headphones", "settling or off"};

struct Block {
    Kind kind;
    float microseconds = std::numeric_limits<float>::max();
};

// Time this thread has run: what others took the processor for does not count.
double thread_microseconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e6 * static_cast<double>(now.tv_sec) + 1e-3 * static_cast<double>(now.tv_nsec);
}

void begin(const soak::Phase& phase) {
    for (const std::string& pairs : phase.strings) {
        ZOQ_PARAMS_SET(String8(pairs.c_str()));
    }
    apply_configuration_text(phase.text.data(), phase.text.size());
    ZOQ_update_volume(phase.volume, AUDIO_STREAM_MUSIC);
}

Kind kind_of_last_block(bool wasDry) {
    const parameterMEM& mem = b_parameterMEM;
    if (mem.settleCountdown > 0 || (mem.stereoWidenEnable != 1 && wasDry)) {
        return kUnprocessed;
    }
    return mem.headphoneMode == 1 ? kHeadphones : kLoudspeaker;
}

// Plays the whole schedule once.
void play(std::vector<Block>& blocks) {
    b_parameterMEM = {};
    gCurOutputDevice = AUDIO_DEVICE_OUT_SPEAKER;
    ZOQ_OUTPROC_PLAY_INIT();
    soak::Schedule schedule(1);
    std::vector<int16_t> samples(2 * kBlockFrames);
    soak::Phase phase;
    int64_t left = 0, position = 0;
    for (Block& block : blocks) {
        if (left <= 0) {
            phase = schedule.next();
            left = phase.sampleFrames;
            begin(phase);
        }
        soak::fill(phase.signal, position, 2, samples);
        const bool dry = b_parameterMEM.mixRamp == 0;
        const double start = thread_microseconds();
        ZOQ_OUTPROC_PLAY_SAMPLES(samples.data(), 4 * kBlockFrames, kSampleRateHz, 2);
        block.microseconds = std::min(block.microseconds, static_cast<float>(thread_microseconds() - start));
        block.kind = kind_of_last_block(dry);
        left -= kBlockFrames;
        position += kBlockFrames;
    }
}

void report(const std::vector<Block>& blocks, Kind kind) {
    std::vector<float> times;
    for (const Block& block : blocks) {
        if (block.kind == kind) {
            times.push_back(block.microseconds);
        }
    }
    if (times.empty()) {
        return;
    }
    std::sort(times.begin(), times.end());
    const auto at = [&](double share) {
        return static_cast<double>(times[static_cast<size_t>(share * static_cast<double>(times.size() - 1))]);
    };
    const double median = at(0.5);
    std::printf("%-16s %8zu %9.1f %8.2f %8.2f %8.2f %8.2f %8.1f %%\n", kNames[kind], times.size(), median,
                at(0.99) / median, at(0.999) / median, at(0.9999) / median, at(1.0) / median,
                100.0 * at(1.0) / kBlockMicroseconds);
}

}  // namespace

int main(int argc, char** argv) {
    const int minutes = argc > 1 ? std::atoi(argv[1]) : 60, times = argc > 2 ? std::atoi(argv[2]) : 3;
    if (argc > 3 || minutes < 1 || times < 1) {
        std::fputs("Usage: worst_block [MINUTES [TIMES]]\nPlays MINUTES (60) of audio TIMES (3) times.\n",
                   stderr);
        return 2;
    }
    std::vector<Block> blocks(static_cast<size_t>(minutes) * 60 * kSampleRateHz / kBlockFrames);
    for (int n = 0; n < times; ++n) {
        play(blocks);
    }
    std::printf(
        "%d minutes, the least of %d times; multiples of the median, the worst also of a block's %.0f us\n",
        minutes, times, kBlockMicroseconds);
    std::printf("%-16s %8s %9s %8s %8s %8s %8s %10s\n", "blocks", "number", "median us", "99 %", "99.9 %",
                "99.99 %", "worst", "of a block");
    for (int kind = 0; kind < kKinds; ++kind) {
        report(blocks, static_cast<Kind>(kind));
    }
    return 0;
}
