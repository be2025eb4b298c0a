// File descriptors: ownership, whole reads and writes, and spools in memory for streams that cannot seek.
#pragma once

#include <cstddef>
#include <string>

namespace zoq {

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    int get() const { return fd_; }
    int release();

  private:
    int fd_;
};

// Gives descriptors 0, 1 and 2 to the standard streams even if the caller closed them, so that no file of
// ours takes their place and receives a message.
void occupy_standard_descriptors();

// An empty file in memory, which can seek.
Descriptor memory_file();

// All that can still be read from fd, in memory, at its beginning.
Descriptor spool(int fd, const std::string& name);

// Writes everything; returns 0, or the error that came between (EINTR for an interruption). Throws nothing,
// so that C code may call it.
int write_fully(int fd, const void* data, size_t bytes) noexcept;

// Copies a file in memory, from its beginning, to fd.
void copy_all(int from, int to, const std::string& name);

}  // namespace zoq
