#include "tools/zoq/stereo_source.h"

#include <cmath>

#include "tools/zoq/failure.h"

namespace zoq {

namespace {

constexpr size_t kFetchFrames = 4096;

void check(soxr_error_t error, const AudioInput& input) {
    if (error != nullptr) {
        throw Failure("cannot resample " + input.name() + " from " + std::to_string(input.rate()) +
                      " Hz: " + error);
    }
}

}  // namespace

StereoSource::StereoSource(AudioInput& input) : input_(input) {
    if (input.rate() == kEngineRate) {
        return;
    }
    soxr_error_t error = nullptr;
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    resampler_.reset(soxr_create(input.rate(), kEngineRate, 2, &error, &io, &quality, nullptr));
    check(error, input);
    fetched_.resize(2 * kFetchFrames);
    check(soxr_set_input_fn(resampler_.get(), supply, this, kFetchFrames), input);
}

int64_t StereoSource::expected_frames() const {
    return static_cast<int64_t>(static_cast<double>(input_.frames()) * kEngineRate / input_.rate());
}

// Called by the resampler, which is C: nothing may be thrown through it.
size_t StereoSource::supply(void* self, soxr_in_t* data, size_t frames) {
    auto& source = *static_cast<StereoSource*>(self);
    *data = source.fetched_.data();
    try {
        return static_cast<size_t>(source.input_.read(source.fetched_.data(), static_cast<int>(frames)));
    } catch (...) {
        source.failure_ = std::current_exception();
        *data = nullptr;
        return 0;
    }
}

int StereoSource::read_floats(float* stereo, int frames) {
    if (!resampler_) {
        return input_.read(stereo, frames);
    }
    const size_t got = soxr_output(resampler_.get(), stereo, static_cast<size_t>(frames));
    if (failure_) {
        std::rethrow_exception(failure_);
    }
    check(soxr_error(resampler_.get()), input_);
    return static_cast<int>(got);
}

int StereoSource::read(int16_t* stereo, int frames) {
    floats_.resize(2 * static_cast<size_t>(frames));
    const int got = read_floats(floats_.data(), frames);
    for (int i = 0; i < 2 * got; ++i) {
        const float rounded = std::nearbyint(floats_[static_cast<size_t>(i)] * 32768.0f);
        const float limited = std::fmin(std::fmax(rounded, -32768.0f), 32767.0f);
        clipped_ += rounded != limited ? 1 : 0;
        stereo[i] = static_cast<int16_t>(limited);
    }
    return got;
}

}  // namespace zoq
