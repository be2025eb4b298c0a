// Each module on one hop of music, with the factory contents and every part of it switched on.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/module_calls.h"
#include "bench/ratios.h"

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
    return bench::run(argc, argv, {});
}
