// Loudness and level of a 16-bit stereo stream at 48000 Hz (EBU R 128, ITU-R BS.1770).
#pragma once

#include <ebur128.h>
#include <cstdint>
#include <memory>

namespace zoq {

struct Loudness {
    double integratedLufs = 0.0;  // minus infinity for silence
    double truePeakDb = 0.0;      // of full scale, the louder channel; minus infinity for silence
    int64_t fullScale = 0;        // samples at the largest or the smallest 16-bit value
};

class LoudnessMeter {
  public:
    LoudnessMeter();

    void add(const int16_t* stereo, int frames);
    Loudness result() const;

  private:
    struct Closer {
        void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
    };

    std::unique_ptr<ebur128_state, Closer> state_;
    int64_t fullScale_ = 0;
};

}  // namespace zoq
