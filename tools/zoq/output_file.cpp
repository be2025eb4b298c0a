#include "tools/zoq/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tools/zoq/failure.h"

namespace zoq {

namespace {

// The file that a path names in the end: a link stays a link to the file that is replaced.
std::string follow_links(const std::string& path) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

mode_t mode_for(const std::string& path, const std::string& name) {
    struct stat existing = {};
    if (stat(path.c_str(), &existing) == 0) {
        if (S_ISDIR(existing.st_mode)) {
            throw system_failure("cannot write", name, EISDIR);
        }
        if (!S_ISREG(existing.st_mode)) {
            throw Failure("cannot write " + name + ": not a regular file ('-' is standard output)");
        }
        if (access(path.c_str(), W_OK) != 0) {
            throw system_failure("cannot write", name, errno);
        }
        return existing.st_mode & 07777;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string beside(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return (folder / ".zoq-XXXXXX").string();
}

Descriptor make_temporary(std::string& name, const std::string& shown) {
    Descriptor file(mkostemp(name.data(), O_CLOEXEC));
    if (file.get() < 0) {
        const int error = errno;
        name.clear();
        throw system_failure("cannot write", shown, error);
    }
    return file;
}

}  // namespace

OutputFile::OutputFile(const std::string& path)
    : name_(path == "-" ? "standard output" : quoted(path)),
      path_(path == "-" ? "" : follow_links(path)),
      file_(-1) {
    if (path_.empty()) {
        if (isatty(STDOUT_FILENO) == 1) {
            throw Failure("OUTPUT is '-', but standard output is a terminal");
        }
        file_ = memory_file();
        return;
    }
    const mode_t mode = mode_for(path_, name_);
    temporary_ = beside(path_);
    file_ = make_temporary(temporary_, name_);
    fchmod(file_.get(), mode);
}

OutputFile::~OutputFile() {
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
    }
}

void OutputFile::commit() {
    if (path_.empty()) {
        copy_all(file_.get(), STDOUT_FILENO, name_);
        return;
    }
    // Some file systems report a full disk no earlier than here.
    if (close(file_.release()) != 0) {
        throw system_failure("cannot write", name_, errno);
    }
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) {
        throw system_failure("cannot write", name_, errno);
    }
    temporary_.clear();
}

}  // namespace zoq
