// The measured head, and heads that cannot be used. Those that files can hold are in the test of the tables command.
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <sstream>

#include "tables/head_file.h"
#include "tables/room_responses.h"
#include "tests/support/ball_head.h"

using namespace zoq::tables;

namespace {

// Runs f and returns what it complained of.
template <typename Action>
std::string complaint(Action f) {
    try {
        f();
    } catch (const HeadError& error) {
        return error.what();
    }
    return "";
}

std::string written(const std::string& bytes) {
    const std::string path = testing::TempDir() + "zoq_head_test.sofa";
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

std::string contents(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

bool says(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST(LoadHead, ReadsTheMeasuredHead) {
    const Head head = load_head(kDefaultHeadFile);
    EXPECT_EQ(head.rateHz, 44100.0);
    EXPECT_EQ(head.directions.size(), 710u);
    // Straight left, the near ear is louder and 0.6 to 0.8 ms earlier.
    const size_t left = nearest(head, {90.0, 0.0});
    EXPECT_LT(angle(head.directions[left], {90.0, 0.0}), 1.0);
    EXPECT_GT(energy(head.responses[left][kLeftEar]), 10.0 * energy(head.responses[left][kRightEar]));
    EXPECT_NEAR(interaural(head, {90.0, 0.0}).delaySamples / 48.0, 0.75, 0.12);
}

// One wrong count in a small file, over which libmysofa reads for hours.
TEST(LoadHead, GivesUpOnAFileThatTakesForever) {
    std::string bytes = contents(ZOQ_SOURCE "/fuzz/seeds/head_file/no_responses");
    ASSERT_EQ(bytes.size(), 18348u);
    bytes[14390] = 3;
    EXPECT_TRUE(says(complaint([&] { load_head(written(bytes), 1); }), "comes to no end"));
}

// What no file brings so far: its reader looks at it first.
TEST(RequireSound, RefusesMeasurementsWithoutDirections) {
    Head head = ball(48000.0);
    EXPECT_EQ(complaint([&] { require_sound(head); }), "");
    head.directions[3].azimuth = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(says(complaint([&] { require_sound(head); }), "measurement 4 has no finite"));
    head.directions.clear();
    EXPECT_TRUE(says(complaint([&] { require_sound(head); }), "no measurements"));
}

TEST(Rooms, RefuseAHeadWithoutTheDirectionsTheyNeed) {
    Head head = ball(48000.0);
    for (Direction& direction : head.directions) {
        if (angle(direction, {60.0, 0.0}) < 20.0) {
            direction = {0.0, 0.0};
        }
    }
    EXPECT_TRUE(says(complaint([&] { make_room_responses(head); }), "azimuth 60, elevation 0"));
}
