// Heads from files that are wrong, and rooms for a head other than the one they were tuned with.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
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

TEST(LoadHead, SaysWhatIsWrongWithAFile) {
    EXPECT_TRUE(says(complaint([] { load_head("/nowhere/head.sofa"); }), "cannot read /nowhere/head.sofa"));
    EXPECT_TRUE(says(complaint([] { load_head(written("this is a text")); }), "not a SOFA file"));
    EXPECT_TRUE(says(complaint([] { load_head(written("")); }), "not a SOFA file"));
    std::string bytes = contents(kDefaultHeadFile);
    EXPECT_NE(complaint([&] { load_head(written(bytes.substr(0, bytes.size() / 2))); }), "");

    const std::string convention = "SimpleFreeFieldHRIR";
    const size_t at = bytes.find(convention);
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at, convention.size(), "SimpleFreeFieldXXIR");
    const std::string said = complaint([&] { load_head(written(bytes)); });
    EXPECT_TRUE(says(said, "SimpleFreeFieldXXIR") && says(said, convention)) << said;
}

// One wrong count in a small file, over which libmysofa reads for hours.
TEST(LoadHead, GivesUpOnAFileThatTakesForever) {
    std::string bytes = contents(ZOQ_SOURCE "/fuzz/seeds/head_file/no_responses");
    ASSERT_EQ(bytes.size(), 18348u);
    bytes[14390] = 3;
    EXPECT_TRUE(says(complaint([&] { load_head(written(bytes), 1); }), "comes to no end"));
}

TEST(RequireSound, SaysWhatIsWrongWithTheData) {
    const Head good = ball(48000.0);
    EXPECT_EQ(complaint([&] { require_sound(good); }), "");
    const auto broken = [&](auto&& breaking) {
        Head head = good;
        breaking(head);
        return complaint([&] { require_sound(head); });
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(
        says(broken([&](Head& head) { head.responses[7][1][3] = nan; }), "measurement 8 holds values"));
    EXPECT_TRUE(
        says(broken([&](Head& head) { head.directions[3].azimuth = nan; }), "measurement 4 has no finite"));
    EXPECT_TRUE(
        says(broken([](Head& head) { head.responses[2][0].assign(256, 0.0); }), "measurement 3 is silent"));
    EXPECT_TRUE(says(broken([](Head& head) { head.rateHz = 8000.0; }), "sampling rate"));
    EXPECT_TRUE(says(broken([&](Head& head) { head.rateHz = nan; }), "sampling rate"));
    EXPECT_TRUE(says(broken([](Head& head) { head.directions.clear(); }), "no measurements"));
    EXPECT_TRUE(says(broken([](Head& head) {
                         for (auto& ears : head.responses) {
                             std::swap(ears[0], ears[1]);
                         }
                     }),
                     "exchanged"));
}

TEST(Rooms, RefuseAHeadWithoutTheDirectionsTheyNeed) {
    EXPECT_TRUE(says(complaint([] { make_room_responses(ball(48000.0, 0.0)); }), "elevation -40"));
    Head head = ball(48000.0);
    for (Direction& direction : head.directions) {
        if (angle(direction, {60.0, 0.0}) < 20.0) {
            direction = {0.0, 0.0};
        }
    }
    EXPECT_TRUE(says(complaint([&] { make_room_responses(head); }), "azimuth 60, elevation 0"));
}

TEST(Rooms, MeetTheirPlansWithAnotherHeadAtAnyRate) {
    for (const double rateHz : {48000.0, 96000.0}) {
        const RoomResponses rooms = make_room_responses(ball(rateHz));
        for (int r = 0; r < android::kX2bResponses; ++r) {
            const ResponsePlan& plan = kResponsePlans[size_t(r)];
            const ResponseQuality quality = measure_response(rooms.tables(), r);
            EXPECT_EQ(quality.arrival, plan.arrivalTap) << rateHz << " " << r;
            for (size_t side = 0; side < 2; ++side) {
                EXPECT_NEAR(quality.bin0[side], plan.bin0[side], 1e-6) << rateHz << " " << r;
            }
            if (plan.energyRatio > 0.0) {
                EXPECT_NEAR(quality.energyRatio / plan.energyRatio, 1.0, 0.05) << rateHz << " " << r;
            }
            EXPECT_GT(quality.share[0][0], 0.95);
        }
        EXPECT_LT(measure_lateral(rooms.tables(), 0.7).colourationDb, 1.5) << rateHz;
    }
}
