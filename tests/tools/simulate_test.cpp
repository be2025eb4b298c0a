// zoq simulate: what it shows of block sizes, changes and fades, held against what is known of the driver.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <numeric>

#include "tests/tools/command.h"

using namespace command;
using nlohmann::json;

namespace {

using SimulateTest = InEmptyFolder;

json simulated(const std::string& arguments) {
    const Outcome outcome = shell("zoq simulate --json " + arguments);
    EXPECT_EQ(outcome.code, 0) << arguments << outcome.err;
    return json::parse(outcome.out, nullptr, false);
}

// What a queue of plain counters does with blocks of one size: the block, counted from the first processed one, that
// finds too little, or -1.
int short_block(int frames) {
    std::vector<bool> seen(512);
    for (int n = 0, received = 0, waiting = frames % 512; !seen[static_cast<size_t>(received)]; ++n) {
        seen[static_cast<size_t>(received)] = true;
        received += frames;
        waiting += received / 512 * 512;
        received %= 512;
        if (waiting < frames) {
            return n;
        }
        waiting -= frames;
    }
    return -1;
}

TEST_F(SimulateTest, ScanNamesTheSizesThatACountingQueueNamesToo) {
    std::vector<int> expected;
    for (int frames = 1; frames <= 4096; ++frames) {
        if (short_block(frames) < 0) {
            expected.push_back(frames);
        }
    }
    const json scan = simulated("--scan");
    EXPECT_EQ(scan["sizes"], 4096);
    EXPECT_EQ(scan["neverUnderrun"], expected);
}

// The first processed block is the one that ends 6000 untouched sample frames.
TEST_F(SimulateTest, UnderrunsWhereACountingQueueDoes) {
    for (const int frames : {1, 77, 255, 300, 441, 480, 512, 700, 1920, 4094}) {
        const int first = (6000 + frames - 1) / frames - 1, lacking = short_block(frames);
        const double seconds =
            std::max(1.0, (first + 512.0 / std::gcd(frames, 512) + 2.0) * frames / 48000.0);
        const json result =
            simulated("--block " + std::to_string(frames) + " --seconds " + std::to_string(seconds));
        EXPECT_TRUE(result["blocksAsDocumented"]) << frames;
        ASSERT_EQ(result["underruns"], lacking < 0 ? 0 : 1) << frames;
        if (lacking >= 0) {
            EXPECT_EQ(result["blocks"][static_cast<size_t>(first + lacking)]["state"], "underrun") << frames;
        }
    }
}

// The loudspeaker's chain without width is loudest at its very delay; rooms and widening some samples behind it.
TEST_F(SimulateTest, ClicksComeOutWhereTheyAreExpected) {
    struct Case {
        const char* options;
        int delay, slack;
    };
    const Case cases[] = {{"--set DS_stereoWidth=0", 512, 0},
                          {"--set DS_stereoWidth=0 --block 480", 992, 0},
                          {"--block 512", 692, 10},
                          {"--block 300", 300 + 600 + 692, 10},
                          {"--route headphone --block 960", 960, 8},
                          {"--at 0 processing=off --block 441", 968, 0}};
    for (const auto& [options, delay, slack] : cases) {
        const json result = simulated(options);
        const int measured = result["measuredDelay"];
        EXPECT_EQ(result["expectedDelay"], delay) << options;
        EXPECT_GE(measured, delay) << options;
        EXPECT_LE(measured, delay + slack) << options;
    }
}

TEST_F(SimulateTest, HostsChangesShowWhenTheyHappen) {
    std::ofstream("day.txt") << "# a morning\n0.5 processing=off  # quiet\n1 processing=on;device=0x8\n\n"
                                "1.5 block=480,512\n2 block=1024;rate=44100\n";
    const json result = simulated("--schedule day.txt --seconds 3");
    EXPECT_TRUE(result["blocksAsDocumented"]);
    const auto state_at = [&](double seconds) {
        std::string state;
        for (const json& block : result["blocks"]) {
            state = block["seconds"] <= seconds ? block["state"].get<std::string>() : state;
        }
        return state;
    };
    EXPECT_EQ(state_at(0.05), "untouched");
    EXPECT_EQ(state_at(0.2), "fading in");
    EXPECT_EQ(state_at(0.4), "processed");
    EXPECT_EQ(state_at(0.55), "fading out");
    EXPECT_EQ(state_at(0.8), "dry");
    EXPECT_EQ(state_at(1.05), "untouched");
    EXPECT_EQ(state_at(1.45), "processed");
    EXPECT_EQ(state_at(1.99), "untouched");  // sizes that take turns never settle
    EXPECT_EQ(state_at(2.9), "processed");
    EXPECT_EQ(result["blocks"].back()["rate"], 44100);
    EXPECT_EQ(result["blocks"].back()["device"], 8);
}

TEST_F(SimulateTest, DrawsAndSaysWhatIsWrong) {
    EXPECT_EQ(shell("zoq simulate --block 441 --seconds 1 --plot day.svg").code, 0);
    EXPECT_NE(contents("day.svg").find("</svg>"), std::string::npos);
    std::ofstream("bad.txt") << "0.5 processing=off\nsoon block=3\n";
    const std::pair<const char*, const char*> wrong[] = {{"--at 1 block=0", "block"},
                                                         {"--at 1 block=480,x", "480,x"},
                                                         {"--at 1 device=0xG", "0xG"},
                                                         {"--at 1 rate=-1", "rate"},
                                                         {"--at 1 processing=perhaps", "perhaps"},
                                                         {"--at 1 DS_stereowidth=3", "DS_stereowidth"},
                                                         {"--at -1 volume=3", "time"},
                                                         {"--schedule bad.txt", "line 2"},
                                                         {"--plot day.txt", "day.txt"}};
    for (const auto& [options, word] : wrong) {
        const Outcome outcome = shell(std::string("zoq simulate --seconds 0.1 ") + options);
        EXPECT_EQ(outcome.code, 2) << options;
        EXPECT_NE(outcome.err.find(word), std::string::npos) << options << outcome.err;
    }
    EXPECT_EQ(shell("zoq simulate --schedule absent.txt").code, 1);
}

}  // namespace
