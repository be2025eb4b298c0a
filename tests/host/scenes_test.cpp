// The scenes of zoq-selftest with every form of the kernels that this machine can run.
#include "tools/selftest/scenes.h"
#include "tests/support/kernel_levels.h"

using namespace android;

namespace {

void expect_committed_hashes(KernelLevel level) {
    const kernels::Level scope(level);
    ASSERT_EQ(kernel_level(), level);
    for (int i = 0; i < selftest::kSceneCount; ++i) {
        EXPECT_EQ(selftest::play(selftest::kScenes[i]), selftest::kScenes[i].expected)
            << selftest::kScenes[i].name << ", level " << int(level);
    }
}

TEST(Scenes, SoundTheSameAtEveryLevel) {
    // Without a word the best level runs.
    EXPECT_EQ(kernel_level(),
              kernels::fast_levels().empty() ? KernelLevel::kScalar : kernels::fast_levels().back());
    expect_committed_hashes(KernelLevel::kScalar);
    for (const KernelLevel level : kernels::fast_levels()) {
        expect_committed_hashes(level);
    }
}

}  // namespace
