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
    std::ofstream("empty.wav").close();
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
        {"zoq render in.wav /proc/out.wav", "'/proc/out.wav': "},
        {"zoq render in.wav /dev/full.wav/out.wav", "'/dev/full.wav/out.wav': "},
        {"zoq render in.wav ./in.wav", "same file"},
        {"zoq render in.wav link.wav", "same file"},
        {"zoq render in.wav - >/dev/full", "standard output: No space left"},
        {"zoq render in.wav - >&-", "standard output: Bad file descriptor"},
        {"zoq render --help >/dev/full", "cannot write standard output"},
        {"ulimit -f 100; zoq render in.wav out.wav", "'out.wav': File too large"},
        {"ulimit -f 100; zoq render in.wav out.flac", "'out.flac': File too large"},
        {"ulimit -f 1; zoq render in.wav new.wav --curves out.wav", "File too large"},
        {"ulimit -f 1; zoq measure -q --what response --csv out.wav", "'out.wav': File too large"},
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

// While it writes, and while it waits for an input that ends at the same time. The shell's own words are not the
// program's.
TEST_F(RenderFailuresTest, InterruptedRenderingLeavesNothing) {
    write("long.wav", silence(48000 * 120));
    std::ofstream("program") << "echo $$ >pid; exec " ZOQ_PROGRAM " render \"$@\" 2>&3";
    std::ofstream("run") << "exec 3>&2 2>/dev/null; sh program \"$@\"; exit $?";
    for (const auto& [signal, code] :
         {std::pair("INT", 130), std::pair("TERM", 143), std::pair("HUP", 129)}) {
        const std::string stop = std::string("kill -s ") + signal + " $(cat pid); } & ";
        expect_failure(shell("{ until ls .zoq-* >ls.txt 2>&1; do sleep 0.01; done; " + stop +
                             "sh run long.wav out.wav --block 1"),
                       code, "interrupted");
        expect_failure(shell("rm -f fifo; mkfifo fifo; { exec 3>fifo; " + stop + "sh run fifo out.wav"), code,
                       "interrupted");
    }
}

std::string damaged(const std::string& path, size_t at, const std::string& bytes) {
    std::string file = contents(path);
    return file.replace(at, bytes.size(), bytes);
}

TEST_F(RenderFailuresTest, TruncatedCorruptAndMislabelledSound) {
    write("in.flac", noise(200000), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    write("in.aiff", noise(200000), SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
    const std::string wav = contents("in.wav"), flac = contents("in.flac"), aiff = contents("in.aiff");
    const struct {
        std::string name, bytes, message;
    } refused[] = {
        {"header.wav", wav.substr(0, 30), "as audio"},
        {"header.flac", flac.substr(0, 30), "as audio"},
        {"body.wav", wav.substr(0, 44), "holds no audio"},
        {"channels.wav", damaged("in.wav", 22, std::string(2, '\0')), "as audio: Channel count is zero"},
        {"rate.wav", damaged("in.wav", 24, std::string(4, '\0')), "as audio"},
        {"codec.wav", damaged("in.wav", 20, "\x55\x12"), "as audio"},
        {"half.flac", flac.substr(0, flac.size() / 2), "cannot decode 'half.flac'"},
        {"hit.flac", damaged("in.flac", flac.size() / 2, std::string(400, 'Z')), "cannot decode 'hit.flac'"},
        {"text.flac", "RIFF, but no more than the word", "as audio"},
    };
    for (const auto& [name, bytes, message] : refused) {
        std::ofstream(name) << bytes;
        expect_failure(render(name + " out.wav"), 1, message);
        expect_failure(shell("cat " + name + " | zoq render - out.flac"), 1,
                       message.substr(0, message.find('\'')));
        EXPECT_TRUE(contents(name) == bytes) << name;
    }

    const struct {
        std::string name, bytes, said;
        size_t frames;
    } played[] = {
        {"half.wav", wav.substr(0, 44 + 4 * 96000 + 3), "'half.wav' breaks off after 2.00 s of 4.17 s",
         96000},
        {"half.aiff", aiff.substr(0, aiff.size() - 4 * 104000),
         "'half.aiff' breaks off after 2.00 s of 4.17 s", 96000},
        {"piped.wav", damaged("in.wav", 40, "\xff\xff\xff\xff"), "", 200000},
        {"flac.wav", flac, "", 200000},
        {"wav.flac", wav, "", 200000},
    };
    for (const auto& [name, bytes, said, frames] : played) {
        std::ofstream(name) << bytes;
        const Outcome outcome = render(name + " new.wav");
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.err, said.empty() ? "" : "zoq: " + said + "\n");
        EXPECT_EQ(read("new.wav").frames(), frames) << name;
    }
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
