// What the counter measures, on the target under emulation: whole hops through the entry point, each module,
// and the primitives. Each piece of work runs N times between marks 0 and 1 and 2 N times between marks 1
// and 2, so that what surrounds the work cancels. Prints "name N" per piece of work.
//   guest_workload [NAME...]
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "bench/module_calls.h"
#include "bench/settings.h"

namespace {

using namespace android;

struct Work {
    std::string name;
    int period;  // calls after which the input repeats
    std::function<void()> prepare, call;
};

enum Message : uintptr_t { kMark = 0x5A0051, kInsideFrom = 0x5A0052, kInsideTo = 0x5A0053 };

// To the counter, which recognises the address; without it the call fails and does nothing.
void tell(Message message, size_t value) {
    [[maybe_unused]] const ssize_t failed = write(-1, reinterpret_cast<const void*>(message), value);
}

// Where the library lies in memory, before any of it runs.
void tell_library() {
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void*) {
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const auto& segment = info->dlpi_phdr[i];
                if (std::strstr(info->dlpi_name, "libzoq2processing") != nullptr &&
                    segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
                    tell(kInsideFrom, info->dlpi_addr + segment.p_vaddr);
                    tell(kInsideTo, info->dlpi_addr + segment.p_vaddr + segment.p_memsz);
                }
            }
            return 0;
        },
        nullptr);
}

void repeat(const Work& work, int times) {
    for (int i = 0; i < times; ++i) {
        work.call();
    }
}

void measure(const Work& work) {
    work.prepare();
    repeat(work, work.period);  // past settling, fade and the first touch of every page
    tell(kMark, 0);
    repeat(work, work.period);
    tell(kMark, 1);
    repeat(work, 2 * work.period);
    tell(kMark, 2);
    std::printf("%s %d\n", work.name.c_str(), work.period);
}

// One block of one hop.
Work hops(const char* name, const char* device) {
    constexpr int kHops = 47;  // half a second: one beat
    constexpr int kValues = 2 * kHopSamples;
    struct Player {
        std::vector<int16_t> values = bench::music(kHops * kHopSamples);
        int16_t block[kValues];
        int position = 0;

        void play() {
            std::copy_n(values.data() + size_t(position) * kValues, kValues, block);
            position = (position + 1) % kHops;
            ZOQ_OUTPROC_PLAY_SAMPLES(block, sizeof block, kSampleRateHz, 2);
        }
    };
    static Player player;
    return {name, kHops,
            [device] {
                ZOQ_OUTPROC_PLAY_INIT();
                String8 settings(bench::kEverythingOn);
                settings.append(device);
                ZOQ_PARAMS_SET(settings);
            },
            [] { player.play(); }};
}

Work module(const bench::ModuleCall& call) {
    static bench::Rig* rig;
    return {call.name, bench::kMaterialHops - 1,
            [] {
                delete rig;
                rig = new bench::Rig;
            },
            [&call] { call.run(*rig); }};
}

struct Arrays {
    Arrays()
        : complex(kFrameSamples), spectrum(2 * kFrameSamples), real(kFrameSamples), result(kFrameSamples) {
        uint32_t seed = 7;
        for (size_t i = 0; i < complex.size(); ++i) {
            seed = seed * 1664525u + 1013904223u;
            complex[i] = {float(int32_t(seed)) * 4.6566e-10f, float(int32_t(seed * 69069u)) * 4.6566e-10f};
            real[i] = 1e-4f * float(i + 1);
        }
    }
    std::vector<creal32_T> complex, spectrum;
    std::vector<float> real, result;
    float b[3] = {0.9f, -1.7f, 0.85f}, a[3] = {1.0f, -1.7f, 0.75f}, z[2] = {0.0f, 0.0f};
};

// Each of them does the same at every call, but for the filter's delays.
std::vector<Work> primitives() {
    static Arrays v;
    const auto ready = [] { fft(v.complex.data(), v.spectrum.data()); };
    constexpr int kCalls = 10;
    const float* samples = &v.complex[0].re;
    return {{"fft", kCalls, ready, [] { fft(v.complex.data(), v.spectrum.data()); }},
            {"ifft", kCalls, ready, [] { ifft(v.complex.data(), v.spectrum.data()); }},
            {"c_fft", kCalls, ready, [] { c_fft(v.real.data(), v.spectrum.data()); }},
            {"split_stereo_spectrum", kCalls, ready,
             [samples] {
                 split_stereo_spectrum(samples, samples + kFrameSamples, v.spectrum.data(),
                                       v.spectrum.data() + kFrameSamples);
             }},
            {"merge_stereo_spectrum", kCalls, ready,
             [] { merge_stereo_spectrum(v.complex.data(), v.complex.data() + 100, v.spectrum.data()); }},
            {"filter", kCalls, ready, [] { filter(v.b, v.a, v.real.data(), v.z, v.result.data(), v.z); }},
            {"b_log10", kCalls, ready,
             [] {
                 std::copy_n(v.real.data(), kGridPoints, v.result.data());
                 b_log10(v.result.data());
             }},
            {"power", kCalls, ready, [] { power(10.0f, v.real.data(), v.result.data()); }},
            {"interp1_fac3", kCalls, ready, [] { interp1_fac3(v.real.data(), v.result.data()); }}};
}

}  // namespace

int main(int argc, char** argv) {
    tell_library();
    std::vector<Work> all = {hops("hop_speaker", "2"), hops("hop_headphone", "8")};
    for (const bench::ModuleCall& call : bench::kModuleCalls) {
        all.push_back(module(call));
    }
    const std::vector<Work> small = primitives();
    all.insert(all.end(), small.begin(), small.end());

    int found = 0;
    for (const Work& work : all) {
        if (argc < 2 || std::find(argv + 1, argv + argc, work.name) != argv + argc) {
            measure(work);
            ++found;
        }
    }
    return found >= argc - 1 && found > 0 ? 0 : 1;
}
