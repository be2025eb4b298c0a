#include "tools/zoq/measure/clicks.h"

#include <algorithm>
#include <cmath>

#include "tools/zoq/measure/rig.h"
#include "tools/zoq/measure/tones.h"
#include "tools/zoq/measure/transform.h"

namespace zoq {

namespace {

constexpr double kToneHz = 200.0;
constexpr size_t kOnFrame = kEngineRate;
constexpr size_t kOffFrame = kOnFrame + 72000;
constexpr size_t kSilentFrame = kOffFrame + 48000;
constexpr size_t kAgainFrame = kSilentFrame + 24000;
constexpr size_t kFrames = kAgainFrame + 24000;
constexpr size_t kSteady = 24000;  // ahead of a switching, what is steady
constexpr size_t kTransition =
    12000;  // behind it, what belongs to it: the fade is 5120, the delay below 2000
constexpr double kTrebleFrom = 6000.0;  // Hz, where the high-pass begins to rise
constexpr double kTrebleHz = 8000.0;    // and where it has risen
constexpr size_t kLevelFrames = 240;    // 5 ms, over which the level above is taken

// Where the switch was really moved: at the beginning of a block.
struct Switching {
    size_t on = 0, off = 0, again = 0;
};

Recording play(const MeasureOptions& options, Switching& done) {
    Signal signal;
    PeriodicTone(kToneHz).append(signal, options.levelDb, kSilentFrame);
    signal.resize(kFrames, 0);
    const auto turn = [](EngineSession& session, size_t& frame, size_t now, size_t due, bool on) {
        if (frame == 0 && now >= due) {
            session.set_processing(on);
            frame = now;
        }
    };
    return record(options, signal, false, [&](EngineSession& session, size_t first) {
        turn(session, done.on, first, kOnFrame, true);
        turn(session, done.off, first, kOffFrame, false);
        turn(session, done.again, first, kAgainFrame, true);
    });
}

std::vector<double> high_passed(const std::vector<double>& x) {
    const size_t length = x.size() + x.size() % 2;
    Spectrum spectrum = spectrum_of(x, length);
    for (size_t k = 0; k < spectrum.size(); ++k) {
        const double hz = static_cast<double>(k) * kEngineRate / static_cast<double>(length);
        const double position = std::clamp((hz - kTrebleFrom) / (kTrebleHz - kTrebleFrom), 0.0, 1.0);
        spectrum[k] *= 0.5 - 0.5 * std::cos(M_PI * position);
    }
    return signal_of(std::move(spectrum), length);
}

// The level above 8 kHz of the louder channel, each kLevelFrames, in dB of a sine at full scale.
std::vector<double> treble_levels(const Recording& recording) {
    std::vector<double> levels;
    for (const std::vector<double>& channel : recording.channel) {
        const std::vector<double> treble = high_passed(channel);
        levels.resize(treble.size() / kLevelFrames, db(0.0));
        for (size_t i = 0; i < levels.size(); ++i) {
            double power = 0.0;
            for (size_t k = 0; k < kLevelFrames; ++k) {
                power += treble[i * kLevelFrames + k] * treble[i * kLevelFrames + k];
            }
            levels[i] = std::max(levels[i], db(std::sqrt(2.0 * power / kLevelFrames)));
        }
    }
    return levels;
}

double largest_step(const Recording& recording, size_t first, size_t count) {
    double largest = 0.0;
    for (const std::vector<double>& channel : recording.channel) {
        for (size_t i = first; i < first + count; ++i) {
            largest = std::max(largest, std::abs(channel[i] - channel[i - 1]));
        }
    }
    return largest;
}

int largest_value(const Recording& recording, size_t first) {
    double largest = 0.0;
    for (const std::vector<double>& channel : recording.channel) {
        for (size_t i = first; i < channel.size(); ++i) {
            largest = std::max(largest, std::abs(channel[i]));
        }
    }
    return static_cast<int>(32768.0 * largest);
}

double largest_level(const std::vector<double>& levels, size_t first, size_t count) {
    const auto begin = levels.begin() + static_cast<std::ptrdiff_t>(first / kLevelFrames);
    return *std::max_element(begin, begin + static_cast<std::ptrdiff_t>(count / kLevelFrames));
}

}  // namespace

Clicks measure_clicks(const MeasureOptions& options) {
    Switching done;
    const Recording recording = play(options, done);
    const std::vector<double> levels = treble_levels(recording);
    const double steadyStep = std::max(largest_step(recording, kOnFrame - kSteady, kSteady),
                                       largest_step(recording, kOffFrame - kSteady, kSteady));
    const auto click = [&](size_t frame) {
        return Click{static_cast<double>(frame) / kEngineRate,
                     db(largest_step(recording, frame, kTransition) / steadyStep),
                     largest_level(levels, frame, kTransition)};
    };

    Clicks clicks;
    clicks.toneHz = kToneHz;
    clicks.on = click(done.on);
    clicks.off = click(done.off);
    clicks.steadyTrebleDb = std::max(largest_level(levels, kOnFrame - kSteady, kSteady),
                                     largest_level(levels, kOffFrame - kSteady, kSteady));
    clicks.leftOver = largest_value(recording, done.again);
    for (size_t i = kSteady / kLevelFrames; i < (kSilentFrame - kSteady / 10) / kLevelFrames; ++i) {
        clicks.seconds.push_back((static_cast<double>(i) + 0.5) * kLevelFrames / kEngineRate);
        clicks.trebleDb.push_back(levels[i]);
    }
    return clicks;
}

}  // namespace zoq
