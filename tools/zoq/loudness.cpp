#include "tools/zoq/loudness.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "tools/zoq/engine_session.h"

namespace zoq {

LoudnessMeter::LoudnessMeter()
    : state_(
          ebur128_init(2, static_cast<unsigned long>(kEngineRate), EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK)) {
    if (!state_) {
        throw std::bad_alloc();
    }
}

void LoudnessMeter::add(const int16_t* stereo, int frames) {
    if (ebur128_add_frames_short(state_.get(), stereo, static_cast<size_t>(frames)) != EBUR128_SUCCESS) {
        throw std::bad_alloc();
    }
    fullScale_ += std::count_if(stereo, stereo + 2 * frames, [](int16_t value) {
        return value == std::numeric_limits<int16_t>::max() || value == std::numeric_limits<int16_t>::min();
    });
}

Loudness LoudnessMeter::result() const {
    Loudness loudness;
    loudness.fullScale = fullScale_;
    if (ebur128_loudness_global(state_.get(), &loudness.integratedLufs) != EBUR128_SUCCESS) {
        loudness.integratedLufs = -std::numeric_limits<double>::infinity();
    }
    double left = 0.0;
    double right = 0.0;
    ebur128_true_peak(state_.get(), 0, &left);
    ebur128_true_peak(state_.get(), 1, &right);
    loudness.truePeakDb = 20.0 * std::log10(std::max(left, right));
    return loudness;
}

}  // namespace zoq
