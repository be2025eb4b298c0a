#include "dsp/kernel_level.h"

namespace android {

namespace {

#if defined(__x86_64__)
constexpr KernelLevel kBaseLevel = KernelLevel::kLanes4;

// The builtins ask the system, too: whether it keeps the wide registers when it switches tasks.
KernelLevel best_level() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl")) {
        return KernelLevel::kLanes16;
    }
    return __builtin_cpu_supports("avx2") ? KernelLevel::kLanes8 : kBaseLevel;
}
#else
#if defined(__aarch64__) || defined(__ARM_NEON)
constexpr KernelLevel kBaseLevel = KernelLevel::kLanes4;
#else
constexpr KernelLevel kBaseLevel = KernelLevel::kScalar;
#endif

KernelLevel best_level() {
    return kBaseLevel;
}
#endif

}  // namespace

constinit KernelLevel kernel::current = kBaseLevel;

namespace {

[[maybe_unused]] const bool chosenWhileLoading = [] {
    kernel::current = best_level();
    return true;
}();

}  // namespace

bool has_kernel_level(KernelLevel level) {
    return level <= best_level();
}

KernelLevel kernel_level() {
    return kernel::current;
}

void set_kernel_level(KernelLevel level) {
    if (has_kernel_level(level)) {
        kernel::current = level;
    }
}

}  // namespace android
