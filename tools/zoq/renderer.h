// Source -> engine -> output, block by block.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "tools/zoq/audio_output.h"
#include "tools/zoq/curves.h"
#include "tools/zoq/render.h"
#include "tools/zoq/stereo_source.h"
#include "tools/zoq/timeline.h"

namespace zoq {

// One stream of sound, measured and drawn as far as the options ask for it.
class Observer {
  public:
    explicit Observer(const RenderOptions& options);

    void add(const int16_t* stereo, int frames) const;
    std::optional<Loudness> loudness() const;
    const Curve& curve() const { return *curve_; }

  private:
    std::unique_ptr<LoudnessMeter> meter_;
    std::unique_ptr<Curve> curve_;
};

class Renderer {
  public:
    Renderer(const RenderOptions& options, Timeline& timeline, StereoSource& source, AudioOutput& output,
             EngineSession& session);

    // The whole source, with silence behind its end until nothing of it is missing in the output.
    void run();

    int64_t taken() const { return taken_; }      // frames from the source
    int64_t written() const { return written_; }  // frames to the output
    const Latency& latency() const { return latency_; }
    const Observer& before() const { return before_; }
    const Observer& after() const { return after_; }

  private:
    void play_block();
    void end();
    void write(const int16_t* stereo, int frames);

    const RenderOptions& options_;
    Timeline& timeline_;
    StereoSource& source_;
    AudioOutput& output_;
    EngineSession& session_;
    std::vector<int16_t> block_;
    Observer before_;
    Observer after_;
    Latency latency_;
    int drop_ = 0;        // frames still to be left out
    bool ended_ = false;  // the source
    int64_t taken_ = 0;
    int64_t written_ = 0;
    int64_t due_ = 0;  // frames that the output is to have, once the source has ended
};

}  // namespace zoq
