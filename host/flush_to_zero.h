// Subnormals flushed to zero, inputs and results, for a scope on the calling thread.
//
// After music ends filter memories decay through the subnormal range, where a hop would cost many times its
// normal time. Flushing is part of how the output is defined. The scope also fixes rounding to nearest and
// masks exceptions, so that a host's own mode cannot change the output; the host's mode and the exceptions it had
// seen come back at its end.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <xmmintrin.h>
#elif !defined(__aarch64__) && !defined(__arm__)
#error "say here how this processor flushes subnormals to zero"
#endif

namespace android {

class FlushToZero {
  public:
    FlushToZero() : callersMode_(read()) { write(kMode); }
    ~FlushToZero() { write(callersMode_); }
    FlushToZero(const FlushToZero&) = delete;
    FlushToZero& operator=(const FlushToZero&) = delete;

  private:
#if defined(__SSE2__)
    using Mode = unsigned int;
    static constexpr Mode kMode =
        0x8000 | 0x1F80 | 0x0040;  // results to zero, exceptions masked, inputs as zero
    static Mode read() {
        return _mm_getcsr();
    }
    static void write(Mode mode) {
        _mm_setcsr(mode);
    }
#elif defined(__aarch64__)
    struct Mode {
        uint64_t control, status;  // the exceptions raised so far have a register of their own
    };
    static constexpr Mode kMode = {uint64_t{1} << 24, 0};  // FZ: inputs and results
    static Mode read() {
        Mode mode;
        asm volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(mode.control), "=r"(mode.status)::"memory");
        return mode;
    }
    static void write(Mode mode) {
        asm volatile("msr fpcr, %0\n\tmsr fpsr, %1" ::"r"(mode.control), "r"(mode.status) : "memory");
    }
#else
    using Mode = uint32_t;
    static constexpr Mode kMode = Mode{1} << 24;  // FZ: inputs and results
    static Mode read() {
        Mode mode;
        asm volatile("vmrs %0, fpscr" : "=r"(mode)::"memory");
        return mode;
    }
    static void write(Mode mode) {
        asm volatile("vmsr fpscr, %0" ::"r"(mode) : "memory");
    }
#endif

    Mode callersMode_;
};

}  // namespace android
