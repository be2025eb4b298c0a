// zoq when something is wrong: one clear line, the exit code, no half-written file, the old file untouched.
#include "tests/tools/command.h"

using namespace command;

namespace {

class RenderFailuresTest : public InEmptyFolder {
  protected:
    void SetUp() override {
        InEmptyFolder::SetUp();
        write("in.wav", noise(200000));
        std::ofstream("out.wav") << "kept";
        std::ofstream("out.flac") << "kept";
    }

    static void expect_nothing_written() {
        EXPECT_EQ(contents("out.wav"), "kept");
        EXPECT_EQ(contents("out.flac"), "kept");
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            EXPECT_NE(entry.path().filename().string().substr(0, 4), ".zoq") << entry.path();
        }
    }

    static void expect_failure(const Outcome& outcome, int code, const std::string& message) {
        EXPECT_EQ(outcome.code, code) << message;
        EXPECT_EQ(outcome.err.substr(0, 5), "zoq: ");
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
        EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err << "instead of: " << message;
        expect_nothing_written();
    }
};

TEST_F(RenderFailuresTest, WrongCommandLines) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "subcommand is required"},
        {"play in.wav", "unknown command 'play'"},
        {"render", "INPUT is required"},
        {"render in.wav", "OUTPUT is required"},
        {"render in.wav out.wav third", "third"},
        {"render in.wav out.wav --loud", "--loud"},
        {"render in.wav out.wav --route moon", "moon"},
        {"render in.wav out.wav --block 0", "1 to 18432"},
        {"render in.wav out.wav --block 18433", "1 to 18432"},
        {"render in.wav out.wav --volume -1", "--volume"},
        {"render in.wav out.wav --volume loud", "--volume"},
        {"render in.wav out.wav --report --json", "excludes"},
        {"render in.wav out.wav --set DS_stereowidth=5",
         "unknown setting 'DS_stereowidth', did you mean 'DS_stereoWidth'?"},
        {"render in.wav out.wav --set HIFIPARA=1", "unknown setting 'HIFIPARA'"},
        {"render in.wav out.wav --set DS_stereoWidth", "value of 'DS_stereoWidth' must be a number"},
        {"render in.wav out.wav --set DS_stereoWidth=wide", "must be a number"},
        {"render in.wav out.mp3", "must end in .wav or .flac"},
        {"render in.wav out", "must end in .wav or .flac"},
    };
    for (const auto& [arguments, message] : cases) {
        expect_failure(shell(std::string("zoq ") + arguments), 2, message);
    }
}

TEST_F(RenderFailuresTest, FilesThatCannotBeRead) {
    std::ofstream("empty.wav");
    std::ofstream("text.wav") << "This is no sound at all, and it is long enough to look at.";
    write("nothing.wav", silence(0));
    write("nine.wav", silence(100, 9));
    std::filesystem::create_directory("folder");
    const std::pair<const char*, const char*> cases[] = {
        {"render missing.wav out.wav", "'missing.wav': No such file"},
        {"render folder out.wav", "'folder': Is a directory"},
        {"render empty.wav out.wav", "'empty.wav': it is empty"},
        {"render text.wav out.wav", "'text.wav' as audio"},
        {"render nothing.wav out.wav", "'nothing.wav': it holds no audio"},
        {"render nine.wav out.wav", "has 9 channels"},
        {"render - out.wav </dev/null", "standard input: it is empty"},
        {"render - out.wav <&-", "standard input: Bad file descriptor"},
    };
    for (const auto& [arguments, message] : cases) {
        expect_failure(shell(std::string("zoq ") + arguments), 1, message);
    }
}

TEST_F(RenderFailuresTest, FilesThatCannotBeWritten) {
    std::filesystem::create_directory("folder.wav");
    std::filesystem::create_symlink("in.wav", "link.wav");
    const std::string original = contents("in.wav");
    const std::pair<const char*, const char*> cases[] = {
        {"zoq render in.wav nowhere/out.wav", "'nowhere/out.wav': No such file"},
        {"zoq render in.wav folder.wav", "'folder.wav': Is a directory"},
        {"zoq render in.wav ./in.wav", "same file"},
        {"zoq render in.wav link.wav", "same file"},
        {"zoq render in.wav - >/dev/full", "standard output: No space left"},
        {"zoq render in.wav - >&-", "standard output: Bad file descriptor"},
        {"zoq render --help >/dev/full", "cannot write standard output"},
        {"ulimit -f 100; zoq render in.wav out.wav", "'out.wav': File too large"},
        {"ulimit -f 100; zoq render in.wav out.flac", "'out.flac': File too large"},
    };
    for (const auto& [line, message] : cases) {
        expect_failure(shell(line), 1, message);
    }
    EXPECT_EQ(contents("in.wav"), original);

    const Outcome closed = shell("{ zoq render in.wav -; echo $? >code.txt; } | head -c 10");
    EXPECT_EQ(contents("code.txt"), "1\n");
    EXPECT_EQ(closed.err, "zoq: cannot write standard output: Broken pipe\n");
}

TEST_F(RenderFailuresTest, ReportThatCannotBePrintedFailsWithTheSoundInPlace) {
    for (const char* target : {">/dev/full", ">&-"}) {
        const Outcome outcome = render(std::string("in.wav new.wav --report ") + target);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.err.find("cannot write the report"), std::string::npos);
        EXPECT_EQ(read("new.wav").frames(), 200000u);
    }
}

TEST_F(RenderFailuresTest, MessagesNeverLandInTheSound) {
    write("mono.wav", noise(50000, 1));
    ASSERT_EQ(render("mono.wav new.wav").code, 0);
    ASSERT_EQ(render("mono.wav closed.wav <&- 2>&-").code, 0);
    EXPECT_TRUE(contents("closed.wav") == contents("new.wav"));
}

TEST_F(RenderFailuresTest, InterruptedRenderingLeavesNothing) {
    write("long.wav", silence(48000 * 120));
    for (const auto& [signal, code] :
         {std::pair("INT", 130), std::pair("TERM", 143), std::pair("HUP", 129)}) {
        const std::string stop = std::string("timeout --preserve-status -s ") + signal + " 0.5 " ZOQ_PROGRAM;
        expect_failure(shell(stop + " render long.wav out.wav --block 1"), code, "interrupted");
        expect_failure(shell("sleep 1 | " + stop + " render - out.wav"), code, "interrupted");
    }
}

TEST_F(RenderFailuresTest, BrokenOffFilesAreNamed) {
    write("in.flac", noise(200000), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    std::filesystem::resize_file("in.flac", std::filesystem::file_size("in.flac") / 2);
    const Outcome outcome = render("in.flac new.wav");
    EXPECT_TRUE(outcome.code == 1 ? outcome.err.find("cannot decode 'in.flac'") != std::string::npos
                                  : outcome.err.find("'in.flac' breaks off after") != std::string::npos)
        << outcome.err;
}

TEST_F(RenderFailuresTest, ReplacesAFileThroughALinkAndKeepsItsMode) {
    std::filesystem::permissions("out.wav", std::filesystem::perms(0640));
    std::filesystem::create_symlink("out.wav", "link.wav");
    ASSERT_EQ(render("in.wav link.wav").code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink("link.wav"));
    EXPECT_EQ(read("out.wav").frames(), 200000u);
    EXPECT_EQ(std::filesystem::status("out.wav").permissions(), std::filesystem::perms(0640));
}

TEST_F(RenderFailuresTest, HelpAndVersionSayWhatThereIs) {
    EXPECT_EQ(shell("zoq --version").out.substr(0, 4), "zoq ");
    const Outcome general = shell("zoq --help");
    EXPECT_EQ(general.code, 0);
    EXPECT_NE(general.out.find("render"), std::string::npos);
    const Outcome help = render("--help");
    EXPECT_EQ(help.code, 0);
    for (const char* word :
         {"zoq render", "--route", "--volume", "--block", "--bypass", "--as-played", "Exit code"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
}

}  // namespace
