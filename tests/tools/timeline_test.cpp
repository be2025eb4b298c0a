// zoq render --at and --level-match: settings that change while a file plays, and the fair comparison.
#include "tests/tools/command.h"

using namespace command;

namespace {

using TimelineTest = InEmptyFolder;

constexpr int kRate = 48000;

bool same_from(const Sound& a, const Sound& b, size_t first, size_t last, size_t shift = 0) {
    return std::equal(a.values.begin() + static_cast<ptrdiff_t>(2 * first),
                      a.values.begin() + static_cast<ptrdiff_t>(2 * last),
                      b.values.begin() + static_cast<ptrdiff_t>(2 * (first + shift)));
}

TEST_F(TimelineTest, SettingsChangeWhereTheInputIsThen) {
    const Sound input = tone(4 * kRate, 1000.0, 0.05);
    const Sound plain = rendered(input, "");
    for (const char* block : {"", "--block 480", "--block 4096"}) {
        const Sound changed = rendered(input, std::string("--at 2 'EQ_1khzgain=6;EQ_62hzgain=-3' ") + block);
        EXPECT_NEAR(level_db(changed, 0, 1000.0, 1.8), level_db(plain, 0, 1000.0, 1.8), 0.02) << block;
        EXPECT_NEAR(level_db(changed, 0, 1000.0, 2.3) - level_db(plain, 0, 1000.0, 2.3), 6.0, 0.3) << block;
    }
    // In order of time, whatever the order of the options; of two at one time the later word holds.
    const Sound twice = rendered(input, "--at 3 EQ_1khzgain=0 --at 1 EQ_1khzgain=-12 --at 1 EQ_1khzgain=6");
    EXPECT_NEAR(level_db(twice, 0, 1000.0, 2.0) - level_db(plain, 0, 1000.0, 2.0), 6.0, 0.3);
    EXPECT_NEAR(level_db(twice, 0, 1000.0, 3.5) - level_db(plain, 0, 1000.0, 3.5), 0.0, 0.02);
    // Nothing before its time, to the sample: the change comes with the block that holds it.
    EXPECT_TRUE(same_from(twice, plain, 0, kRate - 512 - 692));
    // Past the end nothing happens, and at 0 it is as if it had been set.
    EXPECT_TRUE(rendered(input, "--at 4.1 EQ_1khzgain=6") == plain);
    // Numbers are those that the engine reads.
    EXPECT_TRUE(rendered(input, "--set EQ_1khzgain=+6") == rendered(input, "--at 0 EQ_1khzgain=+6.0"));
}

TEST_F(TimelineTest, VolumeEventsAreTheHosts) {
    const Sound input = tone(4 * kRate, 1000.0, 0.05);
    // A fifth of the full gain, which is 18 dB up to the index 15 and 21 dB above it.
    const Sound louder = rendered(input, "--set CompressionGain=20 --volume 15 --at 2 volume=16");
    EXPECT_NEAR(level_db(louder, 0, 1000.0, 3.0) - level_db(louder, 0, 1000.0, 1.0), 0.2 * 3.0, 0.02);
}

TEST_F(TimelineTest, ProcessingSwitchFadesToTheInput) {
    const Sound input = noise(4 * kRate);
    const Sound off = rendered(input, "--at 1 processing=off --at 3 processing=on");
    // The fade takes 5120 frames at most; then the input comes through without the chain's delay.
    EXPECT_TRUE(same_from(off, input, kRate + 8192, 3 * kRate - 2048, 692));
    const Sound on = rendered(input, "");
    EXPECT_TRUE(same_from(off, on, 0, kRate - 512 - 692));
    EXPECT_FALSE(same_from(off, input, 3 * kRate + 8192, 4 * kRate - 692, 692));
}

TEST_F(TimelineTest, WrongEventsAreRefused) {
    write("in.wav", silence(kRate));
    expect_refusals("zoq render in.wav out.wav --at ", {{"1 EQ_1kgain=3", 2, "did you mean 'EQ_1khzgain'"},
                                                        {"1 EQ_1khzgain=loud", 2, "loud"},
                                                        {"1 EQ_1khzgain", 2, "EQ_1khzgain"},
                                                        {"1 route=radio", 2, "radio"},
                                                        {"1 volume=-2", 2, "-2"},
                                                        {"1 processing=maybe", 2, "maybe"},
                                                        {"-1 volume=3", 2, "time"},
                                                        {"nan volume=3", 2, "time"},
                                                        {"1", 2, "--at"}});
    EXPECT_FALSE(std::filesystem::exists("out.wav"));
}

TEST_F(TimelineTest, LevelMatchedInputIsAsLoudAsTheOutput) {
    write("in.wav", tone(10 * kRate, 997.0, 0.05));
    const auto report =
        json_of("zoq render in.wav out.wav --set CompressionGain=50 --level-match dry.wav --json");
    const Sound dry = read("dry.wav"), input = read("in.wav");
    ASSERT_EQ(dry.frames(), input.frames());
    // One gain for the whole file and nothing else.
    const double gain = level_db(dry, 0, 997.0, 1.0) - level_db(input, 0, 997.0, 1.0);
    EXPECT_NEAR(level_db(dry, 1, 997.0, 9.0) - level_db(input, 1, 997.0, 9.0), gain, 0.01);
    EXPECT_NEAR(
        gain,
        report["after"]["integratedLufs"].get<double>() - report["before"]["integratedLufs"].get<double>(),
        0.02);
    EXPECT_NEAR(report["levelMatch"]["gainDb"].get<double>(), gain, 0.02);
    const auto again = json_of("zoq render dry.wav again.wav --bypass --json");
    EXPECT_NEAR(again["before"]["integratedLufs"].get<double>(),
                report["after"]["integratedLufs"].get<double>(), 0.05);

    // What a phone's listener hears ends later, and so does the dry sound.
    ASSERT_EQ(render("in.wav out.wav --as-played --level-match dry.wav").code, 0);
    EXPECT_EQ(read("dry.wav").frames(), read("out.wav").frames());
    write("silent.wav", silence(kRate));
    EXPECT_NE(render("silent.wav out.wav --level-match dry.wav").err.find("no loudness to match"),
              std::string::npos);
}

// Peaks which the compressor takes down leave full scale in a quiet sound brought to the compressed one's loudness.
TEST_F(TimelineTest, LevelMatchedPeaksAreClippedAndTold) {
    Sound peaks = tone(10 * kRate, 997.0, 0.02);
    for (size_t i = 100; i < peaks.values.size(); i += 6000) {
        peaks.values[i] = i / 6000 % 2 == 0 ? int16_t{29000} : int16_t{-29000};
    }
    write("peaks.wav", peaks);
    const Outcome outcome =
        render("peaks.wav out.wav --set CompressionGain=100 --level-match dry.wav --json");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const auto match = nlohmann::json::parse(outcome.out)["levelMatch"];
    ASSERT_GT(match["gainDb"].get<double>(), 1.2);
    const Sound dry = read("dry.wav");
    int64_t clipped = 0;
    for (size_t i = 0; i < peaks.values.size(); ++i) {
        if (std::abs(peaks.values[i]) == 29000) {
            ASSERT_EQ(dry.values[i], peaks.values[i] > 0 ? 32767 : -32768);
            ++clipped;
        }
    }
    EXPECT_EQ(match["clippedSamples"].get<int64_t>(), clipped);
    EXPECT_NE(outcome.err.find(std::to_string(clipped) + " samples of it clip"), std::string::npos)
        << outcome.err;
}

TEST_F(TimelineTest, NoFileIsWrittenTwiceOrOverWhatIsRead) {
    write("in.wav", tone(kRate, 997.0, 0.05));
    const std::string input = contents("in.wav");
    std::filesystem::create_directory("folder");
    std::filesystem::create_directory_symlink("folder", "way");
    std::filesystem::create_symlink("old.wav", "link.wav");
    std::ofstream("old.wav") << "kept";
    std::ofstream("tuning.txt") << "VB_boostlin 3\n";
    const std::string here = std::filesystem::current_path().string();
    const std::pair<std::string, int> wrong[] = {
        {"out.wav --level-match out.wav", 2},
        {"out.wav --level-match ./out.wav", 2},
        {"out.wav --level-match " + here + "/out.wav", 2},
        {"folder/new.wav --level-match way/../folder/new.wav", 2},
        {"folder/new.wav --level-match way/new.wav", 2},
        {"old.wav --level-match link.wav", 2},
        {"out.wav --level-match dry.wav --curves ./dry.wav", 2},
        {"out.wav --curves ./out.wav", 2},
        {"- --curves -", 2},
        {"out.wav --curves way/../in.wav", 1},
        {"out.wav --level-match ./in.wav", 1},
        {"out.wav --config tuning.txt --curves ./tuning.txt", 2},
    };
    for (const auto& [arguments, code] : wrong) {
        const Outcome outcome = render("in.wav " + arguments);
        EXPECT_EQ(outcome.code, code) << arguments << outcome.err;
        EXPECT_FALSE(std::filesystem::exists("out.wav") || std::filesystem::exists("folder/new.wav"))
            << arguments;
    }
    EXPECT_EQ(contents("old.wav"), "kept");
    EXPECT_EQ(contents("in.wav"), input);
    EXPECT_EQ(shell("zoq render - out.wav --level-match dry.wav < in.wav").code, 2);
    EXPECT_EQ(render("in.wav folder/same.wav --level-match same.wav").code, 0);
    EXPECT_EQ(shell("zoq measure --what latency --csv a.svg --plot ./a.svg").code, 2);
}

// Behind a change of route the sound is early by what the two routes' delays differ, ahead of that, untouched, by all of
// the first one's.
TEST_F(TimelineTest, ARouteEventMovesTheSoundByTheDifferenceOfTheDelays) {
    Sound input = silence(4 * kRate);
    const size_t early = kRate, untouched = 2 * kRate + 4000, late = 3 * kRate + 4000;
    for (const size_t at : {early, untouched, late}) {
        input.values[2 * at] = input.values[2 * at + 1] = 16000;
    }
    // Narrow on both routes, so that the direct path is by far the loudest.
    const Sound moved = rendered(input, "--set 'DS_stereoWidth=1;HP_SurroundWidth=0' --at 2 route=headphone");
    EXPECT_EQ(loudest(moved, 0, early - 1000, early + 1000), int(early));
    EXPECT_EQ(loudest(moved, 0, untouched - 1000, untouched + 1000), int(untouched) - 692);
    EXPECT_EQ(loudest(moved, 0, late - 1000, late + 1000), int(late) - 180);
}

}  // namespace
