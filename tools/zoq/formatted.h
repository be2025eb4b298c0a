// printf into a string.
#pragma once

#include <string>

namespace zoq {

__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...);

}  // namespace zoq
