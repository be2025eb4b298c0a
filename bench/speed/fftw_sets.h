// FFTW's planner held to the instruction sets of one of the engine's levels.
//
// FFTW asks the processor what it has while it sets up its planner, through functions that the program may define ahead
// of the library; so it does here, and keeps a planner per level. What a plan is made of says which set it found best:
// Debian's package has codelets for SSE2 and AVX alone.
#pragma once

#include <fftw3.h>

#include <string>

#include "dsp/kernel_level.h"

namespace bench {

// The sets that plans made from now on may use; kLanes16, at first, stands for all.
void hold_fftw_to(android::KernelLevel level);

// The set of a plan's codelets as FFTW names it: "avx512", "avx2", "avx", "sse2", "neon", the widest that occurs, or "".
std::string set_of(fftwf_plan plan);

}  // namespace bench
