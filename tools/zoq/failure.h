// How a command ends early: one line on standard error and an exit code.
#pragma once

#include <stdexcept>
#include <string>

namespace zoq {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  // something went wrong while running
inline constexpr int kExitUsage = 2;    // the command line asks for something that does not exist

// The text is shown behind "zoq: ", without a full stop.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct UsageFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A command has said everything and ends with an exit code of its own.
struct ExitCode {
    int code;
};

// "cannot read 'song.wav': No such file or directory"
Failure system_failure(const std::string& what, const std::string& name, int error);

// A file as messages name it.
std::string quoted(const std::string& path);

}  // namespace zoq
