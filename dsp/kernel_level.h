// Which form of a kernel runs: the scalar one, which is its definition, or a fast one, which gives the same bits with
// vectors of 4, 8 or 16 floats. The level is chosen once, while the library is loaded, by what the processor and its
// system offer; code that runs before finds the level that every processor of the target has.
//
// A kernel returns nothing, knows everything from its arguments, and stands in its room as
//
//     namespace android::scalar { void sum(const float* x, float* y) {...} }       <name>.cpp, the definition
//     namespace android::ZOQ_LEVEL { void sum(const float* x, float* y) {...} }    <name>_lanes.cpp, built per level
//     ZOQ_KERNEL(sum, const float* x, float* y);                                   <name>.cpp, declares sum_kernel
//     void sum(const float* x, float* y) { sum_kernel.run({{y, bytes}}, x, y); }   what callers know
#pragma once

#include <cstddef>
#include <initializer_list>

#include "dsp/kernel_check.h"

namespace android {

enum class KernelLevel { kScalar, kLanes4, kLanes8, kLanes16 };
inline constexpr int kKernelLevels = 4;

// Whether the target has the level and the processor can run it. Levels without a form of their own on a target
// run the next lower one there.
bool has_kernel_level(KernelLevel level);

KernelLevel kernel_level();

// For tests and benchmarks, while no audio runs. A level that the processor cannot run changes nothing.
void set_kernel_level(KernelLevel level);

namespace kernel {

// Read by every call; written while loading and by set_kernel_level().
[[gnu::visibility("hidden")]] extern KernelLevel current;

}  // namespace kernel

template <typename... Arguments>
class Kernel {
  public:
    using Form = void(Arguments...);

    constexpr Kernel(const char* name, Form* scalar, Form* lanes4, Form* lanes8, Form* lanes16)
        : name_(name), forms_{scalar, lanes4, lanes8, lanes16} {}

    // written: every array that the kernel may change, states included
    void run([[maybe_unused]] std::initializer_list<Written> written, Arguments... arguments) const {
        if constexpr (kernel::kCheck) {
            kernel::Check check(name_, written);
            forms_[0](arguments...);
            check.scalar_done();
            forms_[size_t(kernel::current)](arguments...);
            check.fast_done();
        } else {
            forms_[size_t(kernel::current)](arguments...);
        }
    }

  private:
    [[maybe_unused]] const char* name_;
    Form* forms_[kKernelLevels];
};

#if defined(__x86_64__)
#define ZOQ_FORMS(name) scalar::name, lanes4::name, lanes8::name, lanes16::name
#elif defined(__aarch64__) || defined(__ARM_NEON)
#define ZOQ_FORMS(name) scalar::name, lanes4::name, lanes4::name, lanes4::name
#else
#define ZOQ_FORMS(name) scalar::name, scalar::name, scalar::name, scalar::name
#endif

// Within namespace android, below the scalar form; what follows the name is a parameter list.
#define ZOQ_KERNEL(name, ...) \
    namespace lanes4 {        \
    void name(__VA_ARGS__);   \
    }                         \
    namespace lanes8 {        \
    void name(__VA_ARGS__);   \
    }                         \
    namespace lanes16 {       \
    void name(__VA_ARGS__);   \
    }                         \
    static constexpr Kernel name##_kernel(#name, ZOQ_FORMS(name))

}  // namespace android
