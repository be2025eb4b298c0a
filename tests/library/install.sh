#!/bin/sh
# A host of a few lines builds and runs from an installed tree alone, by pkg-config and by a CMake package.
#   install.sh CMAKE BUILD_FOLDER COMPILER
set -eu
cmake=$1 build=$2 compiler=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root

for component in library development; do
    "$cmake" --install "$build" --prefix "$root" --component $component >/dev/null
done
mkdir "$work/host"
cat >"$work/host/host.cpp" <<'TEXT'
#include <audio_parameter.h>
#include <zoq2processing.h>
int main() {
    int16_t block[1024];
    ZOQ_OUTPROC_PLAY_INIT();
    ZOQ_PARAMS_SET(android::String8("HIFIPARA=STEREOWIDEN_Enable=true;DS_stereoWidth=80"));
    for (int n = 0; n < 100; ++n) {
        for (int i = 0; i < 1024; ++i) block[i] = static_cast<int16_t>(i % 96 < 48 ? 3000 : -3000);
        ZOQ_OUTPROC_PLAY_SAMPLES(block, sizeof block, 48000, 2);
    }
    return block[0] != 3000 && ZOQ_PARAMS_GET(android::String8("DS_stereoWidth")).length() > 0 ? 0 : 1;
}
TEXT
cat >"$work/host/CMakeLists.txt" <<'TEXT'
cmake_minimum_required(VERSION 3.25)
project(host LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
find_package(zoq2processing 0.1 REQUIRED)
add_executable(host host.cpp)
target_link_libraries(host PRIVATE zoq::zoq2processing)
TEXT

package=$(dirname "$(find "$root" -name zoq2processing.pc)")
# Only flags of the installed tree, so that no header of the source tree is found by accident.
flags=$(PKG_CONFIG_LIBDIR="$package" pkg-config --cflags --libs zoq2processing)
cd "$work"
# shellcheck disable=SC2086
"$compiler" -std=c++17 host/host.cpp -o by_pkg_config $flags
LD_LIBRARY_PATH=$package/.. ./by_pkg_config || { echo "the host built by pkg-config fails"; exit 1; }

# The guide's example does what the guide says: it ends well only when its sound was processed.
# shellcheck disable=SC2086
"$compiler" -std=c++17 -Wall -Wextra -Werror "$(find "$root" -name minimal_host.cpp)" -o minimal_host $flags
LD_LIBRARY_PATH=$package/.. ./minimal_host >log || { cat log; echo "the example in the guide fails"; exit 1; }

"$cmake" -S host -B by_cmake -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$root" >log || { cat log; exit 1; }
"$cmake" --build by_cmake >log || { cat log; exit 1; }
by_cmake/host || { echo "the host built by CMake fails"; exit 1; }

# Every header that is installed compiles alone.
find "$root" -name '*.h' | while read -r header; do
    # shellcheck disable=SC2086
    "$compiler" -std=c++17 $flags -fsyntax-only -include "$header" -x c++ /dev/null || { echo "$header does not compile alone"; exit 1; }
done
echo "two hosts run from $(find "$root" -type f | wc -l) installed files"
