#include "bench/speed/work.h"

#include <algorithm>
#include <string>

#include "bench/module_calls.h"
#include "bench/settings.h"
#include "dsp/fft.h"
#include "dsp/grid.h"
#include "tools/zoq/failure.h"

namespace bench {

namespace {

using namespace android;

constexpr int kSmallCalls = 200, kModuleHops = 50;  // of one batch

using Call = std::function<void()>;

// A batch finds what half a batch leaves in the caches, and the processor's clock as wide vectors have it.
void append(std::vector<Candidate>& candidates, const char* name, int calls, const Call& reset,
            const Call& call) {
    const Call prepare = [reset, call, calls] {
        reset();
        for (int i = 0; i < calls / 2; ++i) {
            call();
        }
    };
    for (const KernelLevel level : levels()) {
        candidates.push_back({name, level, calls, prepare, call});
    }
}

// One second of music, hop by hop through the entry point.
class Player {
  public:
    Player() : music_(music(kMaterialHops * kHopSamples)) {}

    // The engine's state is one for all candidates: start anew, with every effect on, behind the fade.
    void start(const char* device) {
        constexpr int kHopsToSettle = 40;
        ZOQ_OUTPROC_PLAY_INIT();
        ZOQ_PARAMS_SET(String8((std::string(kEverythingOn) + device).c_str()));
        for (int i = 0; i < kHopsToSettle; ++i) {
            play_music();
        }
        if (b_parameterMEM.settleCountdown > 0 || b_parameterMEM.mixRamp == 0) {
            throw zoq::Failure("the engine leaves the music unprocessed");
        }
    }

    void play_music() {
        std::copy_n(music_.data() + size_t(position_) * 2 * kHopSamples, 2 * kHopSamples, block_);
        position_ = (position_ + 1) % kMaterialHops;
        play();
    }

    void play_silence() {
        std::fill_n(block_, 2 * kHopSamples, int16_t{0});
        play();
    }

  private:
    void play() { ZOQ_OUTPROC_PLAY_SAMPLES(block_, sizeof block_, kSampleRateHz, 2); }

    std::vector<int16_t> music_;
    int16_t block_[2 * kHopSamples];
    int position_ = 0;
};

// A second of music, and the second of silence right behind music: what decays does so there.
void append_hops(std::vector<Candidate>& candidates, const char* music, const char* silence,
                 const char* device) {
    static Player player;
    const Call start = [device] { player.start(device); };
    for (const KernelLevel level : levels()) {
        candidates.push_back({music, level, kMaterialHops, start, [] { player.play_music(); }});
        candidates.push_back({silence, level, kMaterialHops, start, [] { player.play_silence(); }});
    }
}

void append_transform(std::vector<Candidate>& candidates) {
    alignas(64) static creal32_T x[kFrameSamples], y[kFrameSamples];
    for (int i = 0; i < kFrameSamples; ++i) {
        x[i] = {float(i % 17) - 8.0f, float(i % 11) - 5.0f};
    }
    append(
        candidates, kTransform, kSmallCalls, [] {}, [] { fft(x, y); });
}

void append_grid(std::vector<Candidate>& candidates) {
    static float magnitudes[kGridPoints], exponents[kGridPoints], y[kGridPoints];
    for (int k = 0; k < kGridPoints; ++k) {
        magnitudes[k] = 1e-4f * float(k + 1);
        exponents[k] = -0.01f * float(k);
    }
    static const Call logarithms = [] {
        std::copy_n(magnitudes, kGridPoints, y);
        b_log10(y);
    };
    static const Call powers = [] { power(10.0f, exponents, y); };
    static const Call both = [] {
        logarithms();
        powers();
    };
    append(
        candidates, kCurves, kSmallCalls, [] {}, both);
    append(
        candidates, kLogarithms, kSmallCalls, [] {}, logarithms);
    append(
        candidates, kPowers, kSmallCalls, [] {}, powers);
}

}  // namespace

std::vector<KernelLevel> levels() {
    std::vector<KernelLevel> all;
    for (int i = 0; i < kKernelLevels; ++i) {
        if (has_kernel_level(KernelLevel(i))) {
            all.push_back(KernelLevel(i));
        }
    }
    return all;
}

void append_work(std::vector<Candidate>& candidates) {
    static Rig rig;
    append_transform(candidates);
    append_grid(candidates);
    for (const ModuleCall& module : kModuleCalls) {
        append(
            candidates, module.name, kModuleHops, [] { rig.initialize(); }, [run = module.run] { run(rig); });
    }
    append(
        candidates, kBinaural, kModuleHops,
        [] {
            rig.initialize();
            rig.material.frame(rig.in);
        },
        [] { X2Binaural_v1(rig.in, 3.0f, &b_parameterX2B, rig.out); });
    append_hops(candidates, kLoudspeaker, kLoudspeakerSilence, "2");
    append_hops(candidates, kHeadphones, kHeadphonesSilence, "8");
}

}  // namespace bench
