// The measuring program runs, measures all it says and keeps peers to their level; no time is looked at.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using nlohmann::json;

class SpeedTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = std::filesystem::temp_directory_path() / "zoq-speed-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string path(const std::string& name) const { return folder_ / name; }

    int run(const std::string& arguments) const {
        const std::string line = ZOQ_PROGRAM " " + arguments + " >" + path("out") + " 2>" + path("err");
        return WEXITSTATUS(std::system(line.c_str()));
    }

  private:
    std::filesystem::path folder_;
};

// What FFTW's plans are made of, by their own words: the library is one and would take the widest everywhere.
void expect_held(const json& sets) {
    const std::vector<std::vector<std::string>> allowed = {
        {""}, {"sse2", "neon"}, {"sse2", "avx", "avx2"}, {"avx", "avx2", "avx512"}};
    for (size_t i = 0; i < sets.size(); ++i) {
        EXPECT_NE(std::find(allowed[i].begin(), allowed[i].end(), sets[i]), allowed[i].end()) << i << sets;
    }
}

TEST_F(SpeedTest, MeasuresEveryPairAtEveryLevel) {
    ASSERT_EQ(run("--quick --json --picture " + path("modules.svg")), 0);
    const json all = json::parse(std::ifstream(path("out")), nullptr, false);
    const size_t levels = all["fftwSets"].size();
    ASSERT_GE(levels, 1u);
    expect_held(all["fftwSets"]);
    for (const json& row : all["comparisons"]) {
        size_t expected = levels - 1;
        if (row["against"] == "FFTW3f held to the same set") {
            for (size_t i = 1; i < levels; ++i) {
                expected -= all["fftwSets"][i] == all["fftwSets"][i - 1] ? 1 : 0;
            }
        }
        EXPECT_EQ(row["ratio"].size(), expected) << row;
        for (const auto& [level, ratio] : row["ratio"].items()) {
            EXPECT_GT(ratio.get<double>(), 0.0) << level << row;
        }
    }
    for (const char* name : {"den", "tws", "x2b", "geq", "vb", "eq", "drc", "transform", "FFTW3f"}) {
        EXPECT_EQ(all["microseconds"][name].size(), levels) << name;
    }
    std::string start;
    std::getline(std::ifstream(path("modules.svg")), start);
    EXPECT_TRUE(start.starts_with("<?xml")) << start;
}

TEST_F(SpeedTest, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(run("--fast"), 2);
    EXPECT_EQ(run("--turns 0"), 2);
    EXPECT_EQ(run("--quick --picture " + path("modules.jpg")), 2);
    EXPECT_EQ(run("--quick --picture " + path("nowhere/modules.svg")), 1);
}

}  // namespace
