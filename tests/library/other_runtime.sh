#!/bin/sh
# The engine with another C library, another mathematics library and another C++ library than the build's own: it
# compiles against musl and libc++, and plays the scenes as committed. Phones have neither glibc nor libstdc++.
#   other_runtime.sh CLANG ROOT
set -eu
clang=$1 root=$2
runtime=$(dirname "$(readlink -f "$(command -v "$clang")")")/../include/c++/v1
musl=/usr/lib/x86_64-linux-musl
headers=/usr/include/x86_64-linux-musl
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The two things that a C++ runtime would bring.
cat >"$work/runtime.cpp" <<'TEXT'
#include <cstdlib>
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
extern "C" void* __dso_handle;
void* __dso_handle = nullptr;
TEXT
# compile OBJECT_SUFFIX [OPTION...]: the files that standard input names
compile() {
    suffix=$1
    shift
    xargs -P 2 -I FILE sh -c '"$@" -c FILE -o '"$work"'/$(basename FILE)'"$suffix.o" compile \
        "$clang" -O2 -std=c++20 -Wall -Wextra -ffp-contract=off -fno-math-errno -fno-exceptions -fno-rtti \
        -nostdlibinc -isystem "$runtime" -D_LIBCPP_HAS_MUSL_LIBC -isystem "$headers" \
        "-I$root" "-I$root/include" "-I$root/platform" "$@"
}
# Kernels are built once per level; without a word they have 4 lanes.
find "$root/platform" "$root/dsp" "$root/modules" "$root/chain" "$root/host" "$root/tools/selftest" "$work" -name '*.cpp' |
    compile ""
find "$root/dsp" "$root/modules" -name '*_lanes.cpp' | compile 8 -DZOQ_LANES=8 -mavx2 -mno-fma
find "$root/dsp" "$root/modules" -name '*_lanes.cpp' |
    compile 16 -DZOQ_LANES=16 -mavx512f -mavx512dq -mavx512bw -mavx512vl

"$clang" -static -nostdlib -o "$work/selftest" "$musl/crt1.o" "$musl/crti.o" "$work"/*.o -L"$musl" -lc \
    "$("$clang" -print-libgcc-file-name)" "$musl/crtn.o"
"$work/selftest"
