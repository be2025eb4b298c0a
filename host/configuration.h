// The configuration file and the host's defaults. Start-up and control threads only.
#pragma once

#include <cstddef>

namespace android {

inline constexpr char kConfigurationPath[] = "/etc/zoq/zoq_config.txt";
inline constexpr size_t kConfigurationMaxBytes = 131071;
inline constexpr char kConfigurationSeparators[] = " ,;{}[]=\t\n\r";

// Factory contents of all records, the host's defaults over them, and a reset of every module.
void apply_defaults();

// Applies every key that is followed by a value token, in order; other tokens are skipped. No comments, no
// escapes.
//        text      ends at length, at a NUL byte or after 131071 bytes, whichever comes first
void apply_configuration_text(const char* text, size_t length);

// Reads a regular file and applies it. A file that is missing or can't be read changes nothing; returns
// whether one was applied.
bool apply_configuration_file(const char* path);

}  // namespace android
