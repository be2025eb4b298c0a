// Whether two names lead to one file.
#pragma once

#include <string>
#include <vector>

namespace zoq {

// Also through links, by different ways to one folder, and when neither file exists yet. "-", a standard stream, is
// the same as "-" alone.
bool same_file(const std::string& a, const std::string& b);

// A file that a command is to read or write, and what the user calls it: {"OUTPUT", "out.wav"}. Files without a name
// are none.
struct NamedFile {
    std::string role, path;
};

// Throws UsageFailure when two of them are one.
void check_different(const std::vector<NamedFile>& outputs);

// Throws UsageFailure when a file that is read would be replaced.
void check_kept(const std::vector<NamedFile>& inputs, const std::vector<NamedFile>& outputs);

}  // namespace zoq
