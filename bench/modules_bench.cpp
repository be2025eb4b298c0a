// Each module on one hop of music, with the factory contents and every part of it switched on.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench/ratios.h"
#include "bench/signals.h"
#include "host/flush_to_zero.h"
#include "zoq2processing.h"

namespace {

using namespace android;

constexpr int kHops = 94;  // one second

// Planar frames and hops cut from the same music, round and round.
class Material {
  public:
    Material() : left_(kHops * kHopSamples), right_(left_.size()) {
        const std::vector<int16_t> values = bench::music(kHops * kHopSamples);
        for (size_t i = 0; i < left_.size(); ++i) {
            left_[i] = float(values[2 * i]) / 32768.0f;
            right_[i] = float(values[2 * i + 1]) / 32768.0f;
        }
    }

    // Left, right and their mean as a centre: the previous hop and the current one.
    void frame(float* planar) {
        const size_t start = size_t(next()) * kHopSamples;
        for (size_t i = 0; i < kFrameSamples; ++i) {
            planar[i] = left_[start + i];
            planar[kFrameSamples + i] = right_[start + i];
            planar[2 * kFrameSamples + i] = 0.5f * (left_[start + i] + right_[start + i]);
        }
    }

    void hop(float* planar) {
        const size_t start = size_t(next()) * kHopSamples;
        std::copy_n(left_.data() + start, kHopSamples, planar);
        std::copy_n(right_.data() + start, kHopSamples, planar + kHopSamples);
    }

  private:
    int next() { return position_ = (position_ + 1) % (kHops - 1); }

    std::vector<float> left_, right_;
    int position_ = 0;
};

struct Bench {
    Bench() {
        stereoWidening_initialization(80.0f, &b_parameterDEN, &b_parameterTWS, &b_parameterEQ,
                                      &b_parameterDRC, &b_parameterVB, &b_parameterX2B, &b_parameterGEQ);
        initialize_dynamicRangeCompression_C(14.7f, &b_parameterDRC);
        std::fill_n(b_parameterGEQ.bandGainDb, kGeqBands, 3.0f);
        b_parameterX2B.surroundWidth = 0.7f;
        b_parameterTWS.widthGain = 0.8f;
        stereoWidening_frame_initialize();
    }
    FlushToZero scope;
    Material material;
    float in[3 * kFrameSamples];
    float out[2 * kHopSamples];
};

void BM_hop_den(benchmark::State& state) {
    Bench b;
    const parameterDEN& p = b_parameterDEN;
    for (auto _ : state) {
        b.material.frame(b.in);
        DialogueEnhancementWide(b.in, p.smoothFactor, 2.0f, 1.0f, 2.0f, 0.0f, p.wideCurve[0], p.bandEnd,
                                p.bandStart);
        benchmark::DoNotOptimize(b.in);
    }
}
BENCHMARK(BM_hop_den);

void BM_hop_tws(benchmark::State& state) {
    Bench b;
    for (auto _ : state) {
        b.material.frame(b.in);
        TWSmobile_freq(b.in, &b_parameterTWS, b.out);
        benchmark::DoNotOptimize(b.out);
    }
}
BENCHMARK(BM_hop_tws);

void BM_hop_x2b(benchmark::State& state) {
    Bench b;
    for (auto _ : state) {
        b.material.frame(b.in);
        X2Binaural_v1(b.in, 3.0f, &b_parameterX2B, b.out);
        benchmark::DoNotOptimize(b.out);
    }
}
BENCHMARK(BM_hop_x2b);

void BM_hop_geq(benchmark::State& state) {
    Bench b;
    const parameterGEQ& p = b_parameterGEQ;
    for (auto _ : state) {
        b.material.hop(b.out);
        graphicalEQ(b.out, 2.0f, p.bandCount, p.bandGainDb, p.bandQ, p.bandWarp);
        benchmark::DoNotOptimize(b.out);
    }
}
BENCHMARK(BM_hop_geq);

void BM_hop_vb(benchmark::State& state) {
    Bench b;
    for (auto _ : state) {
        b.material.hop(b.out);
        virtualbassFunction_monoLC(b.out, 2.0f, &b_parameterVB);
        benchmark::DoNotOptimize(b.out);
    }
}
BENCHMARK(BM_hop_vb);

void BM_hop_eq(benchmark::State& state) {
    Bench b;
    const parameterEQ& p = b_parameterEQ;
    for (auto _ : state) {
        b.material.hop(b.out);
        equalization_peak(b.out, 2.0f, p.peakSectionCount, p.peakSos, p.trebleSectionCount, p.trebleSos, 0.3f,
                          p.finalSos, p.finalPassCount);
        benchmark::DoNotOptimize(b.out);
    }
}
BENCHMARK(BM_hop_eq);

void BM_hop_drc(benchmark::State& state) {
    Bench b;
    const parameterDRC& p = b_parameterDRC;
    for (auto _ : state) {
        b.material.hop(b.out);
        dynamicRangeCompression_LC(b.out, 2.0f, &p.compThreshold, &p.limThreshold, &p.expThreshold);
        benchmark::DoNotOptimize(b.out);
    }
}
BENCHMARK(BM_hop_drc);

}  // namespace

int main(int argc, char** argv) {
    return bench::run(argc, argv, {});
}
