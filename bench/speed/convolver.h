// zita-convolver doing what the binaural stage does: three channels to two ears through responses of 2048 taps.
#pragma once

#include <zita-convolver.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "dsp/frame.h"
#include "tools/zoq/failure.h"

namespace bench {

// Six paths, none of them linked, in four partitions of a hop as in the stage: with one partition size, which is that
// of the period, everything runs in the thread that calls. The products are its vector code's, the plans measured.
class Convolver {
  public:
    Convolver() {
        constexpr unsigned kTaps = 2048, kHop = android::kHopSamples;
        process_.set_options(Convproc::OPT_FFTW_MEASURE | Convproc::OPT_VECTOR_MODE);
        require(process_.configure(kInputs, kEars, kTaps, kHop, kHop, kHop, 0.0f) == 0);
        std::vector<float> response(kTaps);
        for (unsigned path = 0; path < kInputs * kEars; ++path) {
            for (unsigned i = 0; i < kTaps; ++i) {
                response[i] = 0.1f * std::sin(0.37f * float(i * (path + 1))) * std::exp(-0.002f * float(i));
            }
            require(process_.impdata_create(path % kInputs, path / kInputs, 1, response.data(), 0, kTaps) ==
                    0);
        }
        require(process_.start_process(0, SCHED_OTHER) == 0);
    }
    ~Convolver() { process_.stop_process(); }
    Convolver(const Convolver&) = delete;
    Convolver& operator=(const Convolver&) = delete;

    // The buffers keep what they hold: later hops meet the same input again without copying it.
    void feed(const float* hop) {
        for (unsigned c = 0; c < kInputs; ++c) {
            std::copy_n(hop, android::kHopSamples, process_.inpdata(c));
        }
    }

    void run() { process_.process(true); }

    float first_sample() const { return process_.outdata(0)[0]; }

  private:
    static constexpr unsigned kInputs = 3, kEars = 2;

    static void require(bool holds) {
        if (!holds) {
            throw zoq::Failure("zita-convolver refuses the binaural stage's paths");
        }
    }

    Convproc process_;
};

}  // namespace bench
