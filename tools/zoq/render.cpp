#include "tools/zoq/render.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "tools/zoq/audio_input.h"
#include "tools/zoq/audio_output.h"
#include "tools/zoq/curves.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/interruption.h"
#include "tools/zoq/progress.h"
#include "tools/zoq/stereo_source.h"

namespace zoq {

namespace {

std::string formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

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

// One stream of sound: to be measured, to be drawn.
struct Observer {
    std::unique_ptr<LoudnessMeter> meter;
    std::unique_ptr<Curve> curve;

    explicit Observer(const RenderOptions& options) {
        if (options.measure) {
            meter = std::make_unique<LoudnessMeter>();
        }
        if (!options.curves.empty()) {
            curve = std::make_unique<Curve>();
        }
    }

    void add(const int16_t* stereo, int frames) const {
        if (meter) {
            meter->add(stereo, frames);
        }
        if (curve) {
            curve->add(stereo, frames);
        }
    }

    std::optional<Loudness> loudness() const { return meter ? std::optional(meter->result()) : std::nullopt; }
};

// Source -> engine -> output, block by block, with silence behind the end until nothing is missing.
class Renderer {
  public:
    Renderer(const RenderOptions& options, StereoSource& source, AudioOutput& output, EngineSession& session)
        : options_(options),
          source_(source),
          output_(output),
          session_(session),
          block_(2 * static_cast<size_t>(session.block_frames())),
          before_(options),
          after_(options) {}

    void run() {
        if (!options_.asPlayed) {
            session_.settle();
            delay_ = session_.latency();
            drop_ = delay_.total();
        }
        Progress progress(options_.showProgress);
        const auto expected = static_cast<double>(source_.expected_frames());
        do {
            throw_if_interrupted();
            play_block();
            progress.show(static_cast<double>(taken_) / expected);
        } while (!ended_ || written_ < due_);
    }

    int64_t taken() const { return taken_; }
    int64_t written() const { return written_; }
    const Latency& delay() const { return delay_; }
    const Observer& before() const { return before_; }
    const Observer& after() const { return after_; }

  private:
    void play_block() {
        const int frames = session_.block_frames();
        const int got = ended_ ? 0 : source_.read(block_.data(), frames);
        std::fill(block_.begin() + 2 * got, block_.end(), int16_t{0});
        before_.add(block_.data(), got);
        taken_ += got;
        session_.play(block_.data());
        if (got < frames && !ended_) {
            end();
        }
        const int skip = std::min(drop_, frames);
        const int64_t open = ended_ ? due_ - written_ : frames;
        write(block_.data() + 2 * skip, static_cast<int>(std::min<int64_t>(frames - skip, open)));
        drop_ -= skip;
    }

    // Nothing of the input is lost: what the delay holds back is still to come.
    void end() {
        ended_ = true;
        due_ = taken_;
        if (options_.asPlayed) {
            delay_ = session_.latency();
            due_ += delay_.total();
        }
    }

    void write(const int16_t* stereo, int frames) {
        if (frames > 0) {
            output_.write(stereo, frames);
            after_.add(stereo, frames);
            written_ += frames;
        }
    }

    const RenderOptions& options_;
    StereoSource& source_;
    AudioOutput& output_;
    EngineSession& session_;
    std::vector<int16_t> block_;
    Observer before_;
    Observer after_;
    Latency delay_;
    int drop_ = 0;         // frames still to be left out
    bool ended_ = false;   // the source
    int64_t taken_ = 0;    // frames from the source
    int64_t written_ = 0;  // frames to the output
    int64_t due_ = 0;      // frames that the output is to have, once the source has ended
};

void tell_about_short_blocks(const EngineSession& session, bool asPlayed, const Note& note) {
    for (const int64_t block : session.short_blocks()) {
        const double seconds = static_cast<double>(block) * session.block_frames() / kEngineRate;
        const std::string size = std::to_string(session.block_frames());
        note("blocks of " + size + " frames let the engine's queue run short once, " +
             (asPlayed ? formatted("%.3f s after the start: that block is not processed", seconds)
                       : "before the input begins: from then on its delay is longer by up to a hop"));
    }
}

}  // namespace

RenderResult render(const RenderOptions& options, const Note& note) {
    output_format(options.output);  // a name without a known ending is refused before anything is read
    AudioInput input(options.input);
    if (options.output != "-" && input.is_same_file(options.output)) {
        throw Failure("INPUT and OUTPUT are the same file, " + quoted(options.output));
    }
    StereoSource source(input);
    EngineSession session(options.engine.blockFrames);
    apply(options.engine, session);
    session.set_processing(!options.bypass);
    AudioOutput output(options.output);
    tell_about_input(input, note);

    Renderer renderer(options, source, output, session);
    renderer.run();
    if (renderer.taken() == 0) {
        throw Failure("cannot read " + input.name() + ": it holds no audio");
    }
    tell_about_end(input, source, note);
    tell_about_short_blocks(session, options.asPlayed, note);
    output.commit();
    if (!options.curves.empty()) {
        write_curves(options.curves, *renderer.before().curve, *renderer.after().curve);
    }

    RenderResult result;
    result.inputFormat = input.format();
    result.inputRate = input.rate();
    result.inputChannels = input.channels();
    result.inputClipped = source.clipped_samples();
    result.frames = renderer.taken();
    result.framesWritten = renderer.written();
    result.latency = renderer.delay();
    result.engineSeconds = session.seconds();
    result.playedSeconds = static_cast<double>(session.blocks() * session.block_frames()) / kEngineRate;
    result.before = renderer.before().loudness();
    result.after = renderer.after().loudness();
    return result;
}

}  // namespace zoq
