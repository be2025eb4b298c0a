// The check against the engine on generated texts, every diagnostic, and the corrected texts.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/tools/settings_probe.h"
#include "tools/zoq/tuning/config_check.h"
#include "tools/zoq/tuning/config_fix.h"
#include "tools/zoq/tuning/reports.h"

namespace zoq {
namespace {

constexpr size_t kLimit = android::kConfigurationMaxBytes;

std::string tidy_file(TextMaker& make) {
    static constexpr const char* kBetween[] = {" = ", "=", " ", ",", "\n", "\t", " { "};
    static constexpr const char* kBehind[] = {"\n", "\r\n", ";", " ] "};
    std::string text;
    for (int row = 2; row < android::kSettings; ++row) {
        if (make.below(2) == 0) {
            text += android::settings()[row].fileKey + make.one_of(kBetween) + make.tidy_number(row);
            text += make.one_of(kBehind);
        }
    }
    return text;
}

std::string sloppy_file(TextMaker& make) {
    static constexpr const char* kBetween[] = {" = ", "=", ": ", " : ", " ", ",", "\n", ""};
    static constexpr const char* kBehind[] = {"\n", "\n",    ";",          " ",      "\n\n",
                                              "",   " dB\n", " # tuned\n", " /* */ "};
    static constexpr const char* kLines[] = {"# loud\n", "// ", "/*\n", "*/\n", "[speaker]\n",
                                             "{",        "}",   "; ",   "#"};
    std::string text;
    for (size_t n = make.below(20); n > 0; --n) {
        text += make.below(6) == 0 ? make.one_of(kLines) : "";
        text += make.any_key(false, true) + make.one_of(kBetween) + make.any_value() + make.one_of(kBehind);
    }
    return text;
}

std::string hostile_file(TextMaker& make) {
    std::string text = make.noise(make.below(400)) + sloppy_file(make);
    if (make.below(3) == 0) {
        text.insert(make.below(text.size() + 1), 1, '\0');
    }
    if (make.below(100) == 0) {  // something stands across the limit
        text.insert(make.below(text.size() + 1), kLimit - make.below(text.size() + 40), ' ');
    }
    return text;
}

std::string any_file(TextMaker& make) {
    switch (make.below(4)) {
        case 0:
            return tidy_file(make);
        case 1:
            return hostile_file(make);
        default:
            return sloppy_file(make);
    }
}

std::string any_string(TextMaker& make) {
    static constexpr const char* kBehind[] = {";", ";", ";", ";;", "; ", ",", "=", "\n;"};
    std::string text = make.below(10) == 0 ? make.noise(make.below(60)) : "";
    text.resize(std::min(text.find('\0'), text.size()));
    for (size_t n = make.below(12); n > 0; --n) {
        text += make.any_key(make.below(2) == 0, false) + (make.below(8) == 0 ? "" : "=") + make.any_value();
        text += make.one_of(kBehind);
    }
    return text;
}

// One engine and one prediction live through the same files, initialisation after initialisation. Returns the file
// behind which they differ first.
std::string first_difference(uint32_t seed, int files, void (*start)(const std::string&)) {
    TextMaker make(seed);
    android::b_parameterMEM = {};
    Prediction prediction;
    size_t applied = 0, ignored = 0;
    for (int n = 0; n < files; ++n) {
        const std::string text = any_file(make);
        const CheckResult result = check_file(text);
        start(text);
        prediction.initialise();
        result.apply_to(prediction);
        if (!engine_holds(prediction)) {
            return "file " + std::to_string(n) + ":\n" + text;
        }
        applied += result.assignments.size();
        ignored += result.ignored.size();
    }
    return std::min(applied, ignored) > 3 * size_t(files) ? "" : "too little to read";
}

TEST(ConfigCheck, PredictsTheEngineOverThousandsOfFiles) {
    EXPECT_EQ(first_difference(20, 6000, start_engine), "");
}

// Hides this process's /etc behind an empty folder of its own; whether the system lets it.
bool has_own_etc() {
    return (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", "/etc", "tmpfs", 0, "size=16m") == 0 && mkdir("/etc/zoq", 0755) == 0;
}

// The entry point itself, with the file where a device has it.
void start_with_file_in_place(const std::string& text) {
    std::ofstream(android::kConfigurationPath, std::ios::binary) << text;
    ZOQ_OUTPROC_PLAY_INIT();
}

TEST(ConfigCheck, PredictsTheEntryPointWithTheFileInPlace) {
    constexpr int kNotAllowed = 77;
    const pid_t child = fork();
    if (child == 0) {
        if (!has_own_etc()) {
            _exit(kNotAllowed);
        }
        const std::string difference = first_difference(26, 1500, start_with_file_in_place);
        std::fprintf(stderr, "%.500s", difference.c_str());
        _exit(difference.empty() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kNotAllowed) {
        GTEST_SKIP() << "no private /etc allowed here";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(ConfigCheck, PredictsTheFirstAndTheNextInitialisation) {
    TextMaker make(21);
    for (int n = 0; n < 1000; ++n) {
        const std::string file = any_file(make), string = any_string(make);
        const CheckResult fileResult = check_file(file), result = check_parameter_string(string, file);
        android::b_parameterMEM = {};
        android::gCurOutputDevice = 2;
        start_engine(file);
        ASSERT_TRUE(engine_holds(fileResult.now)) << file;
        start_engine(file);
        ASSERT_TRUE(engine_holds(fileResult.afterNextStart)) << file;

        android::b_parameterMEM = {};
        start_engine(file);
        ZOQ_PARAMS_SET(android::String8(string.c_str()));
        ASSERT_TRUE(engine_holds(result.now)) << file << "\n" << string;
        start_engine(file);
        ASSERT_TRUE(engine_holds(result.afterNextStart)) << file << "\n" << string;
    }
    android::gCurOutputDevice = 2;
}

TEST(ConfigCheck, IgnoredTokensHaveNoEffectAndPlacesAreTheirs) {
    TextMaker make(22);
    for (int n = 0; n < 1500; ++n) {
        const std::string text = any_file(make);
        const CheckResult result = check_file(text);
        std::string blanked = text;
        for (const IgnoredToken& token : result.ignored) {
            ASSERT_EQ(text.substr(token.place.offset, token.text.size()), token.text);
            const auto lines =
                std::count(text.begin(), text.begin() + std::ptrdiff_t(token.place.offset), '\n');
            ASSERT_EQ(lines + 1, token.place.line);
            std::fill_n(blanked.begin() + std::ptrdiff_t(token.place.offset), token.text.size(), ' ');
        }
        android::b_parameterMEM = {};
        start_engine(blanked);
        ASSERT_TRUE(engine_holds(result.now)) << text;
        // What is left are keys with their values and nothing else.
        const CheckResult again = check_file(blanked);
        EXPECT_TRUE(again.ignored.empty()) << text;
        EXPECT_EQ(again.assignments.size(), result.assignments.size());
    }
}

struct Expected {
    std::string text;
    const char* code;
    int line, column;
    Severity severity;
};

void expect_diagnostic(const CheckResult& result, const Expected& expected) {
    const auto found =
        std::find_if(result.diagnostics.begin(), result.diagnostics.end(), [&expected](const auto& d) {
            return d.code == expected.code && d.place.line == expected.line &&
                   d.place.column == expected.column;
        });
    ASSERT_NE(found, result.diagnostics.end()) << expected.text.substr(0, 80) << " lacks " << expected.code;
    EXPECT_EQ(found->severity, expected.severity) << expected.text.substr(0, 80);
}

constexpr Severity kNote = Severity::kNote, kWarning = Severity::kWarning, kError = Severity::kError;

TEST(ConfigCheck, FileDiagnostics) {
    const Expected kCases[] = {
        {"EQ_62hzgain: 3", "glued-key", 1, 1, kError},
        {"EQ_62hzgain: 3", "stray-value", 1, 14, kWarning},
        {"\xEF\xBB\xBF"
         "compressionGain 3",
         "glued-key", 1, 1, kError},
        {"EQ_62hzgain : 3", "not-a-number", 1, 13, kError},
        {"\n CompressionGain = 70", "wrong-spelling", 2, 2, kError},
        {"vb_boostlin 3", "letter-case", 1, 1, kError},
        {"HIFIPARA=STEREOWIDEN_Enable=true", "not-here", 1, 1, kError},
        {"EQ_2khzgian = 2", "unknown-key", 1, 1, kError},
        {"[speaker]", "stray-word", 1, 2, kWarning},
        {"compressionGain = 70\ntreble_boost = 15", "unknown-key", 2, 1, kError},
        {"compressionGain = 70, treble_boost = 15", "unknown-key", 1, 23, kError},
        {"compressionGain = 70\ntreble_boost 15", "unknown-key", 2, 1, kError},
        {"compressionGain = 70\nfoo", "stray-word", 2, 1, kWarning},
        {"compressionGain = 70\nSTEREOWIDEN_Enable", "not-here", 2, 1, kError},
        {"compressionGain = 70\vVB_boostlin = 3", "key-in-value", 1, 19, kError},
        {"compressionGain 70 80", "stray-value", 1, 20, kWarning},
        {"compressionGain", "missing-value", 1, 1, kError},
        {"EQ_1khzgain EQ_2khzgain 3", "key-as-value", 1, 13, kError},
        {"EQ_1khzgain EQ_2khzgain 3", "stray-value", 1, 25, kWarning},
        {"EQ_1khzgain = VB_boostlin:", "key-as-value", 1, 15, kError},
        {"VB_boostlin = 2,5", "decimal-comma", 1, 15, kError},
        {"VB_boostlin = 2.5,5", "stray-value", 1, 19, kWarning},
        {"VB_boostlin = 10dB", "trailing-text", 1, 15, kWarning},
        {"VB_boostlin = 0x10", "hexadecimal", 1, 15, kWarning},
        {"VB_boostlin = nan", "not-finite", 1, 15, kError},
        {"VB_boostlin = 1e39", "not-finite", 1, 15, kError},
        {"VB_boostlin = 100.5", "out-of-range", 1, 15, kWarning},
        {"headphone_compressionGain 250", "unusual", 1, 27, kWarning},
        {"EQ_62hzgain -30", "unusual", 1, 13, kWarning},
        {"volume_index_switch 10.9", "not-an-integer", 1, 21, kWarning},
        {"volume_index_switch 1e3", "not-an-integer", 1, 21, kError},
        {"volume_index_switch 99999999999", "too-large", 1, 21, kWarning},
        {"volume_index_switch x", "not-a-number", 1, 21, kError},
        {"VB_boostlin 1\nVB_boostlin 2", "duplicate", 1, 1, kWarning},
        {"# loud 70", "comment", 1, 1, kWarning},
        {"VB_boostlin 3 // was VB_boostlin 4", "comment-applied", 1, 22, kError},
        {"/* VB_boostlin\n 3 */", "comment-applied", 1, 4, kError},
        {"; VB_boostlin 3", "semicolon", 1, 3, kWarning},
        {std::string("VB_boostlin 3\n\0VB_boostlin 4", 28), "nul", 2, 1, kError},
        {std::string("VB_boostlin 3\n\0\0\n", 17), "nul", 2, 1, kWarning},
        {std::string("\xFF\xFEV\0B\0", 6), "utf-16", 1, 1, kError},
        {std::string(kLimit, ' ') + "VB_boostlin 4", "past-limit", 1, int(kLimit) + 1, kError},
        {std::string(kLimit, '\n') + "\n\n", "past-limit", int(kLimit) + 1, 1, kWarning},
        {"DS_stereoWidth" + std::string(kLimit - 15, ' ') + "75", "cut-token", 1, int(kLimit), kError},
        {"", "no-settings", 1, 1, kNote},
    };
    for (const Expected& expected : kCases) {
        expect_diagnostic(check_file(expected.text), expected);
    }
}

std::string remarks(const CheckResult& result, size_t most) {
    std::ostringstream out;
    print_diagnostics(out, result, "f", most);
    return out.str();
}

TEST(ConfigCheck, UnknownKeysAreNamedWithTheNearestOne) {
    const struct {
        const char *key, *nearest;
    } kCases[] = {{"EQ_62hz", "EQ_62hzgain"},       {"EQ_1000hzgain", "EQ_1khzgain"},
                  {"EQ_16000hz", "EQ_16khzgain"},   {"treble_boost", "EQ_trebleBoost"},
                  {"surround", "HP_SurroundWidth"}, {"zz", ""}};
    for (const auto& c : kCases) {
        for (const CheckResult& result :
             {check_file("VB_boostlin 3\n" + std::string(c.key) + " = 3"),
              check_parameter_string("VB_boostlin=3;" + std::string(c.key) + "=3")}) {
            const auto found = std::find_if(result.diagnostics.begin(), result.diagnostics.end(),
                                            [](const Diagnostic& d) { return d.code == "unknown-key"; });
            ASSERT_NE(found, result.diagnostics.end()) << c.key;
            EXPECT_EQ(found->suggestion, c.nearest);
            EXPECT_EQ(found->message.find("the nearest is") != std::string::npos, found->suggestion.empty());
        }
    }
}

TEST(ConfigCheck, ErrorsComeFirstWhenThereIsNoRoomAndUnreadWordsAreNamed) {
    std::string text;
    for (int n = 0; n < 200; ++n) {
        text += "word\n";
    }
    text += "EQ_62hzgain: 3\n";
    const std::string few = remarks(check_file(text), 100);
    EXPECT_NE(few.find("f:201:1: error:"), std::string::npos);
    EXPECT_NE(few.find("f: 103 more\n"), std::string::npos);

    const std::string cut =
        remarks(check_file(std::string("VB_boostlin 3\n\0a b\0\nDS_stereoWidth 4", 36)), 0);
    for (const char* word : {"f:2:2: warning: 'a' is not read [nul]", "f:2:4: warning: 'b'",
                             "f:3:1: warning: 'DS_stereoWidth'", "f:3:16: warning: '4'"}) {
        EXPECT_NE(cut.find(word), std::string::npos) << word << " in " << cut;
    }
    const CheckResult behind = check_file(std::string(kLimit, ' ') + "x\n" + "VB_boostlin 3");
    ASSERT_EQ(behind.ignored.size(), 3u);
    EXPECT_EQ(behind.ignored[1].place.line, 2);
    EXPECT_EQ(behind.exit_code(), 2);
    EXPECT_EQ(check_parameter_string(std::string("VB_boostlin=3\0;DS_stereoWidth=4", 31)).ignored.size(), 1u);
    const std::string comment = remarks(check_file("# loud and 70"), 0);
    EXPECT_NE(comment.find("f:1:3: note: 'loud'"), std::string::npos) << comment;
    EXPECT_NE(comment.find("f:1:12: note: '70'"), std::string::npos) << comment;
    // A value that another one replaces is not read again by the next initialisation.
    EXPECT_EQ(remarks(check_file("VB_boostlin 150\nVB_boostlin 20"), 0).find("stores 150"),
              std::string::npos);
}

TEST(ConfigCheck, StringDiagnostics) {
    const Expected kCases[] = {
        {"compressionGain=3", "wrong-spelling", 1, 1, kError},
        {"VB_boostlin=1; EQ_62hzgain=3", "glued-key", 1, 15, kError},
        {"volume_index_switch=3", "not-here", 1, 1, kError},
        {"STEREOWIDEN_Enable=true", "unknown-key", 1, 1, kError},
        {"HIFIPARA=true", "bad-switch", 1, 10, kError},
        {"VB_boostlin", "missing-value", 1, 1, kError},
        {"VB_boostlin=;", "missing-value", 1, 1, kError},
        {"VB_boostlin=2,5", "decimal-comma", 1, 13, kError},
        {"VB_boostlin=2,EQ_62hzgain=5", "comma-between-pairs", 1, 13, kError},
        {"output_device=0x8", "not-an-integer", 1, 15, kError},
        {"VB_boostlin=150", "out-of-range", 1, 13, kWarning},
        {"VB_boostlin=1;VB_boostlin=2", "duplicate", 1, 1, kWarning},
    };
    for (const Expected& expected : kCases) {
        expect_diagnostic(check_parameter_string(expected.text), expected);
    }
    EXPECT_EQ(
        check_parameter_string("HIFIPARA=STEREOWIDEN_Enable=true;output_device=8;VB_boostlin= 3").exit_code(),
        0);
}

TEST(ConfigCheck, TidyTextsAreCleanAndFixingKeepsTheirValues) {
    TextMaker make(23);
    for (int n = 0; n < 500; ++n) {
        const std::string text = tidy_file(make);
        const CheckResult result = check_file(text);
        ASSERT_EQ(result.exit_code(), 0) << text;
        const Meant meant = meant_by_file(text);
        EXPECT_TRUE(meant.dropped.empty());
        android::b_parameterMEM = {};
        start_engine(settings_text(meant.settings, Dialect::kFile));
        ASSERT_TRUE(engine_holds(result.now)) << text;
    }
}

TEST(ConfigCheck, FixedTextsAreCleanAndStayAsTheyAre) {
    TextMaker make(24);
    for (int n = 0; n < 2000; ++n) {
        const std::string text = settings_text(meant_by_file(any_file(make)).settings, Dialect::kFile);
        ASSERT_EQ(check_file(text).exit_code(), 0) << text;
        const Meant again = meant_by_file(text);
        ASSERT_EQ(settings_text(again.settings, Dialect::kFile), text);
        ASSERT_TRUE(again.dropped.empty() && again.changed.empty()) << text;
        const std::string string =
            settings_text(meant_by_parameter_string(any_string(make)).settings, Dialect::kString);
        ASSERT_EQ(check_parameter_string(string).exit_code(), 0) << string;
        ASSERT_EQ(settings_text(meant_by_parameter_string(string).settings, Dialect::kString), string);
    }
}

TEST(ConfigCheck, FixReadsWhatWasMeant) {
    const struct {
        std::string text, fixed;
        size_t dropped, changed = 0;
    } kCases[] = {
        {"EQ_62hzgain: 3", "EQ_62hzgain = 3\n", 0},
        {"{ \"EQ_62hzgain\": \"-3.5\" }", "EQ_62hzgain = -3.5\n", 0},
        {"EQ_62hzgain:3 EQ_125hzgain : 4", "EQ_62hzgain = 3\nEQ_125hzgain = 4\n", 0},
        {"CompressionGain 2,5", "compressionGain = 2.5\n", 0},
        {"VB_bostlin 10dB", "VB_boostlin = 10\n", 0},
        {"EQ_63hzgain 3", "", 1},  // which band was meant is anybody's guess
        {"EQ_1khzgain EQ_2khzgain 3", "EQ_2khzgain = 3\n", 1},
        {"VB_boostlin 130 VB_boostlin -2", "VB_boostlin = 0\n", 0, 1},
        {"VB_boostlin 130 VB_boostlin 20", "VB_boostlin = 20\n", 0},
        {"headphone_compressionGain 250 EQ_62hzgain -30",
         "headphone_compressionGain = 100\nEQ_62hzgain = -24\n", 0, 2},
        {"bar = 13\nSpeaker_bass 12\nVB_boostlin 4", "VB_boostlin = 4\n", 2},
        {"[speaker]\nVB_boostlin 4 5", "VB_boostlin = 4\n", 2},
        {"VB_boostlin 4x7 dB\nEQ_62hzgain = 3 dB;", "VB_boostlin = 4\nEQ_62hzgain = 3\n", 1},
        {"compressionGain = 70\vVB_boostlin = 3", "compressionGain = 70\nVB_boostlin = 3\n", 0},
        {"EQ_1000hzgain 2", "EQ_1khzgain = 2\n", 0},
        {"VB_boostlin nan", "", 1},
        {"# VB_boostlin 3\nDS_stereoWidth 4", "DS_stereoWidth = 4\n", 0},
        {"volume_index_switch 1e1", "volume_index_switch = 10\n", 0},
        {std::string("VB_boostlin 3\0DS_stereoWidth 4", 30), "VB_boostlin = 3\nDS_stereoWidth = 4\n", 0},
        {std::string(kLimit, ' ') + "VB_boostlin 3", "VB_boostlin = 3\n", 0},
        {"HIFIPARA=STEREOWIDEN_Enable=true", "", 1},
        {"output_devise 8", "", 1},
    };
    for (const auto& c : kCases) {
        const Meant meant = meant_by_file(c.text);
        EXPECT_EQ(settings_text(meant.settings, Dialect::kFile), c.fixed);
        EXPECT_EQ(meant.dropped.size(), c.dropped) << c.text.substr(0, 80);
        EXPECT_EQ(meant.changed.size(), c.changed) << c.text.substr(0, 80);
    }
    const Meant string =
        meant_by_parameter_string(" VB_boostlin=2,5,compressionGain=3;output_device=0x8;HIFIPARA=on");
    EXPECT_EQ(settings_text(string.settings, Dialect::kString),
              "output_device=8;CompressionGain=3;VB_boostlin=2.5");
    EXPECT_EQ(string.dropped.size(), 1u);
    EXPECT_EQ(meant_by_parameter_string("VB_boostlin=150;DS_stereoWidth=40").changed.size(), 1u);
}

TEST(ConfigCheck, ReportsHoldWhateverStandsInTheText) {
    TextMaker make(25);
    for (int n = 0; n < 200; ++n) {
        const std::string text = hostile_file(make);
        const CheckResult result = check_file(text);
        std::ostringstream plain, json;
        print_diagnostics(plain, result, "file", 0);
        print_prediction(plain, result);
        for (const char c : plain.str()) {
            ASSERT_TRUE(c == '\n' || (c >= 0x20 && c < 0x7F)) << int(c);
        }
        print_check_json(json, {{"file", &result}});
        const nlohmann::json parsed = nlohmann::json::parse(json.str());
        EXPECT_EQ(parsed["diagnostics"].size(), result.diagnostics.size());
        EXPECT_EQ(parsed["ignored"].size(), result.ignored.size());
        EXPECT_EQ(parsed["settings"].size(), 26u);
    }
}

}  // namespace
}  // namespace zoq
