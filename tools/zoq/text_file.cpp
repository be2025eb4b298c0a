#include "tools/zoq/text_file.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>

#include "tools/zoq/descriptor.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/interruption.h"
#include "tools/zoq/output_file.h"

namespace zoq {

namespace {

constexpr size_t kMostBytes = size_t{16} << 20;

std::string read_all(int fd, const std::string& name) {
    std::string text;
    char block[65536];
    while (true) {
        const ssize_t bytes = read(fd, block, sizeof block);
        if (bytes == 0) {
            return text;
        }
        if (bytes < 0) {
            throw_if_interrupted();
            if (errno != EINTR) {
                throw system_failure("cannot read", name, errno);
            }
            continue;
        }
        text.append(block, static_cast<size_t>(bytes));
        if (text.size() > kMostBytes) {
            throw Failure("cannot read " + name + ": more than 16 MiB is no text of settings");
        }
    }
}

}  // namespace

std::string read_text(const std::string& path) {
    if (path == "-") {
        return read_all(STDIN_FILENO, "standard input");
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) {
        throw system_failure("cannot read", quoted(path), errno);
    }
    return read_all(file.get(), quoted(path));
}

void write_text(const std::string& path, const std::string& text) {
    if (path.empty() || path == "-") {
        if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
            throw system_failure("cannot write", "standard output", errno);
        }
        return;
    }
    OutputFile file(path);
    if (const int error = write_fully(file.fd(), text.data(), text.size())) {
        throw system_failure("cannot write", file.name(), error);
    }
    file.commit();
}

}  // namespace zoq
