// Whole blocks of one hop through the entry point, music and the silence after it, with every effect on.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench/ratios.h"
#include "bench/settings.h"
#include "bench/signals.h"
#include "zoq2processing.h"

namespace {

using namespace android;

constexpr int kBlockValues = 2 * kHopSamples;
constexpr int kBlockBytes = 2 * kBlockValues;
constexpr int kMusicBlocks = 188;  // two seconds

class Player {
  public:
    explicit Player(const char* device)
        : music_(bench::music(kMusicBlocks * kHopSamples)), block_(kBlockValues) {
        ZOQ_OUTPROC_PLAY_INIT();
        String8 settings(bench::kEverythingOn);
        settings.append(device);
        ZOQ_PARAMS_SET(settings);
        for (int i = 0; i < kMusicBlocks; ++i) {
            play_music();
        }
    }

    void play_music() {
        const size_t start = size_t(position_) * kBlockValues;
        position_ = (position_ + 1) % kMusicBlocks;
        std::copy_n(music_.data() + start, kBlockValues, block_.data());
        ZOQ_OUTPROC_PLAY_SAMPLES(block_.data(), kBlockBytes, kSampleRateHz, 2);
    }

    void play_silence() {
        std::fill(block_.begin(), block_.end(), int16_t{0});
        ZOQ_OUTPROC_PLAY_SAMPLES(block_.data(), kBlockBytes, kSampleRateHz, 2);
    }

  private:
    std::vector<int16_t> music_;
    std::vector<int16_t> block_;
    int position_ = 0;
};

void music_hops(benchmark::State& state, const char* device) {
    Player player(device);
    for (auto _ : state) {
        player.play_music();
    }
}

void silence_hops(benchmark::State& state, const char* device) {
    Player player(device);
    for (auto _ : state) {
        player.play_silence();
    }
}

void BM_hop_speaker_music(benchmark::State& state) {
    music_hops(state, "2");
}
BENCHMARK(BM_hop_speaker_music);

void BM_hop_speaker_silence(benchmark::State& state) {
    silence_hops(state, "2");
}
BENCHMARK(BM_hop_speaker_silence);

void BM_hop_headphone_music(benchmark::State& state) {
    music_hops(state, "8");
}
BENCHMARK(BM_hop_headphone_music);

void BM_hop_headphone_silence(benchmark::State& state) {
    silence_hops(state, "8");
}
BENCHMARK(BM_hop_headphone_silence);

}  // namespace

int main(int argc, char** argv) {
    return bench::run(argc, argv,
                      {{"BM_hop_speaker_silence", "BM_hop_speaker_music"},
                       {"BM_hop_headphone_silence", "BM_hop_headphone_music"}});
}
