#include "tools/zoq/failure.h"

#include <cstring>

namespace zoq {

Failure system_failure(const std::string& what, const std::string& name, int error) {
    return Failure(what + " " + name + ": " + std::strerror(error));
}

std::string quoted(const std::string& path) {
    return "'" + path + "'";
}

}  // namespace zoq
