#include "tools/zoq/simulate/simulation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "tools/zoq/interruption.h"
#include "tools/zoq/simulate/prediction.h"
#include "zoq2processing.h"

namespace zoq {

namespace {

using android::b_parameterMEM;

constexpr int kClickSpacing = 6007;  // sample frames; prime, so that clicks meet every part of a block
constexpr int kClickPeak = 8000;
constexpr int kLongestDelay = 4096;
constexpr int kHeadphoneDevices = 0x18C;
constexpr int kRampEnd = 5120;
constexpr int kHeadphoneFullDb = 20, kSpeakerFullDb = 18, kLoudFullDb = 21;

// What a host has in its hands from moment to moment.
class Host {
  public:
    explicit Host(const SimulationOptions& options)
        : events_(options.events), sizes_{options.engine.blockFrames} {
        for (const HostEvent& event : events_) {
            sizes_ = event.key == "block" && event.seconds <= 0.0 ? block_sizes(event.value) : sizes_;
        }
        EngineSession session(sizes_.front());
        session.set_processing(true);
        apply(options.engine, session);
        device_ = android::gCurOutputDevice;
    }

    Simulation play(double seconds) {
        while (now_ < seconds) {
            throw_if_interrupted();
            apply_events();
            play_block();
        }
        time_clicks();
        return result_;
    }

  private:
    void apply_events() {
        for (; nextEvent_ < events_.size() && events_[nextEvent_].seconds <= now_; ++nextEvent_) {
            const auto& [seconds, key, value] = events_[nextEvent_];
            result_.events.push_back(events_[nextEvent_]);
            if (key == "block") {
                sizes_ = block_sizes(value);
                turn_ = 0;
            } else if (key == "rate") {
                rate_ = std::stoi(value);
            } else if (key == "init") {
                ZOQ_OUTPROC_PLAY_INIT();
                prediction_.initialise();
            } else if (key == "volume") {
                android::ZOQ_update_volume(std::stoi(value), AUDIO_STREAM_MUSIC);
            } else {
                ZOQ_PARAMS_SET(android::String8(parameter_string(key, value).c_str()));
            }
        }
    }

    std::string parameter_string(const std::string& key, const std::string& value) {
        if (key == "processing") {
            return std::string(android::zoq_switch) +
                   "=STEREOWIDEN_Enable=" + (value == "on" ? "true" : "false");
        }
        if (key == "device" || key == "output_device" || key == "route") {
            device_ = key != "route" ? device_mask(value)
                                     : int64_t{value == "headphone" ? AUDIO_DEVICE_OUT_WIRED_HEADPHONE
                                                                    : AUDIO_DEVICE_OUT_SPEAKER};
            return "output_device=" + std::to_string(device_);
        }
        return key + "=" + value;
    }

    void play_block() {
        const int frames = sizes_[turn_++ % sizes_.size()];
        const auto start = input_.size();
        input_.resize(start + static_cast<size_t>(frames));
        for (size_t i = start; i < input_.size(); ++i) {
            input_[i] = i % kClickSpacing == kClickSpacing / 2 ? int16_t{kClickPeak} : int16_t{0};
        }
        std::vector<int16_t> block(2 * static_cast<size_t>(frames));
        for (size_t i = 0; i < block.size(); ++i) {
            block[i] = input_[start + i / 2];
        }
        const int queuedBefore = b_parameterMEM.inFill + b_parameterMEM.outFill;
        ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), frames * 4, rate_, 2);
        for (size_t i = 0; i < block.size(); i += 2) {
            output_.push_back(std::max(std::abs(int{block[i]}), std::abs(int{block[i + 1]})));
        }
        record(frames, queuedBefore);
        now_ += double(frames) / rate_;
    }

    void record(int frames, int queuedBefore) {
        const BlockPrediction::Answer predicted =
            prediction_.next(frames, rate_, (device_ & kHeadphoneDevices) != 0);
        const bool untouched = b_parameterMEM.settleCountdown > 0;
        const int queued = b_parameterMEM.inFill + b_parameterMEM.outFill;
        // Only a short queue makes the sum grow while the stream goes on.
        const bool underrun = !untouched && !predicted.restarts && queued != queuedBefore;
        Latency latency;
        if (!predicted.untouched) {
            latency = expected_latency(predicted.queueFrames);
        }
        result_.blocks.push_back({now_, frames, rate_, device_, state(untouched, underrun),
                                  b_parameterMEM.mixRamp, b_parameterMEM.inFill / 2,
                                  b_parameterMEM.outFill / 2, latency, b_parameterMEM.volumeIndex,
                                  full_compression_db(),
                                  untouched == predicted.untouched && underrun == predicted.underrun &&
                                      (untouched || queued == 2 * predicted.queueFrames)});
        starts_.push_back(input_.size() - static_cast<size_t>(frames));
    }

    static int full_compression_db() {
        const bool loud = b_parameterMEM.volumeIndex > b_parameterMEM.volumeIndexSwitch;
        return b_parameterMEM.headphoneMode == 1 ? kHeadphoneFullDb : loud ? kLoudFullDb : kSpeakerFullDb;
    }

    static Latency expected_latency(int queueFrames) {
        Latency latency;
        latency.queue = queueFrames;
        if (b_parameterMEM.mixRamp > 0) {
            latency.chain = android::kHopSamples;
            const bool widens =
                b_parameterMEM.headphoneMode == 0 && android::b_parameterTWS.stereoWidth > 0.0f;
            latency.widening = widens ? static_cast<int>(android::b_parameterTWS.directDelay) : 0;
        }
        return latency;
    }

    // A short block comes back at once, and once more when it has been processed; the first is the louder.
    static std::vector<int> expected_delays(const PlayedBlock& block) {
        switch (block.state) {
            case BlockState::kUntouched:
            case BlockState::kUnderrun:
                return {0};
            case BlockState::kDry:
                return {block.latency.queue};
            case BlockState::kProcessed:
                return {block.latency.total()};
            default:
                return {block.latency.queue, block.latency.total()};
        }
    }

    static BlockState state(bool untouched, bool underrun) {
        const bool on = b_parameterMEM.stereoWidenEnable == 1;
        const int mix = b_parameterMEM.mixRamp;
        return untouched              ? BlockState::kUntouched
               : underrun             ? BlockState::kUnderrun
               : on && mix < kRampEnd ? BlockState::kFadingIn
               : on                   ? BlockState::kProcessed
               : mix > 0              ? BlockState::kFadingOut
                                      : BlockState::kDry;
    }

    void time_clicks() {
        size_t b = 0;
        for (size_t at = kClickSpacing / 2; at + kLongestDelay < output_.size(); at += kClickSpacing) {
            while (b + 1 < starts_.size() && starts_[b + 1] <= at) {
                ++b;
            }
            const auto from = output_.begin() + static_cast<ptrdiff_t>(at);
            const auto loudest = std::max_element(from, from + kLongestDelay);
            const PlayedBlock& block = result_.blocks[b];
            result_.clicks.push_back({block.seconds + double(at - starts_[b]) / block.rate,
                                      expected_delays(block),
                                      *loudest < kClickPeak / 20 ? -1 : static_cast<int>(loudest - from)});
        }
    }

    const std::vector<HostEvent> events_;
    size_t nextEvent_ = 0, turn_ = 0;
    std::vector<int> sizes_;
    int rate_ = kEngineRate;
    int64_t device_;
    double now_ = 0.0;
    std::vector<int16_t> input_;  // one channel; the other is the same
    std::vector<int> output_;     // the louder channel's magnitude
    std::vector<size_t> starts_;  // of the blocks, in sample frames
    BlockPrediction prediction_;
    Simulation result_;
};

}  // namespace

const char* state_name(BlockState state) {
    constexpr const char* kNames[] = {"untouched", "dry", "fading in", "processed", "fading out", "underrun"};
    return kNames[static_cast<size_t>(state)];
}

Simulation simulate(const SimulationOptions& options) {
    return Host(options).play(options.seconds);
}

// With processing off the output is the input, later; a block that comes back as it was, though the queue delays, is
// a short one. No knowledge of the engine's insides is needed for that.
Scan scan_block_sizes() {
    constexpr int kLargest = 4096, kHop = android::kHopSamples;
    Scan scan;
    for (int frames = 1; frames <= kLargest; ++frames) {
        throw_if_interrupted();
        EngineSession session(frames);
        std::vector<int16_t> block(2 * static_cast<size_t>(frames)), before;
        uint16_t count = 0;
        // What is left over of hops repeats after as many blocks as there are steps in a hop.
        const int settling = (6000 + frames - 1) / frames, period = kHop / std::gcd(frames, kHop);
        bool isShort = false;
        for (int n = 0; n < settling + period && !isShort; ++n) {
            for (int16_t& value : block) {
                value = static_cast<int16_t>(++count);
            }
            before = block;
            session.play(block.data());
            isShort = n >= settling && frames % kHop != 0 && block == before;
        }
        ++scan.sizes;
        if (!isShort) {
            scan.neverShort.push_back(frames);
        }
    }
    return scan;
}

}  // namespace zoq
