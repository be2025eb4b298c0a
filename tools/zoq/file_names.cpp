#include "tools/zoq/file_names.h"

#include <filesystem>

#include "tools/zoq/failure.h"

namespace zoq {

namespace fs = std::filesystem;

namespace {

// Links of an existing file followed; a new file replaces a link that leads nowhere.
fs::path target_of(const std::string& path) {
    std::error_code error;
    const fs::path target = fs::canonical(path, error);
    return error ? fs::path(path) : target;
}

fs::path folder_of(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

void check_pair(const NamedFile& a, const NamedFile& b) {
    if (!a.path.empty() && !b.path.empty() && same_file(a.path, b.path)) {
        throw UsageFailure(a.role + " and " + b.role + " are the same file, " + quoted(b.path));
    }
}

}  // namespace

bool same_file(const std::string& a, const std::string& b) {
    if (a == "-" || b == "-") {
        return a == b;
    }
    std::error_code error;
    if (fs::equivalent(a, b, error)) {
        return true;
    }
    const fs::path first = target_of(a), second = target_of(b);
    return first.filename() == second.filename() &&
           (folder_of(first) == folder_of(second) ||
            fs::equivalent(folder_of(first), folder_of(second), error));
}

void check_different(const std::vector<NamedFile>& outputs) {
    for (size_t i = 0; i < outputs.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            check_pair(outputs[j], outputs[i]);
        }
    }
}

void check_kept(const std::vector<NamedFile>& inputs, const std::vector<NamedFile>& outputs) {
    for (const NamedFile& input : inputs) {
        for (const NamedFile& output : outputs) {
            if (output.path != "-") {
                check_pair(input, output);
            }
        }
    }
}

}  // namespace zoq
