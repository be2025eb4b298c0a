// The transforms beside FFTW3f and KissFFT, and the filter and grid routines.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <kiss_fft.h>

#include <algorithm>
#include <vector>

#include "bench/ratios.h"
#include "dsp/fft.h"
#include "dsp/grid.h"
#include "dsp/section.h"
#include "host/flush_to_zero.h"

namespace {

using namespace android;

std::vector<creal32_T> noise() {
    std::vector<creal32_T> x(kFrameSamples);
    uint32_t seed = 7;
    for (creal32_T& value : x) {
        seed = seed * 1664525u + 1013904223u;
        value = {float(int32_t(seed)) * 4.6566e-10f, float(int32_t(seed * 69069u)) * 4.6566e-10f};
    }
    return x;
}

void BM_fft(benchmark::State& state) {
    const std::vector<creal32_T> x = noise();
    std::vector<creal32_T> y(kFrameSamples);
    for (auto _ : state) {
        fft(x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_fft);

void BM_ifft(benchmark::State& state) {
    const std::vector<creal32_T> x = noise();
    std::vector<creal32_T> y(kFrameSamples);
    for (auto _ : state) {
        ifft(x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_ifft);

void BM_fftw3f(benchmark::State& state) {
    std::vector<creal32_T> x = noise(), y(kFrameSamples);
    auto* in = reinterpret_cast<fftwf_complex*>(x.data());
    auto* out = reinterpret_cast<fftwf_complex*>(y.data());
    fftwf_plan plan = fftwf_plan_dft_1d(kFrameSamples, in, out, FFTW_FORWARD, FFTW_MEASURE);
    const std::vector<creal32_T> fresh = noise();
    std::copy(fresh.begin(), fresh.end(), x.begin());  // planning overwrites its arrays
    for (auto _ : state) {
        fftwf_execute(plan);
        benchmark::DoNotOptimize(y.data());
    }
    fftwf_destroy_plan(plan);
}
BENCHMARK(BM_fftw3f);

void BM_kissfft(benchmark::State& state) {
    const std::vector<creal32_T> x = noise();
    std::vector<creal32_T> y(kFrameSamples);
    kiss_fft_cfg plan = kiss_fft_alloc(kFrameSamples, 0, nullptr, nullptr);
    for (auto _ : state) {
        kiss_fft(plan, reinterpret_cast<const kiss_fft_cpx*>(x.data()),
                 reinterpret_cast<kiss_fft_cpx*>(y.data()));
        benchmark::DoNotOptimize(y.data());
    }
    kiss_fft_free(plan);
}
BENCHMARK(BM_kissfft);

void BM_split_stereo_spectrum(benchmark::State& state) {
    const std::vector<creal32_T> x = noise();
    std::vector<creal32_T> left(kBins), right(kBins);
    const float* samples = &x[0].re;
    for (auto _ : state) {
        split_stereo_spectrum(samples, samples + kFrameSamples, left.data(), right.data());
        benchmark::DoNotOptimize(right.data());
    }
}
BENCHMARK(BM_split_stereo_spectrum);

void BM_merge_stereo_spectrum(benchmark::State& state) {
    const std::vector<creal32_T> x = noise();
    std::vector<creal32_T> y(kFrameSamples);
    for (auto _ : state) {
        merge_stereo_spectrum(x.data(), x.data() + 100, y.data());
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_merge_stereo_spectrum);

void BM_filter(benchmark::State& state) {
    const FlushToZero scope;
    const std::vector<creal32_T> x = noise();
    std::vector<float> y(kHopSamples);
    float b[] = {0.9f, -1.7f, 0.85f}, a[] = {1.0f, -1.7f, 0.75f}, z[] = {0.0f, 0.0f};
    for (auto _ : state) {
        filter(b, a, &x[0].re, z, y.data(), z);
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_filter);

void BM_b_log10(benchmark::State& state) {
    std::vector<float> x(kGridPoints), y(kGridPoints);
    for (int k = 0; k < kGridPoints; ++k) {
        x[size_t(k)] = 1e-4f * float(k + 1);
    }
    for (auto _ : state) {
        y = x;
        b_log10(y.data());
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_b_log10);

void BM_power(benchmark::State& state) {
    std::vector<float> x(kGridPoints), y(kGridPoints);
    for (int k = 0; k < kGridPoints; ++k) {
        x[size_t(k)] = -0.01f * float(k);
    }
    for (auto _ : state) {
        power(10.0f, x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_power);

void BM_interp1_fac3(benchmark::State& state) {
    std::vector<float> x(kGridPoints, 0.5f), y(kHopSamples);
    for (auto _ : state) {
        interp1_fac3(x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_interp1_fac3);

}  // namespace

int main(int argc, char** argv) {
    return bench::run(argc, argv, {{"BM_fft", "BM_fftw3f"}, {"BM_fft", "BM_kissfft"}, {"BM_ifft", "BM_fft"}});
}
