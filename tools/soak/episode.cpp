#include "tools/soak/episode.h"

#include <functional>

#include "host/configuration.h"
#include "tools/soak/recovery.h"
#include "zoq2processing.h"

namespace soak {

namespace {

void start_afresh() {
    android::b_parameterMEM = {};
    android::gCurOutputDevice = AUDIO_DEVICE_OUT_SPEAKER;
    ZOQ_OUTPROC_PLAY_INIT();
}

void apply_settings(const Phase& phase) {
    for (const std::string& pairs : phase.strings) {
        ZOQ_PARAMS_SET(android::String8(pairs.c_str()));
        ZOQ_PARAMS_GET(android::String8("VB_boostlin;EQ_1khzgain;HIFIPARA"));
    }
    android::apply_configuration_text(phase.text.data(), phase.text.size());
    android::ZOQ_update_volume(phase.volume, AUDIO_STREAM_MUSIC);
}

void play_bad_block(int64_t n) {
    int16_t none = 77;
    const int lengths[] = {73730, 2147483647, 1920};
    ZOQ_OUTPROC_PLAY_SAMPLES(n % 2 == 0 ? nullptr : &none, lengths[n % 2], 48000, 2);
}

std::string description(const Phase& phase) {
    std::string text = std::to_string(phase.stream.sampleFrames) + " sample frames of " +
                       std::to_string(phase.stream.channels) + " channels at " +
                       std::to_string(phase.stream.sampleRate) + " Hz, signal " +
                       std::to_string(static_cast<int>(phase.signal)) + ", settings";
    for (const std::string& pairs : phase.strings) {
        text += " " + pairs;
    }
    return text + " " + phase.text;
}

using Check = std::function<std::string(const std::vector<int16_t>& given, const GuardedBlock& block)>;

// Returns the first fault that the check finds, and how many sample frames were played.
std::string play_blocks(const Phase& phase, int64_t position, int64_t& played, const Check& check) {
    std::vector<int16_t> given(static_cast<size_t>(phase.stream.values()));
    for (int64_t n = 0; played < phase.sampleFrames; ++n, played += phase.stream.sampleFrames) {
        if (phase.badBlocks && n % 10 == 0) {
            play_bad_block(n / 10);
        }
        fill(phase.signal, position + played, phase.stream.channels, given);
        GuardedBlock block(given, static_cast<size_t>(n % 8));
        ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), static_cast<int>(2 * block.size()), phase.stream.sampleRate,
                                 phase.stream.channels);
        std::string fault = check(given, block);
        if (!fault.empty()) {
            return fault;
        }
    }
    return "";
}

std::string play_again(const Phase& phase, const Recovery& recovery, int64_t position) {
    return recovery.fault([&](Recovery& again) {
        apply_settings(phase);
        int64_t played = 0;
        play_blocks(phase, position, played, [&](const auto&, const GuardedBlock& block) {
            again.hear(block);
            return std::string();
        });
    });
}

std::string play_phase(const Phase& phase, Watch& watch, int64_t position, int64_t& played) {
    if (phase.initialise) {
        ZOQ_OUTPROC_PLAY_INIT();
    }
    Recovery recovery;
    recovery.begin(phase);
    apply_settings(phase);
    watch.begin_phase(phase);
    std::string fault =
        play_blocks(phase, position, played, [&](const auto& given, const GuardedBlock& block) {
            recovery.hear(block);
            return watch.check_block(phase, given, block);
        });
    if (fault.empty() && recovery.follows()) {
        ++watch.totals.recoveries;
        fault = play_again(phase, recovery, position);
    }
    return fault.empty() ? watch.check_records() : fault;
}

}  // namespace

Outcome play_episode(uint64_t seed, int64_t sampleFrames) {
    start_afresh();
    Schedule schedule(seed);
    Watch watch;
    Outcome outcome;
    while (outcome.fault.empty() && outcome.sampleFrame < sampleFrames) {
        const Phase phase = schedule.next();
        int64_t played = 0;
        outcome.fault = play_phase(phase, watch, outcome.sampleFrame, played);
        outcome.sampleFrame += played;
        outcome.circumstances = description(phase);
    }
    outcome.totals = watch.totals;
    return outcome;
}

}  // namespace soak
