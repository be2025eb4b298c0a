#include "bench/speed/peers.h"

#include <kiss_fft.h>

#include <memory>

#include "bench/speed/convolver.h"
#include "bench/speed/fftw_sets.h"
#include "bench/speed/work.h"
#include "dsp/frame.h"

namespace bench {

namespace {

using android::KernelLevel;
using android::kFrameSamples;

constexpr int kTransforms = 200, kBinauralHops = 50;  // of one batch

// Of FFTW's own alignment; planning writes over both.
struct Frames {
    fftwf_complex* in = fftwf_alloc_complex(kFrameSamples);
    fftwf_complex* out = fftwf_alloc_complex(kFrameSamples);

    void fill() const {
        for (int i = 0; i < kFrameSamples; ++i) {
            in[i][0] = float(i % 17) - 8.0f;
            in[i][1] = float(i % 11) - 5.0f;
        }
    }
};

Candidate repeated(const char* name, KernelLevel level, int calls, const std::function<void()>& call) {
    const auto prepare = [call, calls] {
        for (int i = 0; i < calls / 2; ++i) {
            call();
        }
    };
    return {name, level, calls, prepare, call};
}

std::string append_fftw(std::vector<Candidate>& candidates, KernelLevel level, int tries,
                        const Frames& frames) {
    std::string set;
    hold_fftw_to(level);
    for (int i = 0; i < tries; ++i) {
        fftwf_forget_wisdom();
        fftwf_plan plan = fftwf_plan_dft_1d(kFrameSamples, frames.in, frames.out, FFTW_FORWARD,
                                            tries > 1 ? FFTW_PATIENT : FFTW_ESTIMATE);
        candidates.push_back(repeated(kFftw, level, kTransforms, [plan] { fftwf_execute(plan); }));
        set = std::max(set, set_of(plan));
    }
    hold_fftw_to(KernelLevel::kLanes16);
    return set;
}

void append_kissfft(std::vector<Candidate>& candidates, const Frames& frames) {
    kiss_fft_cfg plan = kiss_fft_alloc(kFrameSamples, 0, nullptr, nullptr);
    const auto* in = reinterpret_cast<const kiss_fft_cpx*>(frames.in);
    auto* out = reinterpret_cast<kiss_fft_cpx*>(frames.out);
    candidates.push_back(
        repeated(kKissfft, KernelLevel::kScalar, kTransforms, [=] { kiss_fft(plan, in, out); }));
}

void append_convolver(std::vector<Candidate>& candidates, const float* hop) {
    constexpr int kHopsThatFill = 8;
    fftwf_forget_wisdom();
    const auto convolver = std::make_shared<Convolver>();
    for (int i = 0; i < kHopsThatFill; ++i) {
        convolver->feed(hop);
        convolver->run();
    }
    if (convolver->first_sample() == 0.0f) {
        throw zoq::Failure("zita-convolver puts nothing out");
    }
    candidates.push_back(
        repeated(kConvolver, KernelLevel::kScalar, kBinauralHops, [convolver] { convolver->run(); }));
}

}  // namespace

FftwSets append_peers(std::vector<Candidate>& candidates, int tries) {
    static const Frames frames;
    FftwSets sets;
    for (const KernelLevel level : levels()) {
        sets.push_back(append_fftw(candidates, level, tries, frames));
    }
    frames.fill();
    append_kissfft(candidates, frames);
    for (int i = 0; i < tries; ++i) {
        append_convolver(candidates, frames.in[0]);
    }
    return sets;
}

}  // namespace bench
