// The engine's own work as candidates, at every level that this machine has.
#pragma once

#include <vector>

#include "bench/speed/stopwatch.h"

namespace bench {

// Names of candidates.
inline constexpr char kTransform[] = "transform", kLogarithms[] = "logarithms", kPowers[] = "powers",
                      kCurves[] = "logarithms and powers", kBinaural[] = "binaural", kEqualizer[] = "geq",
                      kLoudspeaker[] = "hop, loudspeaker", kHeadphones[] = "hop, headphones",
                      kLoudspeakerSilence[] = "silence behind it, loudspeaker",
                      kHeadphonesSilence[] = "silence behind it, headphones";
inline constexpr char kFftw[] = "FFTW3f", kKissfft[] = "KissFFT", kConvolver[] = "zita-convolver";

std::vector<android::KernelLevel> levels();

// Appends the transform, the grid's routines, the modules (bench/module_calls.h) and whole hops.
void append_work(std::vector<Candidate>& candidates);

}  // namespace bench
