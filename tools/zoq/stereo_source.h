// An audio input as the engine takes it: 16-bit stereo at 48000 Hz.
#pragma once

#include <soxr.h>
#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

#include "tools/zoq/audio_input.h"
#include "tools/zoq/engine_session.h"

namespace zoq {

class StereoSource {
  public:
    explicit StereoSource(AudioInput& input);

    // Fills up to frames stereo sample frames; fewer only at the end. 16-bit input at 48000 Hz arrives bit
    // for bit; other input is rounded to the nearest 16-bit value.
    int read(int16_t* stereo, int frames);

    bool resamples() const { return resampler_ != nullptr; }
    int64_t expected_frames() const;                      // from the input's header
    int64_t clipped_samples() const { return clipped_; }  // that did not fit into 16 bits

  private:
    struct Deleter {
        void operator()(soxr_t resampler) const { soxr_delete(resampler); }
    };

    int read_floats(float* stereo, int frames);
    static size_t supply(void* self, soxr_in_t* data, size_t frames);

    AudioInput& input_;
    std::unique_ptr<soxr, Deleter> resampler_;
    std::vector<float> floats_;   // at the engine's rate
    std::vector<float> fetched_;  // at the input's rate
    std::exception_ptr failure_;  // of the input, carried past the resampler
    int64_t clipped_ = 0;
};

}  // namespace zoq
