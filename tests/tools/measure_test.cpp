// zoq measure: settings whose effect can be calculated, and what it says when something is wrong.
#include <complex>

#include "tests/tools/command.h"

using namespace command;

namespace {

using MeasureTest = InEmptyFolder;
using Json = nlohmann::json;

// Both channels folded to one, halved, and nothing else.
constexpr char kPlain[] = "--set 'DS_stereoWidth=0;VB_boostlin=0' ";

Outcome measure(const std::string& arguments) {
    return shell("zoq measure " + arguments);
}

Json measured(const std::string& arguments) {
    return json_of("zoq measure --json " + arguments);
}

// The points of a curve.
std::vector<double> x_of(const Json& curve) {
    return curve["x"]["values"].get<std::vector<double>>();
}
std::vector<double> values_of(const Json& curve) {
    std::vector<double> values;
    for (const Json& value : curve["values"]) {
        values.push_back(value.is_null() ? -std::numeric_limits<double>::infinity() : value.get<double>());
    }
    return values;
}

double at(const Json& curve, double x) {
    const std::vector<double> points = x_of(curve);
    const auto closer = [x](double a, double b) { return std::abs(a - x) < std::abs(b - x); };
    return values_of(
        curve)[static_cast<size_t>(std::min_element(points.begin(), points.end(), closer) - points.begin())];
}

double db(double ratio) {
    return 20.0 * std::log10(ratio);
}

// The bilinear image of a frequency against that of a filter's own.
std::complex<double> prewarped(double hz, double filterHz) {
    const auto warp = [](double f) { return std::tan(std::numbers::pi * f / 48000.0); };
    return {0.0, warp(hz) / warp(filterHz)};
}

std::complex<double> peak(double hz, double centreHz, double gainDb) {
    const std::complex<double> s = prewarped(hz, centreHz);
    const double gain = std::pow(10.0, std::abs(gainDb) / 20.0);
    const std::complex<double> boost =
        (s * s + gain / std::sqrt(2.0) * s + 1.0) / (s * s + s / std::sqrt(2.0) + 1.0);
    return gainDb > 0.0 ? boost : 1.0 / boost;
}

std::complex<double> treble(double hz, double percent) {
    const std::complex<double> s = prewarped(hz, 10000.0);
    return 1.0 + percent / 50.0 * s / (s + 1.0);
}

TEST_F(MeasureTest, ResponseIsThatOfTheFiltersSet) {
    const auto expect = [](const std::string& settings, const auto& filter) {
        const Json response = measured(kPlain + ("--what response " + settings))["response"];
        for (const char* side : {"left", "right"}) {
            const std::vector<double> hz = x_of(response[side]["gain"]);
            ASSERT_GT(hz.size(), 200u);
            ASSERT_LT(hz.front(), 21.0);
            ASSERT_GT(hz.back(), 19000.0);
            for (size_t i = 0; i < hz.size(); ++i) {
                const std::complex<double> expected = 0.5 * filter(hz[i]);
                EXPECT_NEAR(values_of(response[side]["gain"])[i], db(std::abs(expected)), 0.05)
                    << settings << hz[i];
                EXPECT_NEAR(values_of(response[side]["phase"])[i],
                            std::arg(expected) * 180.0 / std::numbers::pi, 1.0)
                    << settings << hz[i];
            }
        }
    };
    expect("--set EQ_1khzgain=6", [](double hz) { return peak(hz, 1000.0, 6.0); });
    expect("--set 'EQ_62hzgain=-9;EQ_16khzgain=6' --set EQ_trebleBoost=15 --level -30",
           [](double hz) { return peak(hz, 62.5, -9.0) * peak(hz, 16000.0, 6.0) * treble(hz, 15.0); });
    EXPECT_NEAR(db(std::abs(treble(10000.0, 15.0))), 1.29, 0.005);
    EXPECT_NEAR(db(std::abs(peak(1000.0, 1000.0, 6.0))), 6.0, 1e-9);
}

// Without a room, sound from the middle passes as the extracted centre, 0.707 x 1.414, up to the band that
// ends at 8.6 kHz, and as left and right, 0.707, above.
TEST_F(MeasureTest, HeadphonesWithoutRoomTellTheExcitationsApart) {
    const auto gain = [](const std::string& excitation, const char* side, double hz) {
        return at(measured("--what response --route headphone --set HP_SurroundWidth=0 --excite " +
                           excitation)["response"][side]["gain"],
                  hz);
    };
    EXPECT_NEAR(gain("mid", "left", 1000.0), 0.0, 0.01);
    EXPECT_NEAR(gain("mid", "right", 12000.0), db(0.707), 0.01);
    EXPECT_NEAR(gain("side", "left", 1000.0), db(0.707), 0.01);
    EXPECT_NEAR(gain("left", "left", 1000.0), db(0.707), 0.01);
    EXPECT_LT(gain("left", "right", 1000.0), -60.0);
}

TEST_F(MeasureTest, LatencyIsBlocksHopAndWidening) {
    const struct {
        const char* options;
        int expected;
    } cases[] = {{"--set DS_stereoWidth=0", 512},
                 {"--set DS_stereoWidth=1", 692},
                 {"--set DS_stereoWidth=0 --block 480", 480 + 512},
                 {"--set DS_stereoWidth=1 --block 2304", 256 + 692},
                 {"--set HP_SurroundWidth=0 --route headphone", 512}};
    for (const auto& [options, expected] : cases) {
        const Json latency = measured(std::string("--what latency ") + options)["latency"];
        EXPECT_EQ(latency["expected"]["value"], expected) << options;
        EXPECT_EQ(latency["left"]["peak"]["value"], expected) << options;
        EXPECT_EQ(latency["right"]["peak"]["value"], expected) << options;
    }
    // Blocks that let the queue run short once: it holds up to a hop more from then on.
    const Json latency = measured(kPlain + std::string("--what latency,impulse --block 441"));
    const int total = latency["latency"]["expected"]["value"];
    EXPECT_GE(total, 512 + 512);
    EXPECT_EQ(latency["latency"]["left"]["peak"]["value"], total);
    EXPECT_NEAR(at(latency["impulse"]["left"]["response"], total), 0.5, 0.001);
    EXPECT_NEAR(at(latency["impulse"]["left"]["response"], total + 1), 0.0, 0.001);
}

TEST_F(MeasureTest, FoldingToOneChannelSilencesTheSideAndMixesEverything) {
    const std::vector<double> ratio =
        values_of(measured(kPlain + std::string("--what crosstalk"))["crosstalk"]["right against left"]);
    for (const double value : ratio) {
        EXPECT_NEAR(value, 0.0, 1e-6);
    }
    const Json apart = measured("--what crosstalk --route headphone --set HP_SurroundWidth=0")["crosstalk"];
    EXPECT_LT(at(apart["right against left"], 1000.0), -60.0);

    const Json side = measured(kPlain + std::string("--what response,latency --excite side"));
    EXPECT_TRUE(side["latency"]["left"]["peak"]["value"].is_null());
    for (const Json& value : side["response"]["right"]["gain"]["values"]) {
        EXPECT_TRUE(value.is_null());
    }
    EXPECT_NE(measure(kPlain + std::string("--what latency --excite side")).out.find("silence"),
              std::string::npos);
}

// A compressor of 12.6 dB: ratio 6, threshold -(12.6 / 0.82) (1/6 + 1) dB, the knee half as wide. At 8 kHz
// a period is two of its groups of three samples, so that it sees a constant level.
double compressed(double inputDb) {
    const double level = inputDb + db(0.5);
    const double threshold = -12.6 / 0.82 * 7.0 / 6.0;
    const double knee = -threshold / 2.0;
    const double over = level - threshold;
    const double reduced =
        std::abs(over) < knee / 2.0 ? std::pow(over + knee / 2.0, 2.0) / (2.0 * knee) : std::max(over, 0.0);
    return level + 12.6 - reduced * 5.0 / 6.0;
}

TEST_F(MeasureTest, StaticCurveIsThatOfTheCompressor) {
    const Json curve = measured(
        kPlain +
        std::string("--what static --tone 8000 --set CompressionGain=70"))["static"]["left"]["output"];
    EXPECT_EQ(x_of(curve).front(), -70.0);
    EXPECT_EQ(x_of(curve).back(), 0.0);
    for (double input = -38.0; input <= 0.0; input += 2.0) {  // the expander ends at -41 dBFS
        EXPECT_NEAR(at(curve, input), compressed(input), 0.05) << input;
    }
    EXPECT_NEAR((at(curve, 0.0) - at(curve, -4.0)) / 4.0, 1.0 / 6.0, 0.002);
    // Below it takes half a dB for each dB.
    EXPECT_NEAR((at(curve, -44.0) - at(curve, -50.0)) / 6.0, 1.5, 0.02);
}

TEST_F(MeasureTest, DynamicsAreThoseOfTheCompressor) {
    const Json dynamics = measured(
        kPlain + std::string("--what dynamics --tone 8000 --set CompressionGain=70"))["dynamics"]["left"];
    // Exponentials of 2 ms and 0.3 s on a grid of every third sample.
    EXPECT_NEAR(dynamics["attack to 90 %"]["value"], std::log(10.0) * 3.0 * 0.002, 0.0002);
    EXPECT_NEAR(dynamics["release to 90 %"]["value"], std::log(10.0) * 3.0 * 0.3, 0.01);
    const double change = compressed(-6.0) - compressed(-30.0) - 24.0;
    EXPECT_NEAR(dynamics["attack gain change"]["value"], change, 0.05);
    EXPECT_NEAR(dynamics["release gain change"]["value"], -change, 0.05);
    EXPECT_EQ(dynamics["release limited"]["value"], 0.0);
    // With all of its gain on headphones only a lower step shows the compressor, and the report tells which it was.
    const std::string loud =
        "--what dynamics --tone 8000 --route headphone --set "
        "'HP_SurroundWidth=0;Headphone_CompressionGain=100' ";
    EXPECT_EQ(measured(loud)["dynamics"]["left"]["attack limited"]["value"], 1.0);
    EXPECT_NE(measure(loud).out.find("the limiter takes part"), std::string::npos);
    const Json low = measured(loud + "--step -38 -21")["dynamics"]["left"];
    EXPECT_EQ(low["attack limited"]["value"], 0.0);
    EXPECT_GT(low["attack to 90 %"]["value"], 0.008);
    const Json none = measured(kPlain + std::string("--what dynamics"))["dynamics"]["left"];
    EXPECT_TRUE(none["attack to 90 %"]["value"].is_null());
    EXPECT_TRUE(none["release to 90 %"]["value"].is_null());
}

// Halved, every other value has half a bit too much, which is dropped toward zero: on average a quarter of
// a bit of the sign, a square wave.
TEST_F(MeasureTest, HarmonicsAreThoseOfTruncationAndOfTheVirtualBass) {
    const Json plain = measured(kPlain + std::string("--what distortion"))["distortion"]["left"];
    const auto square = [](int order) { return db(1.0 / (std::numbers::pi * order) / 32768.0); };
    EXPECT_NEAR(plain["tone output"]["value"], -20.0 + db(0.5), 0.01);
    EXPECT_NEAR(at(plain["tone harmonics"], 3), square(3), 0.3);
    EXPECT_NEAR(at(plain["tone harmonics"], 5), square(5), 0.3);
    EXPECT_NEAR(at(plain["bass harmonics"], 3), square(3), 0.3);
    // Beside them noise: whether half a bit is dropped, and half of what the input is off by rounding.
    const double power = (0.25 * 0.25 + 0.25 / 12.0) * 20.0 / 24.0;
    const double noise = std::sqrt(power) / (0.05 * 32768.0 / std::sqrt(2.0));
    EXPECT_NEAR(plain["tone THD+N"]["value"],
                db(std::hypot(noise, std::pow(10.0, double(plain["tone THD"]["value"]) / 20.0))), 1.0);

    // Squared, 60 Hz become 120 Hz; the loudspeaker is spared the fundamental by 10 dB and more.
    const Json bass =
        measured("--what distortion --bass 60 --set 'DS_stereoWidth=0;VB_boostlin=50'")["distortion"]["left"];
    EXPECT_GT(at(bass["bass harmonics"], 2), -50.0);
    EXPECT_LT(at(bass["tone harmonics"], 2), -110.0);
    EXPECT_NEAR(bass["bass frequency"]["value"], 60.0, 0.8);
}

TEST_F(MeasureTest, SwitchingIsSmoothAndItsRemainsAreSeen) {
    const Json clicks = measured(kPlain + std::string("--what clicks"))["clicks"];
    // The ramp leads from the louder sine to the quieter one.
    for (const char* step : {"on step", "off step"}) {
        EXPECT_LE(clicks[step]["value"], 0.01) << step;
        EXPECT_GE(clicks[step]["value"], -0.5) << step;
    }
    EXPECT_LT(clicks["steady treble"]["value"], -95.0);
    EXPECT_LT(clicks["on treble"]["value"], -70.0);
    // Switched on again, the engine plays the hop before it was switched off: half of 3277 under a ramp
    // that rises to a tenth, with a crest of the sine in the last half period.
    EXPECT_LE(clicks["left over"]["value"], 164);
    EXPECT_GE(clicks["left over"]["value"], 125);
}

TEST_F(MeasureTest, SettingsComeFromTextsAndOptionsAlike) {
    std::ofstream("tuning.txt")
        << "compressionGain 70\nvolume_index_switch = 3\nVB_boostlin 0\nDS_stereoWidth 80\n";
    const auto gain = [](const std::string& options) {
        return at(measured("--what response --config tuning.txt --level -30 " +
                           options)["response"]["left"]["gain"],
                  1000.0);
    };
    EXPECT_NEAR(gain("--set DS_stereoWidth=0 --volume 3"), db(0.5) + 12.6, 0.03);
    EXPECT_NEAR(gain("--set DS_stereoWidth=0 --volume 4"), db(0.5) + 14.7, 0.03);

    write("in.wav", noise(5000));
    const auto same = [](const std::string& options) {
        return render("in.wav out.wav " + options).code == 0 ? read("out.wav") : Sound();
    };
    const Sound one = same("--set 'EQ_62hzgain=3;DS_stereoWidth=0'");
    std::ofstream("eq.txt") << "EQ_62hzgain 3 DS_stereoWidth 0";
    EXPECT_TRUE(one == same("--set EQ_62hzgain=3 --set DS_stereoWidth=0"));
    EXPECT_TRUE(one == same("--config eq.txt"));
    EXPECT_FALSE(one == same(""));
}

TEST_F(MeasureTest, TablesAndPicturesHoldWhatTheReportSays) {
    const Outcome text = measure(kPlain + std::string("--csv all.csv --plot all.png"));
    EXPECT_EQ(text.code, 0);
    EXPECT_EQ(text.err, "");
    for (const char* word : {"speaker, mid, -20 dBFS, DS_stereoWidth=0", "Response", "Impulse", "Latency",
                             "THD+N", "Static", "attack", "Crosstalk", "switching on"}) {
        EXPECT_NE(text.out.find(word), std::string::npos) << word;
    }
    const std::string table = contents("all.csv");
    EXPECT_EQ(table.substr(0, table.find('\n')), "measure,channel,quantity,x_quantity,x,x_unit,value,unit");
    for (const char* row :
         {"\nresponse,left,gain,frequency,1000,Hz,-6.02", "\nlatency,left,peak,,,,512,samples\n",
          "\nstatic,left,output,input,-20,dBFS,-26.0",
          "\ncrosstalk,,right against left,frequency,1000,Hz,0,dB\n"}) {
        EXPECT_NE(table.find(row), std::string::npos) << row;
    }
    EXPECT_EQ(contents("all.png").substr(1, 3), "PNG");
    EXPECT_EQ(
        measure("--what static,latency --csv - --plot one.svg --set \"EQ_1khzgain=1\"").out.substr(0, 8),
        "measure,");
    const std::string picture = contents("one.svg");
    for (const char* word : {"<svg", "speaker, mid, -20 dBFS, EQ_1khzgain=1", "input (dBFS)", "</svg>"}) {
        EXPECT_NE(picture.find(word), std::string::npos) << word;
    }
    EXPECT_EQ(picture.find("frequency"), std::string::npos);
}

TEST_F(MeasureTest, SaysWhatIsWrong) {
    std::filesystem::create_directory("folder.csv");
    expect_refusals("zoq measure ", {{"--what loudness", 2, "no measurement is called 'loudness'"},
                                     {"--what ''", 2, "--what"},
                                     {"--excite top", 2, "top"},
                                     {"--level 3", 2, "--level"},
                                     {"--tone 5", 2, "--tone"},
                                     {"--step -6 -30", 2, "--step needs two levels"},
                                     {"--json --csv -", 2, "both want standard output"},
                                     {"--plot a.jpg", 2, "'a.jpg': the name must end in .svg or .png"},
                                     {"--set EQ_9khz=3", 2, "unknown setting 'EQ_9khz', did you mean "},
                                     {"in.wav", 2, "in.wav"},
                                     {"--config missing.txt", 1, "'missing.txt': No such file"},
                                     {"--what latency --csv folder.csv", 1, "'folder.csv': Is a directory"},
                                     {"--what latency --plot nowhere/a.png", 1, "No such file"},
                                     {"-q --what latency >/dev/full", 1, "cannot write"}});
}

}  // namespace
