#include "bench/speed/fftw_sets.h"

#include <cstdlib>

using android::KernelLevel;

namespace {

KernelLevel held = KernelLevel::kLanes16;

#if defined(__x86_64__)
bool may_use(KernelLevel level) {
    return held >= level && android::has_kernel_level(level);
}
#endif

}  // namespace

// FFTW's own names. A planner knows what it may use from its birth; the library has only one.
extern "C" {

struct fftwf_planner;
fftwf_planner* fftwf_mkplanner();
void fftwf_configure_planner(fftwf_planner* planner);
fftwf_planner* fftwf_the_planner();

fftwf_planner* fftwf_the_planner() {
    static fftwf_planner* planners[android::kKernelLevels];
    fftwf_planner*& planner = planners[static_cast<int>(held)];
    if (planner == nullptr) {
        planner = fftwf_mkplanner();
        fftwf_configure_planner(planner);
    }
    return planner;
}

#if defined(__x86_64__)
#define ZOQ_FFTW_SET(name, level)      \
    int fftwf_have_simd_##name();      \
    int fftwf_have_simd_##name() {     \
        return may_use(level) ? 1 : 0; \
    }

ZOQ_FFTW_SET(sse2, KernelLevel::kLanes4)
ZOQ_FFTW_SET(avx, KernelLevel::kLanes8)
ZOQ_FFTW_SET(avx2, KernelLevel::kLanes8)
ZOQ_FFTW_SET(avx2_128, KernelLevel::kLanes8)
ZOQ_FFTW_SET(avx512, KernelLevel::kLanes16)
#undef ZOQ_FFTW_SET
#endif

}  // extern "C"

namespace bench {

void hold_fftw_to(KernelLevel level) {
    held = level;
}

std::string set_of(fftwf_plan plan) {
    char* text = fftwf_sprint_plan(plan);
    const std::string all(text);
    std::free(text);
    for (const char* set : {"avx512", "avx2", "avx", "sse2", "neon"}) {
        if (all.find(std::string("_") + set) != std::string::npos) {
            return set;
        }
    }
    return "";
}

}  // namespace bench
