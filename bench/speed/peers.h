// The peers as candidates: Debian's libraries at the engine's jobs.
#pragma once

#include <string>
#include <vector>

#include "bench/speed/stopwatch.h"

namespace bench {

// The sets in which FFTW's plans of each level are, in levels' order: "", "sse2", "avx", "avx" for Debian's package.
using FftwSets = std::vector<std::string>;

// Appends FFTW's transform at every level (scalar: without vectors), KissFFT's and zita-convolver's binaural stage. A
// peer that measures its way to a plan may be unlucky: it has as many tries as said, under the same name.
FftwSets append_peers(std::vector<Candidate>& candidates, int tries);

}  // namespace bench
