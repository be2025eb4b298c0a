// What the fast forms save: the transform, every module and whole hops at every level that this machine has, in one
// process on one core, turn by turn, the least time of each; beside them FFTW in the form in which Debian ships it.
#include <fftw3.h>
#include <sched.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "bench/module_calls.h"
#include "bench/settings.h"
#include "dsp/kernel_level.h"

namespace {

using namespace android;

constexpr int kTurns = 60;
constexpr int kCalls = 100;  // of one candidate in one turn
constexpr int kWidth = 11;

double microseconds(const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kCalls; ++i) {
        call();
    }
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    return time.count() / kCalls;
}

std::vector<KernelLevel> levels() {
    std::vector<KernelLevel> all;
    for (int i = 0; i < kKernelLevels; ++i) {
        if (has_kernel_level(KernelLevel(i))) {
            all.push_back(KernelLevel(i));
        }
    }
    return all;
}

// The least time at each level; ahead of a measured turn a level runs once, so that it finds its code and data.
std::vector<double> at_levels(const std::function<void()>& call) {
    std::vector<double> least(levels().size(), 1e30);
    for (int turn = 0; turn < kTurns; ++turn) {
        for (size_t i = 0; i < least.size(); ++i) {
            set_kernel_level(levels()[i]);
            call();
            least[i] = std::min(least[i], microseconds(call));
        }
    }
    return least;
}

void print_row(const std::string& name, const std::vector<double>& times) {
    std::printf("%-26s", name.c_str());
    for (size_t i = 0; i < times.size(); ++i) {
        std::printf("%*.2f us", kWidth - 3, times[i]);
    }
    for (size_t i = 1; i < times.size(); ++i) {
        std::printf("%*.3f", kWidth - 3, times[i] / times[0]);
    }
    std::printf("\n");
}

class Host {
  public:
    explicit Host(const char* device) : music_(bench::music(bench::kMaterialHops * kHopSamples)) {
        ZOQ_OUTPROC_PLAY_INIT();
        ZOQ_PARAMS_SET(String8((std::string(bench::kEverythingOn) + device).c_str()));
        for (int i = 0; i < bench::kMaterialHops; ++i) {
            play_music();
        }
    }
    void play_music() {
        std::copy_n(music_.data() + size_t(position_) * 2 * kHopSamples, 2 * kHopSamples, block_);
        position_ = (position_ + 1) % bench::kMaterialHops;
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

void measure_transform() {
    static creal32_T x[kFrameSamples], y[kFrameSamples];
    for (int i = 0; i < kFrameSamples; ++i) {
        x[i] = {float(i % 17) - 8.0f, float(i % 11) - 5.0f};
    }
    auto* in = reinterpret_cast<fftwf_complex*>(x);
    auto* out = reinterpret_cast<fftwf_complex*>(y);
    fftwf_plan plan = fftwf_plan_dft_1d(kFrameSamples, in, out, FFTW_FORWARD, FFTW_PATIENT);
    for (int i = 0; i < kFrameSamples; ++i) {
        x[i] = {float(i % 17) - 8.0f, float(i % 11) - 5.0f};
    }
    print_row("transform", at_levels([] { fft(x, y); }));
    double fftw = 1e30;
    for (int turn = 0; turn < kTurns; ++turn) {
        fftw = std::min(fftw, microseconds([plan] { fftwf_execute(plan); }));
    }
    std::printf("%-26s%*.2f us\n", "  FFTW, Debian's package", kWidth - 3, fftw);
    fftwf_destroy_plan(plan);
}

void measure_hops(const char* name, const char* device) {
    Host host(device);
    print_row(std::string("hop, ") + name, at_levels([&host] { host.play_music(); }));
    print_row("  silence behind music", at_levels([&host] { host.play_silence(); }));
}

}  // namespace

int main() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    sched_setaffinity(0, sizeof one, &one);
    static constexpr const char* kNames[] = {"scalar", "4 lanes", "8 lanes", "16 lanes"};
    std::printf("%-26s", "");
    for (const KernelLevel level : levels()) {
        std::printf("%*s", kWidth, kNames[int(level)]);
    }
    std::printf("   the same as parts of the scalar time\n");
    measure_transform();
    bench::Rig rig;
    for (const bench::ModuleCall& module : bench::kModuleCalls) {
        print_row(module.name, at_levels([&] { module.run(rig); }));
    }
    measure_hops("loudspeaker", "2");
    measure_hops("headphones", "8");
    return EXIT_SUCCESS;
}
