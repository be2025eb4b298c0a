#include <fftw3.h>

#include <fstream>

#include "bench/speed/reports.h"

namespace bench {

namespace {

std::string processor() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("model name")) {
            return line.substr(line.find(':') + 2);
        }
    }
    return "an unnamed processor";
}

}  // namespace

Machine this_machine() {
    return {processor(), ZOQ_COMPILER, ZOQ_FLAGS, fftwf_version};
}

}  // namespace bench
