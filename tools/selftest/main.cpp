// zoq-selftest: plays the scenes on this machine and compares what comes out with the committed hashes.
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "tools/selftest/scenes.h"

namespace {

int print_usage(int code) {
    std::fprintf(
        code == 0 ? stdout : stderr,
        "Usage: zoq-selftest [--print]\n"
        "Plays %d scenes through libzoq2processing.so and hashes every sample.\n"
        "  --print  print the hashes without comparing\n"
        "Exit code: 0 when all hashes are the committed ones, 1 when one differs, 2 for wrong usage.\n",
        selftest::kSceneCount);
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        return print_usage(0);
    }
    const bool print = argc == 2 && std::strcmp(argv[1], "--print") == 0;
    if (argc > 2 || (argc == 2 && !print)) {
        return print_usage(2);
    }
    int different = 0;
    for (int i = 0; i < selftest::kSceneCount; ++i) {
        const selftest::Scene& scene = selftest::kScenes[i];
        const uint64_t hash = selftest::play(scene);
        const bool same = hash == scene.expected;
        std::printf("%016" PRIx64 "  %s%s\n", hash, scene.name, print || same ? "" : "  DIFFERS");
        different += same ? 0 : 1;
    }
    if (print) {
        return 0;
    }
    std::printf("%d of %d scenes as committed\n", selftest::kSceneCount - different, selftest::kSceneCount);
    return different == 0 ? 0 : 1;
}
