// zoq render: what comes out, compared with what went in.
#include "tests/tools/command.h"

using namespace command;

namespace {

using RenderTest = InEmptyFolder;

TEST_F(RenderTest, BypassGivesBackTheInputWhateverTheBlockSize) {
    const Sound input = noise(30011);
    for (const char* block : {"", "--block 1", "--block 300", "--block 441", "--block 480", "--block 509",
                              "--block 511", "--block 513", "--block 4096", "--block 18431"}) {
        EXPECT_TRUE(rendered(input, std::string("--bypass ") + block) == input) << block;
        EXPECT_TRUE(rendered(input, std::string("--bypass --route headphone ") + block) == input) << block;
    }
    const Sound one = noise(1);
    EXPECT_TRUE(rendered(one, "--bypass") == one);
}

// Without width the loudspeaker has no filter that disperses, and with next to none the direct path is by far the
// loudest: these must hit the very sample. The widening filters peak 3 and 9 samples behind the direct path, the room
// responses begin 4 to 7 samples behind the sound.
TEST_F(RenderTest, ImpulseComesOutWhereItWentIn) {
    struct Case {
        const char* options;
        int earliest, latest;
    };
    const Case cases[] = {{"--set DS_stereoWidth=0", 0, 0},
                          {"--set DS_stereoWidth=0 --block 441", 0, 0},
                          {"--set DS_stereoWidth=1", 0, 0},
                          {"--set DS_stereoWidth=1 --block 300", 0, 0},
                          {"--set DS_stereoWidth=1 --block 18000", 0, 0},
                          {"", 0, 9},
                          {"--route headphone", 4, 7},
                          {"--route headphone --block 480", 4, 7}};
    for (const Case& expected : cases) {
        for (const int position : {0, 1000, 10000, 19990}) {
            Sound input = silence(20000);
            input.values[2 * static_cast<size_t>(position)] = 16000;
            input.values[2 * static_cast<size_t>(position) + 1] = 16000;
            const Sound output = rendered(input, expected.options);
            ASSERT_EQ(output.frames(), input.frames());
            for (const int side : {0, 1}) {
                const int shift = loudest(output, side, 0, 20000) - position;
                EXPECT_GE(shift, expected.earliest) << expected.options << " at " << position;
                EXPECT_LE(shift, expected.latest) << expected.options << " at " << position;
            }
        }
    }
}

TEST_F(RenderTest, AsPlayedKeepsSettlingAndDelay) {
    // Blocks of 480: twelve pass through, the thirteenth starts the queue of 480 zeros.
    const Sound input = noise(20000);
    const Sound output = rendered(input, "--as-played --bypass --block 480");
    Sound expected = silence(20480);
    std::copy_n(input.values.begin(), 2 * 5760, expected.values.begin());
    std::copy(input.values.begin() + 2 * 5760, input.values.end(), expected.values.begin() + 2 * 6240);
    EXPECT_TRUE(output == expected);

    // Blocks of a hop: eleven pass through, and processing begins dry.
    const Sound processed = rendered(input, "--as-played");
    EXPECT_EQ(processed.frames(), input.frames() + 512 + 180);
    EXPECT_TRUE(std::equal(input.values.begin(), input.values.begin() + 2 * 5633, processed.values.begin()));
    EXPECT_FALSE(std::equal(input.values.begin() + 2 * 5633, input.values.begin() + 2 * 6145,
                            processed.values.begin() + 2 * 5633));

    const Sound shorter = noise(4000);
    EXPECT_TRUE(rendered(shorter, "--as-played") == shorter);

    // The eighth block of 441 after settling (the 14th begins the queue) finds it short and comes back as it was.
    write("in.wav", input);
    const Outcome outcome = render("in.wav out.wav --as-played --block 441");
    EXPECT_NE(outcome.err.find("short once, 0.184 s after the start"), std::string::npos) << outcome.err;
    const auto block = static_cast<ptrdiff_t>(20) * 441 * 2;
    EXPECT_TRUE(std::equal(input.values.begin() + block, input.values.begin() + block + 882,
                           read("out.wav").values.begin() + block));
    EXPECT_NE(render("in.wav out.wav --block 441").err.find("before the input begins"), std::string::npos);
}

TEST_F(RenderTest, OtherRatesKeepTimeAndPitch) {
    for (const int rate : {8000, 22050, 44100, 96000}) {
        write("in.wav", tone(static_cast<size_t>(rate), 997.0, 0.5, 2, rate));
        EXPECT_NE(render("in.wav out.wav --bypass").err.find(" Hz resampled to 48000 Hz"), std::string::npos);
        const Sound output = read("out.wav");
        EXPECT_NEAR(static_cast<double>(output.frames()), 48000.0, 1.0) << rate;
        EXPECT_EQ(output.rate, 48000);
        double worst = 0.0;
        for (size_t i = 2000; i < 46000; ++i) {
            const double ideal = 0.5 * tone_at(static_cast<double>(i) / 48000.0, 997.0);
            worst = std::max(worst, std::abs(output.at(i, 0) / 32768.0 - ideal));
        }
        EXPECT_LT(worst, 2e-4) << rate;
    }
}

TEST_F(RenderTest, MonoIsSpreadAndManyChannelsAreFolded) {
    const Sound mono = noise(5000, 1);
    const Sound spread = rendered(mono, "--bypass");
    for (size_t i = 0; i < mono.frames(); ++i) {
        ASSERT_EQ(spread.at(i, 0), mono.at(i, 0));
        ASSERT_EQ(spread.at(i, 1), mono.at(i, 0));
    }

    // Left, right, centre, low frequencies, left and right surround, each at a level of its own.
    Sound six = silence(5000, 6);
    const double levels[] = {10000.0, -5000.0, 3000.0, 30000.0, 7000.0, -9000.0};
    for (size_t i = 0; i < six.values.size(); ++i) {
        six.values[i] = static_cast<int16_t>(levels[i % 6]);
    }
    const double scale = 1.0 / (1.0 + 2.0 * std::sqrt(0.5));
    const Sound folded = rendered(six, "--bypass");
    EXPECT_NEAR(folded.at(2500, 0), scale * (10000.0 + std::sqrt(0.5) * (3000.0 + 7000.0)), 1.0);
    EXPECT_NEAR(folded.at(2500, 1), scale * (-5000.0 + std::sqrt(0.5) * (3000.0 - 9000.0)), 1.0);

    // Ogg has the centre second: it belongs to both sides alike. Its low-frequency channel, the last, to none.
    Sound ogg = silence(48000, 6);
    const Sound centre = tone(48000, 1000.0, 0.5, 1);
    const Sound low = tone(48000, 60.0, 0.5, 1);
    for (size_t i = 0; i < 48000; ++i) {
        ogg.values[6 * i + 1] = centre.values[i];
        ogg.values[6 * i + 5] = low.values[i];
    }
    write("six.ogg", ogg, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    ASSERT_EQ(render("six.ogg out.wav --bypass").code, 0);
    const double expected = 20.0 * std::log10(0.5 * std::sqrt(0.5) * scale);
    for (const int side : {0, 1}) {
        EXPECT_NEAR(level_db(read("out.wav"), side, 1000.0), expected, 0.1);
        EXPECT_LT(level_db(read("out.wav"), side, 60.0), -60.0);
    }
}

TEST_F(RenderTest, ReadsAndWritesTheNamedFormats) {
    const Sound input = tone(48000, 1000.0, 0.5);
    const std::pair<const char*, int> formats[] = {
        {"in.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16}, {"in.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
        {"in.opus", SF_FORMAT_OGG | SF_FORMAT_OPUS},    {"in.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III},
        {"in24.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24}, {"float.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT}};
    for (const auto& [name, format] : formats) {
        write(name, input, format);
        const Outcome outcome = render(std::string(name) + " out.FLAC --bypass");
        ASSERT_EQ(outcome.code, 0) << name << outcome.err;
        EXPECT_EQ(contents("out.FLAC").substr(0, 4), "fLaC");
        EXPECT_EQ(read("out.FLAC").frames(), 48000u) << name;
        EXPECT_NEAR(level_db(read("out.FLAC"), 1, 1000.0), -6.02, 0.1) << name;
    }
}

TEST_F(RenderTest, StandardStreamsCarryTheSameBytes) {
    write("in.wav", noise(20000));
    ASSERT_EQ(render("in.wav out.wav").code, 0);
    const Outcome piped = shell("cat in.wav | zoq render - - --report | cat");
    EXPECT_EQ(piped.out, contents("out.wav"));
    EXPECT_NE(piped.err.find("real time"), std::string::npos);
}

TEST_F(RenderTest, ReportMeasuresWhatItSays) {
    const auto report = [](const std::string& arguments) {
        return json_of("zoq render --json " + arguments);
    };
    // By definition a stereo sine of 997 Hz at -20 dB of full scale has -20 LUFS.
    write("in.wav", tone(480000, 997.0, 0.1));
    const auto bypassed = report("in.wav out.wav --bypass --block 441");
    for (const char* side : {"before", "after"}) {
        EXPECT_NEAR(bypassed[side]["integratedLufs"], -20.0, 0.1);
        EXPECT_NEAR(bypassed[side]["truePeakDbtp"], -20.0, 0.1);
        EXPECT_EQ(bypassed[side]["fullScaleSamples"], 0);
    }
    EXPECT_EQ(bypassed["durationSeconds"], 10.0);
    EXPECT_EQ(bypassed["route"], "speaker");
    EXPECT_GT(bypassed["timesRealTime"], 1.0);
    // After the short queue the delay is a hop and what was left over then: 8 x 882 mod 1024 values.
    EXPECT_EQ(bypassed["delaySamples"]["total"], 512 + 8 * 882 % 1024 / 2);
    const auto delay = report("in.wav out.wav")["delaySamples"];
    EXPECT_EQ(delay["queue"], 0);
    EXPECT_EQ(delay["chain"], 512);
    EXPECT_EQ(delay["widening"], 180);

    Sound loud = silence(48000);
    loud.values[1000] = 32767;
    loud.values[1003] = -32768;
    write("loud.wav", loud);
    const std::string text = render("loud.wav out.wav --bypass --report").out;
    EXPECT_NE(text.find("full scale out  2 samples"), std::string::npos) << text;
    write("silent.wav", silence(48000));
    EXPECT_TRUE(report("silent.wav out.wav")["after"]["integratedLufs"].is_null());
}

TEST_F(RenderTest, CurvesShowOutlineAndSpectrum) {
    write("in.wav", tone(96000, 1000.0, 0.1));
    ASSERT_EQ(render("in.wav out.wav --bypass --curves curves.txt").code, 0);
    std::istringstream lines(contents("curves.txt"));
    bool spectrum = false;
    double loudestHz = 0.0;
    double loudestDb = -200.0;
    for (std::string line; std::getline(lines, line);) {
        double x = 0.0, a = 0.0, b = 0.0, c = 0.0, d = 0.0;
        spectrum = spectrum || line.find("Hz") != std::string::npos;
        if (std::sscanf(line.c_str(), "%lf %lf %lf %lf %lf", &x, &a, &b, &c, &d) < 3) {
            continue;
        }
        if (!spectrum) {
            EXPECT_NEAR(a, -0.1, 0.001);
            EXPECT_NEAR(d, 0.1, 0.001);
        } else {
            EXPECT_EQ(a, b);
            loudestHz = a > loudestDb ? x : loudestHz;
            loudestDb = std::max(a, loudestDb);
        }
    }
    EXPECT_NEAR(loudestHz, 1000.0, 60.0);
    EXPECT_NEAR(loudestDb, -20.0, 0.1);
}

}  // namespace
