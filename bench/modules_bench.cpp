// Each module on one hop of music, with the factory contents and every part of it switched on; and the looks at their
// memories that tell poison, which these times include.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/module_calls.h"
#include "bench/ratios.h"
#include "dsp/poison.h"
#include "dsp/section.h"
#include "modules/den/den_steps.h"
#include "modules/drc/drc_steps.h"
#include "modules/vb/vb_steps.h"

namespace {

using namespace android;

// As many as the modules of the loudspeaker's route have.
struct Memories {
    float activity;
    DenPowers powers;
    DenEnergies energies;
    DenMagnitudes history[4];
    StereoDelays bands[kGeqMaxBands], treble[2 * kMaxSections + 1], bass[5 * kMaxSections];
    VbMemory curves;
    DrcMemory channels[2];
};

void look(benchmark::State& state) {
    Memories m = {};
    for (auto _ : state) {
        benchmark::DoNotOptimize(&m);
        benchmark::ClobberMemory();
        const bool poisoned =
            is_poisoned(m.activity, 1.0f) | is_poisoned(m.powers, 1.0f) | is_poisoned(m.energies, 1.0f) |
            is_poisoned(m.history, 1.0f) | is_poisoned(m.bands, 1.0f) | is_poisoned(m.treble, 1.0f) |
            is_poisoned(m.bass, 1.0f) | is_poisoned(m.curves, 1.0f) | is_poisoned(m.channels, 1.0f);
        benchmark::DoNotOptimize(poisoned);
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const bench::ModuleCall& call : bench::kModuleCalls) {
        benchmark::RegisterBenchmark((std::string("BM_hop_") + call.name).c_str(),
                                     [&call](benchmark::State& state) {
                                         bench::Rig rig;
                                         for (auto _ : state) {
                                             call.run(rig);
                                             benchmark::DoNotOptimize(rig.in);
                                             benchmark::DoNotOptimize(rig.out);
                                         }
                                     });
    }
    benchmark::RegisterBenchmark("BM_looks", look);
    return bench::run(argc, argv, {{"BM_looks", "BM_hop_den"}, {"BM_looks", "BM_hop_geq"}});
}
