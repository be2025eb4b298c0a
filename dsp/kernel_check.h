// The comparison behind the build option ZOQ_CHECK_KERNELS: every call of a kernel runs the scalar form, too.
#pragma once

#include <cstddef>
#include <initializer_list>

namespace android {

// An array that a kernel may change.
struct Written {
    void* data;
    size_t bytes;  // a multiple of 4
};

namespace kernel {

#ifdef ZOQ_CHECK_KERNELS
inline constexpr bool kCheck = true;
#else
inline constexpr bool kCheck = false;
#endif

// Keeps what the arrays hold, lets the scalar form write them and gives them back as they were; then compares what
// the fast form writes with what the scalar one wrote, and aborts where a bit differs.
class Check {
  public:
    Check(const char* name, std::initializer_list<Written> written);
    void scalar_done();
    void fast_done() const;

  private:
    [[noreturn]] void fail(const char* what, size_t array, size_t word) const;

    static constexpr size_t kMaxArrays = 8, kMaxBytes = 96 * 1024;
    const char* name_;
    size_t count_ = 0;
    Written arrays_[kMaxArrays];
    unsigned char before_[kMaxBytes];
    unsigned char scalar_[kMaxBytes];
};

}  // namespace kernel

}  // namespace android
