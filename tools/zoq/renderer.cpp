#include "tools/zoq/renderer.h"

#include <algorithm>

#include "tools/zoq/interruption.h"
#include "tools/zoq/progress.h"

namespace zoq {

Observer::Observer(const RenderOptions& options)
    : meter_(options.measure || !options.levelMatch.empty() ? std::make_unique<LoudnessMeter>() : nullptr),
      curve_(options.curves.empty() ? nullptr : std::make_unique<Curve>()) {}

void Observer::add(const int16_t* stereo, int frames) const {
    if (meter_) {
        meter_->add(stereo, frames);
    }
    if (curve_) {
        curve_->add(stereo, frames);
    }
}

std::optional<Loudness> Observer::loudness() const {
    return meter_ ? std::optional(meter_->result()) : std::nullopt;
}

Renderer::Renderer(const RenderOptions& options, Timeline& timeline, StereoSource& source,
                   AudioOutput& output, EngineSession& session)
    : options_(options),
      timeline_(timeline),
      source_(source),
      output_(output),
      session_(session),
      block_(2 * static_cast<size_t>(session.block_frames())),
      before_(options),
      after_(options) {}

void Renderer::run() {
    if (!options_.asPlayed) {
        session_.settle();
        latency_ = session_.latency();
        drop_ = latency_.total();
    }
    Progress progress(options_.showProgress);
    const auto expected = static_cast<double>(source_.expected_frames());
    do {
        throw_if_interrupted();
        play_block();
        progress.show(static_cast<double>(taken_) / expected);
    } while (!ended_ || written_ < due_);
}

void Renderer::play_block() {
    const int frames = session_.block_frames();
    timeline_.apply_until(taken_, session_);
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

void Renderer::end() {
    ended_ = true;
    due_ = taken_;
    if (options_.asPlayed) {
        latency_ = session_.latency();
        due_ += latency_.total();
    }
}

void Renderer::write(const int16_t* stereo, int frames) {
    if (frames > 0) {
        output_.write(stereo, frames);
        after_.add(stereo, frames);
        written_ += frames;
    }
}

}  // namespace zoq
