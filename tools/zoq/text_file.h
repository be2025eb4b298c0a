// Small texts, whole: read from a file or standard input, written to a file or standard output.
#pragma once

#include <string>

namespace zoq {

// "-" is standard input. Throws Failure, for more than 16 MiB too.
std::string read_text(const std::string& path);

// "" or "-" is standard output. A file appears complete or not at all. Throws Failure.
void write_text(const std::string& path, const std::string& text);

}  // namespace zoq
