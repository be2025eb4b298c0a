// zoq tables import: other heads, right and wrong.
#include <sys/stat.h>

#include <functional>
#include <limits>

#include "tables/generated_file.h"
#include "tables/head_file.h"
#include "tests/support/ball_head.h"
#include "tests/support/sofa_file.h"
#include "tests/tools/command.h"

using namespace command;

namespace {

Outcome import(const std::string& arguments) {
    return shell("zoq tables import " + arguments);
}

class TablesImportTest : public InEmptyFolder {
  protected:
    // A good head with one fault.
    static void write_head(const std::string& path, const std::function<void(sofa::Content&)>& spoil = {}) {
        sofa::Content content;
        content.head = ball(48000.0);
        if (spoil) {
            spoil(content);
        }
        sofa::write(path, content);
    }
};

TEST_F(TablesImportTest, MakesTheCommittedResponsesFromTheHeadTheyCameFrom) {
    for (const char* name : {"MIT_KEMAR_normal_pinna.sofa", "default.sofa"}) {
        const Outcome outcome = import("/usr/share/libmysofa/" + std::string(name));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "zoq: wrote './x2b_tables.cpp'\n");
        EXPECT_NE(outcome.out.find(" passed, 0 failed, 0 not compared\n"), std::string::npos);
        const std::string committed = contents(std::string(ZOQ_SOURCE) + "/modules/x2b/x2b_tables.cpp");
        const std::string made = contents("x2b_tables.cpp"), data = made.substr(made.find("#include"));
        EXPECT_EQ(zoq::tables::difference(committed, {"", data, {1, 0x1p-24}}), "");
        for (const char* credit : {name, "Gardner", "provided the authors"}) {
            EXPECT_NE(contents("x2b_tables.cpp").find(credit), std::string::npos) << credit;
        }
    }
}

TEST_F(TablesImportTest, TakesAnotherHeadAtOtherRates) {
    for (const double rateHz : {44100.0, 48000.0, 96000.0}) {
        write_head("ball.sofa", [&](sofa::Content& content) { content.head = ball(rateHz); });
        std::filesystem::create_directory("out");
        EXPECT_EQ(json_of("zoq tables import ball.sofa --json --output out")["failed"], 0) << rateHz;
        EXPECT_NE(contents("out/x2b_tables.cpp").find("Title: a ball"), std::string::npos);
    }
    write_head("ball.sofa");
    EXPECT_EQ(import("ball.sofa --output new.cpp").code, 0);
    EXPECT_FALSE(contents("new.cpp").empty());
    EXPECT_EQ(import("ball.sofa --check").code, 0);
    EXPECT_FALSE(std::filesystem::exists("x2b_tables.cpp"));
}

TEST_F(TablesImportTest, KeepsWhatAFileSaysInsideComments) {
    write_head("x", [](sofa::Content& content) {
        content.title = "good\nint injected = 1;\\";
        content.comment = std::string(900, 'c') + ", the licence";
    });
    std::filesystem::rename("x", "x\\");
    ASSERT_EQ(import("'x\\' --output new.cpp").code, 0);
    std::istringstream lines(contents("new.cpp"));
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.find("injected") == std::string::npos || line.compare(0, 2, "//") == 0) << line;
        EXPECT_TRUE(line.empty() || line.back() != '\\') << line;
    }
    EXPECT_NE(contents("new.cpp").find("ccc, the licence\n"), std::string::npos);
}

TEST_F(TablesImportTest, SaysWhatIsWrongWithAHead) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto shortened = [](sofa::Content& content, size_t samples) {
        for (auto& ears : content.head.responses) {
            ears[0].resize(samples);
            ears[1].resize(samples);
        }
    };
    const std::pair<std::function<void(sofa::Content&)>, std::vector<std::string>> cases[] = {
        {[](auto& c) { c.convention = "SingleRoomDRIR"; }, {"'SingleRoomDRIR'", "SimpleFreeFieldHRIR"}},
        {[](auto& c) { c.dataType = "TF"; }, {"'TF'", "FIR"}},
        {[](auto& c) { c.receivers = 1; }, {"1 receivers", "two ears"}},
        {[](auto& c) { c.receivers = 4; }, {"4 receivers", "two ears"}},
        {[](auto& c) { c.without = "Data.IR"; }, {"bad.sofa"}},
        {[](auto& c) { c.without = "SourcePosition"; }, {"bad.sofa"}},
        {[](auto& c) { c.without = "Data.SamplingRate"; }, {"bad.sofa", "sampling rate"}},
        {[](auto& c) { c.head.rateHz = 8000.0; }, {"8000 Hz", "32000 to 192000"}},
        {[](auto& c) { c.head.rateHz = 200000.0; }, {"200000 Hz", "32000 to 192000"}},
        {[&](auto& c) { c.head.rateHz = nan; }, {"sampling rate", "32000 to 192000"}},
        {[&](auto& c) { c.head.responses[7][1][3] = nan; }, {"measurement 8", "not finite"}},
        {[&](auto& c) { c.head.directions[3].azimuth = nan; }, {"measurement 4", "not finite"}},
        {[](auto& c) { c.head.directions[4].elevation = 91.0; }, {"measurement 5", "elevation 91"}},
        {[](auto& c) { c.head.directions[5].azimuth = -3600.0; }, {"measurement 6", "azimuth -3600"}},
        {[](auto& c) { c.positionType = "polar"; }, {"'polar'", "spherical and cartesian"}},
        {[](auto& c) { c.positionUnits = "radian, radian, metre"; }, {"'radian, radian, metre'", "degrees"}},
        {[](auto& c) {
             c.positionType = "cartesian";
             c.head.directions[8] = {std::numeric_limits<double>::infinity(), 0.0};
         },
         {"measurement 9", "not finite"}},
        {[](auto& c) {
             c.view = {0, 1, 0};
         },
         {"ListenerView", "look along x"}},
        {[](auto& c) { c.head.responses[2][0].assign(256, 0.0); }, {"measurement 3 is silent"}},
        {[&](auto& c) { shortened(c, 64); }, {"64 samples at 48000 Hz", "2 ms"}},
        {[](auto& c) { c.head = ball(48000.0, 0.0); },
         {"azimuth 90, elevation -40", "30 degrees off", "nearest is 40 off at azimuth 90, elevation 0"}},
        {[](auto& c) {
             for (auto& ears : c.head.responses) {
                 std::swap(ears[0], ears[1]);
             }
         },
         {"ears are exchanged"}},
    };
    for (const auto& [spoil, messages] : cases) {
        write_head("bad.sofa", spoil);
        const Outcome outcome = import("bad.sofa");
        EXPECT_EQ(outcome.code, 1) << messages[0];
        EXPECT_EQ(outcome.err.substr(0, 5), "zoq: ");
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
        for (const std::string& message : messages) {
            EXPECT_NE(outcome.err.find(message), std::string::npos)
                << outcome.err << "instead of: " << message;
        }
        EXPECT_FALSE(std::filesystem::exists("x2b_tables.cpp"));
    }
}

TEST_F(TablesImportTest, SaysWhatIsWrongWithAFile) {
    const std::string good = contents(zoq::tables::kDefaultHeadFile);
    std::ofstream("text.sofa") << "This is no head at all.";
    std::ofstream("empty.sofa").close();
    std::ofstream("start.sofa") << good.substr(0, 8);
    std::ofstream("half.sofa") << good.substr(0, good.size() / 2);
    std::filesystem::create_directory("folder");
    write_head("good.sofa");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    expect_refusals("zoq tables ",
                    {{"import missing.sofa", 1, "cannot read missing.sofa"},
                     {"import folder", 1, "folder is a folder"},
                     {"import /dev/null", 1, "not a regular file"},
                     {"import pipe", 1, "not a regular file"},
                     {"import text.sofa", 1, "not a SOFA file"},
                     {"import empty.sofa", 1, "not a SOFA file"},
                     {"import start.sofa", 1, "damaged"},
                     {"import half.sofa", 1, "damaged"},
                     {"import good.sofa --output nowhere/new.cpp", 1, "'nowhere/new.cpp': No such file"},
                     {"import good.sofa --output ./good.sofa", 2, "same file"},
                     {"import good.sofa --check --output new.cpp", 2, "--check"},
                     {"import", 2, "required"},
                     {"--json import good.sofa", 2, "stands ahead of import"},
                     {"--plot x.svg import good.sofa", 2, "stands ahead of import"},
                     {"--head good.sofa import good.sofa", 2, "stands ahead of import"}});
    EXPECT_FALSE(std::filesystem::exists("x2b_tables.cpp"));
}

// What a bad disk or a bad download leaves: never a crash, never a half-written file.
TEST_F(TablesImportTest, SurvivesDamagedBytes) {
    const std::string good = contents(zoq::tables::kDefaultHeadFile);
    std::minstd_rand random(3);
    for (int i = 0; i < 25; ++i) {
        std::string bad = good;
        for (int n = 0; n < 4; ++n) {
            bad[random() % (i % 2 == 0 ? 4000 : bad.size())] = static_cast<char>(random() >> 8);
        }
        std::ofstream("bad.sofa", std::ios::binary) << bad;
        const Outcome outcome = import("bad.sofa --check");
        EXPECT_LE(outcome.code, 1) << i;
        EXPECT_LE(outcome.err.size(), 1000u) << i;
    }
}

}  // namespace
