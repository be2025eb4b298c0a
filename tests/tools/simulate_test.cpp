// zoq simulate: what it shows of block sizes, changes and fades, held against what is known of the driver.
#include <algorithm>
#include <cstring>
#include <numeric>

#include "tests/tools/command.h"

using namespace command;
using nlohmann::json;

namespace {

using SimulateTest = InEmptyFolder;

json simulated(const std::string& arguments) {
    return json_of("zoq simulate --json " + arguments);
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
    const struct {
        const char* options;
        int delay, slack;
    } cases[] = {{"--set DS_stereoWidth=0", 512, 0},
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

// The 4096 values of zeros stand for 2048 sample frames, whatever the queue held; the stream does not settle anew, unless
// its rate is one that an initialisation forgets. One amid the settling does not lengthen it.
TEST_F(SimulateTest, InitialisationsRestartTheQueueOfARunningStream) {
    for (const auto& [frames, before] : {std::pair(512, 0), {480, 480}, {441, 968}, {1920, 384}}) {
        const json result = simulated("--at 0 processing=off --at 1 'init;volume=3' --at 1.5 init --block " +
                                      std::to_string(frames));
        EXPECT_TRUE(result["blocksAsDocumented"]) << frames;
        EXPECT_EQ(result["measuredDelay"], 2048) << frames;
        for (const json& block : result["blocks"]) {
            const double seconds = block["seconds"];
            if (seconds > 0.5) {
                EXPECT_EQ(block["state"], "dry") << frames;
                EXPECT_EQ(block["delay"]["total"], seconds < 1.0 ? before : 2048) << frames << ' ' << seconds;
                EXPECT_EQ(block["volume"], seconds < 1.0 || seconds >= 1.5 ? 15 : 3)
                    << frames << ' ' << seconds;
            }
        }
    }
    EXPECT_EQ(simulated("--at 1 init --set DS_stereoWidth=0")["expectedDelay"], 2048 + 512 + 180);
    const auto untouched = [](const std::string& events) {
        const json result = simulated("--at 0 rate=96000 " + events);
        EXPECT_TRUE(result["blocksAsDocumented"]) << events;
        const json& blocks = result["blocks"];
        return std::count_if(blocks.begin(), blocks.end(),
                             [](const json& block) { return block["state"] == "untouched"; });
    };
    EXPECT_EQ(untouched(""), 6000 / 512);
    EXPECT_EQ(untouched("--at 1 init"), 2 * (6000 / 512));
    EXPECT_EQ(untouched("--at 1 rate=44100 --at 1.05 init"), 2 * (6000 / 512));
}

TEST_F(SimulateTest, EventsShowInTextAndPictureWithTheCompressionThatHolds) {
    std::ofstream("zoq.txt") << "volume_index_switch=20\n";
    const std::string options =
        "--config zoq.txt --seconds 2.5 --at 0.5 volume=16 --at 0.75 volume=21 --at 1 DS_stereoWidth=30 "
        "--at 1.5 route=headphone --at 1.75 'route=speaker;init' --at 2 volume=17 --at 9 volume=1";
    const Outcome outcome = shell("zoq simulate --plot day.svg " + options);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const std::pair<const char*, int> events[] = {
        {"volume=16", 18},       {"volume=21", 21}, {"DS_stereoWidth=30", 21},
        {"route=headphone", 20}, {"init", 18},      {"volume=17", 21}};
    const std::string picture = contents("day.svg");
    EXPECT_NE(picture.find("</svg>"), std::string::npos);
    for (const auto& [words, decibels] : events) {
        EXPECT_NE(picture.find(words), std::string::npos) << words;
        const size_t event = outcome.out.find(std::string("host: ") + words + "\n");
        ASSERT_NE(event, std::string::npos) << words << outcome.out;
        std::istringstream below(outcome.out.substr(event));
        std::string line;
        std::getline(below, line);
        std::getline(below, line);
        EXPECT_TRUE(line.ends_with(" " + std::to_string(decibels))) << words << '\n' << line;
    }
    EXPECT_EQ(picture.find("volume=1<"), std::string::npos);
    EXPECT_NE(outcome.out.find("events behind the end: 1\n"), std::string::npos);
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

TEST_F(SimulateTest, DrawsAndSaysWhatIsWrong) {
    std::ofstream("bad.txt") << "0.5 processing=off\nsoon block=3\n";
    std::ofstream("value.txt") << "# a\n\n1 block=3;volume=\n";
    std::ofstream("time.txt") << "1 block=3\n-1 volume=3\n";
    std::ofstream("key.txt") << "1 blok=3\n";
    expect_refusals("zoq simulate --seconds 0.1 ",
                    {{"--at 1 block=0", 2, "block"},
                     {"--at 1 block=480,x", 2, "480,x"},
                     {"--at 1 device=0xG", 2, "0xG"},
                     {"--at 1 rate=-1", 2, "rate"},
                     {"--at 1 processing=perhaps", 2, "perhaps"},
                     {"--at 1 DS_stereowidth=3", 2, "DS_stereowidth"},
                     {"--at -1 volume=3", 2, "time"},
                     {"--at 1 HIFIPARA=on", 2, "processing=on"},
                     {"--at 1 init=3", 2, "init"},
                     {"--schedule bad.txt", 2, "line 2"},
                     {"--schedule value.txt", 2, "'value.txt', line 3"},
                     {"--schedule time.txt", 2, "'time.txt', line 2"},
                     {"--schedule key.txt", 2, "line 1: unknown setting 'blok', did you mean 'block'"},
                     {"--schedule absent.txt", 1, "absent.txt"},
                     {"--set bogus=1", 2, "unknown setting 'bogus' ("},
                     {"--scan", 2, "--scan"},
                     {"--plot day.txt", 2, "day.txt"}});
    expect_refusals("zoq simulate --scan ", {{"--block 3", 2, "--block"},
                                             {"--plot a.svg", 2, "--plot"},
                                             {"--at 1 init", 2, "--at"},
                                             {"--set VB_boostlin=1", 2, "--set"}});
}

TEST_F(SimulateTest, NoOptionOfAnyCommandTakesANumberThatIsNone) {
    std::ofstream("eq.txt") << "GraphicEQ: 100 0; 1000 3\n";
    for (const char* command :
         {"simulate --plot a.svg --seconds", "simulate --at 1 DS_stereoWidth=",
          "measure --what latency --level", "measure --what latency --tone", "measure --what latency --bass",
          "measure --what latency --step -30", "config write --eq eq.txt --limit",
          "config write --eq eq.txt --eq-lowest", "config write --eq eq.txt --eq-highest",
          "simulate --volume", "simulate --block"}) {
        const std::string start =
            std::string("zoq ") + command + (*(command + std::strlen(command) - 1) == '=' ? "" : " ");
        for (const char* value : {"nan", "-NAN", "inf", "1e999"}) {
            EXPECT_EQ(shell(start + value).code, 2) << start << value;
        }
    }
}

}  // namespace
