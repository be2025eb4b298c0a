// What must hold; a fuzz target stops where it does not, and the fuzzer keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

inline void require(bool good, const char* what) {
    if (!good) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

}  // namespace fuzz
