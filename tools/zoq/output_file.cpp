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

// Links, "..", and names of files that do not exist yet are seen through.
bool same_file(const std::string& a, const std::string& b) {
    std::error_code error;
    if (std::filesystem::equivalent(a, b, error)) {
        return true;
    }
    return std::filesystem::weakly_canonical(a, error) == std::filesystem::weakly_canonical(b, error) &&
           !error;
}

void require_apart(const NamedFile& a, const NamedFile& b) {
    if (!a.path.empty() && !b.path.empty() && b.path != "-" && same_file(a.path, b.path)) {
        throw Failure(std::string(a.what) + " and " + b.what + " are the same file, " + quoted(b.path));
    }
}

}  // namespace

void require_files_apart(const std::vector<NamedFile>& read, const std::vector<NamedFile>& written) {
    for (size_t i = 0; i < written.size(); ++i) {
        for (const NamedFile& input : read) {
            require_apart({input.what, input.path == "-" ? "/dev/stdin" : input.path}, written[i]);
        }
        for (size_t other = 0; other < i; ++other) {
            if (written[other].path != "-") {
                require_apart(written[other], written[i]);
            }
        }
    }
}

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
