// What a target holds to be true of every input; where it isn't, the fuzzer stops and keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool good, const char* what) {
    if (!good) {
        std::fprintf(stderr, "not so: %s\n", what);
        std::abort();
    }
}
