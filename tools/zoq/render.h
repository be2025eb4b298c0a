// A file through the engine.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/zoq/engine_session.h"
#include "tools/zoq/level_match.h"
#include "tools/zoq/loudness.h"
#include "tools/zoq/settings_options.h"
#include "tools/zoq/timeline.h"

namespace zoq {

struct RenderOptions {
    std::string input;                // a file, or "-"
    std::string output;               // a file ending in .wav or .flac, or "-"
    EngineSettings engine;            // resolved
    bool bypass = false;              // processing off
    bool asPlayed = false;            // pass-through, fade-in and delay stay in
    bool measure = false;             // loudness and level
    std::vector<TimedText> timeline;  // settings that change while the input plays
    std::string levelMatch;           // a file for the input at the output's loudness; empty for none
    std::string curves;               // a file for pictures; empty for none
    bool showProgress = true;
};

struct RenderResult {
    std::string inputFormat;  // "OGG, Vorbis"
    int inputRate = 0;        // Hz
    int inputChannels = 0;
    int64_t inputClipped = 0;  // samples that did not fit into 16 bits
    int64_t frames = 0;        // of the input, at 48000 Hz
    int64_t framesWritten = 0;
    Latency latency;
    double engineSeconds = 0.0;
    double playedSeconds = 0.0;  // of sound that the engine was given, silence around the input included
    std::optional<Loudness> before;
    std::optional<Loudness> after;
    std::optional<LevelMatch> levelMatch;
};

// Takes one line, without an end of line, for the user.
using Note = std::function<void(const std::string&)>;

// Normally the output has as many sample frames as the input and each sits where it was: the input begins
// once the engine runs steadily, and the engine's delay is taken off. Throws UsageFailure, Failure or
// Interrupted, and leaves no output file then.
RenderResult render(const RenderOptions& options, const Note& note);

}  // namespace zoq
