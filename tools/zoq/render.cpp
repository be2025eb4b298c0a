#include "tools/zoq/render.h"

#include "tools/zoq/audio_input.h"
#include "tools/zoq/audio_output.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/file_names.h"
#include "tools/zoq/formatted.h"
#include "tools/zoq/renderer.h"
#include "tools/zoq/stereo_source.h"

namespace zoq {

namespace {

void tell_about_input(const AudioInput& input, const Note& note) {
    if (!input.downmix().description().empty()) {
        note(input.downmix().description());
    }
    if (input.rate() != kEngineRate) {
        note(std::to_string(input.rate()) + " Hz resampled to " + std::to_string(kEngineRate) + " Hz");
    }
}

void tell_about_end(const AudioInput& input, const StereoSource& source, const Note& note) {
    if (input.frames_read() < input.frames()) {
        note(input.name() + " breaks off after " +
             formatted("%.2f s", static_cast<double>(input.frames_read()) / input.rate()) + " of " +
             formatted("%.2f s", static_cast<double>(input.frames()) / input.rate()));
    }
    if (source.clipped_samples() > 0) {
        note(std::to_string(source.clipped_samples()) + " samples of the input did not fit into 16 bits");
    }
}

void tell_about_short_blocks(const EngineSession& session, bool asPlayed, const Note& note) {
    for (const int64_t block : session.short_blocks()) {
        const double seconds = static_cast<double>(block) * session.block_frames() / kEngineRate;
        const std::string size = std::to_string(session.block_frames());
        note("blocks of " + size + " frames let the engine's queue run short once, " +
             (asPlayed ? formatted("%.3f s after the start: that block is not processed", seconds)
                       : "before the input begins: from then on its delay is longer by up to a hop"));
    }
}

// What the second pass needs is known before the first: a file that can be read twice, a name that can be written.
void check_level_match(const RenderOptions& options) {
    if (options.input == "-") {
        throw UsageFailure("--level-match reads the input twice, which standard input does not allow");
    }
    if (options.levelMatch == "-") {
        throw UsageFailure("--level-match needs a file of its own");
    }
    output_format(options.levelMatch);
}

// Every file that is written is another one, and none is a file that is read.
void check_files(const RenderOptions& options, const AudioInput& input) {
    const std::vector<NamedFile> outputs = {
        {"OUTPUT", options.output}, {"--level-match", options.levelMatch}, {"--curves", options.curves}};
    check_different(outputs);
    for (const auto& [role, path] : outputs) {
        if (!path.empty() && path != "-" && input.is_same_file(path)) {
            throw Failure("INPUT and " + role + " are the same file, " + quoted(path));
        }
    }
    for (const std::string& text : options.engine.files) {
        check_kept({{"--config", text}}, outputs);
    }
}

void write_dry(const RenderOptions& options, RenderResult& result, const Note& note) {
    result.levelMatch = write_level_matched(options.input, options.levelMatch,
                                            {*result.before, *result.after, result.framesWritten});
    const LevelMatch& match = *result.levelMatch;
    note(options.levelMatch + (match.matched ? " is the input with " + formatted("%+.1f dB", match.gainDb) +
                                                   ", as loud as the output"
                                             : " is the input as it is: silence has no loudness to match"));
    if (match.clipped > 0) {
        note(std::to_string(match.clipped) + " samples of it clip at that level");
    }
}

}  // namespace

RenderResult render(const RenderOptions& options, const Note& note) {
    Timeline timeline(options.timeline);
    if (!options.levelMatch.empty()) {
        check_level_match(options);
    }
    output_format(options.output);  // a name without a known ending is refused before anything is read
    AudioInput input(options.input);
    check_files(options, input);
    StereoSource source(input);
    EngineSession session(options.engine.blockFrames);
    apply(options.engine, session);
    session.set_processing(!options.bypass);
    AudioOutput output(options.output);
    tell_about_input(input, note);

    Renderer renderer(options, timeline, source, output, session);
    renderer.run();
    if (renderer.taken() == 0) {
        throw Failure("cannot read " + input.name() + ": it holds no audio");
    }
    tell_about_end(input, source, note);
    tell_about_short_blocks(session, options.asPlayed, note);
    output.commit();
    if (!options.curves.empty()) {
        write_curves(options.curves, renderer.before().curve(), renderer.after().curve());
    }

    RenderResult result;
    result.inputFormat = input.format();
    result.inputRate = input.rate();
    result.inputChannels = input.channels();
    result.inputClipped = source.clipped_samples();
    result.frames = renderer.taken();
    result.framesWritten = renderer.written();
    result.latency = renderer.latency();
    result.engineSeconds = session.seconds();
    result.playedSeconds = static_cast<double>(session.blocks() * session.block_frames()) / kEngineRate;
    result.before = renderer.before().loudness();
    result.after = renderer.after().loudness();
    if (!options.levelMatch.empty()) {
        write_dry(options, result, note);
    }
    return result;
}

}  // namespace zoq
