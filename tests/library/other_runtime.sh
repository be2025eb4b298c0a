#!/bin/sh
# The engine with another C library, another mathematics library and another C++ library than the build's own: it
# compiles against musl and libc++, and plays the scenes as committed. Phones have neither glibc nor libstdc++. Without
# optimisation, so that clang's debug code is looked at, too.
#   other_runtime.sh CMAKE CLANG ROOT
set -eu
cmake=$1 clang=$2 root=$3
runtime=$(dirname "$(readlink -f "$(command -v "$clang")")")/../include/c++/v1
musl=/usr/lib/x86_64-linux-musl
headers=/usr/include/x86_64-linux-musl
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
flags="-nostdlibinc -isystem $runtime -D_LIBCPP_HAS_MUSL_LIBC -isystem $headers"

# The engine's rooms by its own build; nothing but archives, for there is nothing yet to link a program with.
"$cmake" -G Ninja -S "$root" -B "$work/rooms" -DCMAKE_CXX_COMPILER="$clang" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0" \
    -DZOQ_BUILD_TOOLS=OFF -DZOQ_BUILD_TABLES=OFF -DZOQ_BUILD_TESTS=OFF -DZOQ_BUILD_BENCH=OFF >"$work/log" ||
    { cat "$work/log"; exit 1; }
"$cmake" --build "$work/rooms" --target zoq_host >"$work/log" || { cat "$work/log"; exit 1; }

# The two things that a C++ runtime would bring.
cat >"$work/runtime.cpp" <<'TEXT'
#include <cstdlib>
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
extern "C" void* __dso_handle;
void* __dso_handle = nullptr;
TEXT
cd "$work"
for source in "$root/tools/selftest/main.cpp" "$root/tools/selftest/scenes.cpp" runtime.cpp; do
    # shellcheck disable=SC2086
    "$clang" -O1 -std=c++20 -fno-exceptions -fno-rtti $flags "-I$root" "-I$root/include" "-I$root/platform" -c "$source"
done
# shellcheck disable=SC2046
"$clang" -static -nostdlib -o selftest "$musl/crt1.o" "$musl/crti.o" main.o scenes.o runtime.o \
    -Wl,--start-group $(find rooms -name '*.a') -L"$musl" -lc "$("$clang" -print-libgcc-file-name)" -Wl,--end-group \
    "$musl/crtn.o"
./selftest
