// Ratios of benchmarks that ran interleaved in one process, from their minimum times.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Ratio {
    std::string subject;  // name of a benchmark
    std::string against;  // name of another
};

// Runs the registered benchmarks, five repetitions each in random order unless the command line says
// otherwise, and prints time per call, the multiple of real time where a call is a hop, and the ratios.
// Returns an exit code.
int run(int argc, char** argv, const std::vector<Ratio>& ratios);

}  // namespace bench
