#include "tools/zoq/descriptor.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cerrno>
#include <utility>
#include <vector>

#include "tools/zoq/failure.h"
#include "tools/zoq/interruption.h"

namespace zoq {

namespace {

constexpr size_t kChunkBytes = size_t{1} << 16;

// Bytes read, 0 at the end. A key that interrupts a pipeline ends what writes into it, too: that is no end.
size_t read_some(int fd, std::vector<char>& chunk, const std::string& name) {
    for (;;) {
        const ssize_t got = read(fd, chunk.data(), chunk.size());
        throw_if_interrupted();
        if (got >= 0) {
            return static_cast<size_t>(got);
        }
        if (errno != EINTR) {
            throw system_failure("cannot read", name, errno);
        }
    }
}

void rewind(int fd, const std::string& name) {
    if (lseek(fd, 0, SEEK_SET) != 0) {
        throw system_failure("cannot rewind", name, errno);
    }
}

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ >= 0) {
        close(fd_);
    }
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

int Descriptor::release() {
    const int fd = fd_;
    fd_ = -1;
    return fd;
}

void occupy_standard_descriptors() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (fcntl(fd, F_GETFD) == -1) {
            // Opened the wrong way round: using it is still an error. It stays open for as long as the program runs.
            // cppcheck-suppress leakReturnValNotUsed
            (void)open("/dev/null", fd == 0 ? O_WRONLY : O_RDONLY);
        }
    }
}

Descriptor memory_file() {
    Descriptor file(memfd_create("zoq", MFD_CLOEXEC));
    if (file.get() < 0) {
        throw system_failure("cannot make", "a file in memory", errno);
    }
    return file;
}

Descriptor spool(int fd, const std::string& name) {
    Descriptor file = memory_file();
    std::vector<char> chunk(kChunkBytes);
    while (const size_t bytes = read_some(fd, chunk, name)) {
        if (const int error = write_fully(file.get(), chunk.data(), bytes)) {
            throw system_failure("cannot keep", name + " in memory", error);
        }
    }
    rewind(file.get(), name);
    return file;
}

int write_fully(int fd, const void* data, size_t bytes) noexcept {
    const char* next = static_cast<const char*>(data);
    while (bytes > 0) {
        const ssize_t written = write(fd, next, bytes);
        if (written > 0) {
            next += written;
            bytes -= static_cast<size_t>(written);
        } else if (written == 0) {
            return ENOSPC;
        } else if (errno != EINTR || interrupted()) {
            return errno;
        }
    }
    return 0;
}

void copy_all(int from, int to, const std::string& name) {
    rewind(from, name);
    std::vector<char> chunk(kChunkBytes);
    while (const size_t bytes = read_some(from, chunk, name)) {
        if (const int error = write_fully(to, chunk.data(), bytes)) {
            throw_if_interrupted();
            throw system_failure("cannot write", name, error);
        }
    }
}

}  // namespace zoq
