// zoq render --at and --level-match: settings that change while a file plays, and the fair comparison.
#include <nlohmann/json.hpp>

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
}

TEST_F(TimelineTest, VolumeAndDeviceEventsAreTheHosts) {
    const Sound input = tone(4 * kRate, 1000.0, 0.05);
    // A fifth of the full gain, which is 18 dB up to the index 15 and 21 dB above it.
    const Sound louder = rendered(input, "--set CompressionGain=20 --volume 15 --at 2 volume=16");
    EXPECT_NEAR(level_db(louder, 0, 1000.0, 3.0) - level_db(louder, 0, 1000.0, 1.0), 0.2 * 3.0, 0.02);

    // A new output class: 6000 sample frames untouched, from the first block on that begins at or after the event; the
    // 692 frames of delay taken off at the start stay taken off.
    const Sound moved = rendered(noise(4 * kRate), "--at 2 route=headphone");
    const Sound stays = rendered(noise(4 * kRate), "");
    const size_t event = (2 * kRate + 511) / 512 * 512 - 692;
    EXPECT_TRUE(same_from(moved, stays, 0, event - 512));
    bool untouched = false;
    for (size_t first = event - 512; first <= event + 512; ++first) {
        untouched = untouched || same_from(moved, noise(4 * kRate), first, first + 5000, 692);
    }
    EXPECT_TRUE(untouched);
    // Far behind it is the headphone route's sound, half as loud again as the loudspeaker's halved one.
    const Sound head = rendered(input, "--at 1 route=headphone");
    const Sound speaker = rendered(input, "");
    EXPECT_GT(level_db(head, 0, 1000.0, 3.0) - level_db(speaker, 0, 1000.0, 3.0), 4.0);
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
    const std::pair<const char*, const char*> wrong[] = {
        {"--at 1 EQ_1kgain=3", "EQ_1kgain"},   {"--at 1 EQ_1khzgain=loud", "loud"},
        {"--at 1 EQ_1khzgain", "EQ_1khzgain"}, {"--at -1 EQ_1khzgain=3", "time"},
        {"--at 1 route=radio", "radio"},       {"--at 1 volume=-2", "-2"},
        {"--at nan volume=3", "time"},         {"--at 1", "--at"},
        {"--at 1 processing=maybe", "maybe"},
    };
    for (const auto& [options, word] : wrong) {
        const Outcome outcome = render(std::string("in.wav out.wav ") + options);
        EXPECT_EQ(outcome.code, 2) << options;
        EXPECT_NE(outcome.err.find(word), std::string::npos) << options << ": " << outcome.err;
        EXPECT_FALSE(std::filesystem::exists("out.wav")) << options;
    }
}

TEST_F(TimelineTest, LevelMatchedInputIsAsLoudAsTheOutput) {
    write("in.wav", tone(10 * kRate, 997.0, 0.05));
    const Outcome outcome = render("in.wav out.wav --set CompressionGain=50 --level-match dry.wav --json");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const auto report = nlohmann::json::parse(outcome.out);
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
    const auto again = nlohmann::json::parse(render("dry.wav again.wav --bypass --json").out);
    EXPECT_NEAR(again["before"]["integratedLufs"].get<double>(),
                report["after"]["integratedLufs"].get<double>(), 0.05);

    // A gain that does not fit is told, and the sound is clipped, never wrapped.
    write("loud.wav", tone(4 * kRate, 997.0, 0.9));
    const Outcome clipping = render(
        "loud.wav out.wav --route headphone --set 'Headphone_EQ_1khzgain=12;Headphone_CompressionGain=100' "
        "--level-match dry.wav");
    ASSERT_EQ(clipping.code, 0) << clipping.err;
    const Sound clipped = read("dry.wav");
    EXPECT_EQ(clipping.err.find("clip at that level") != std::string::npos,
              *std::max_element(clipped.values.begin(), clipped.values.end()) == 32767)
        << clipping.err;
    EXPECT_EQ(render("in.wav out.wav --level-match in.wav").code, 1);
    EXPECT_EQ(render("in.wav out.wav --level-match out.wav").code, 2);
    EXPECT_EQ(shell("zoq render - out.wav --level-match dry.wav < in.wav").code, 2);
    EXPECT_EQ(read("in.wav").frames(), input.frames());
}

}  // namespace
