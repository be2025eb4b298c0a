// Every setting, end to end: a file rendered with it sounds as the setting says, on its route alone.
#include "tests/tools/command.h"

using namespace command;

namespace {

using SettingsHeardTest = InEmptyFolder;

constexpr int kRate = 48000;

struct Channels {
    double left, right;
};

// Levels of a sine that stands in one channel or, with both, in both.
Channels levels(const Sound& output, double hz) {
    return {level_db(output, 0, hz), level_db(output, 1, hz)};
}

Sound left_only(Sound sound) {
    for (size_t i = 1; i < sound.values.size(); i += 2) {
        sound.values[i] = 0;
    }
    return sound;
}

double rms_db(const Sound& sound, int channel, size_t first, size_t last) {
    double sum = 0.0;
    for (size_t i = first; i < last; ++i) {
        sum += std::pow(sound.at(i, channel) / 32768.0, 2);
    }
    return 10.0 * std::log10(sum / static_cast<double>(last - first) + 1e-20);
}

// A voice as the engine knows one: a rich tone whose level goes up and down with the syllables.
Sound voice(size_t frames) {
    Sound sound = silence(frames);
    for (size_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / kRate;
        double value = 0.0;
        for (int harmonic = 1; harmonic <= 20; ++harmonic) {
            value += tone_at(t, 150.0 * harmonic) / harmonic;
        }
        value *= 0.1 * std::pow(0.5 + 0.5 * tone_at(t, 4.0), 2);
        sound.values[2 * i] = sound.values[2 * i + 1] = static_cast<int16_t>(std::lround(32768.0 * value));
    }
    return sound;
}

TEST_F(SettingsHeardTest, EqualizerBandsOnTheirRoute) {
    const std::pair<const char*, double> bands[] = {{"62hz", 62.5},   {"125hz", 125.0}, {"250hz", 250.0},
                                                    {"500hz", 500.0}, {"1khz", 1000.0}, {"2khz", 2000.0},
                                                    {"4khz", 4000.0}, {"8khz", 8000.0}, {"16khz", 16000.0}};
    // Tones at all the centres at once, two octaves and more from the band that moves: a band reaches its gain at its
    // centre, a quarter of it at most there.
    Sound all = silence(2 * kRate);
    for (const auto& [name, hz] : bands) {
        const Sound one = tone(2 * kRate, hz, 0.01);
        std::transform(all.values.begin(), all.values.end(), one.values.begin(), all.values.begin(),
                       [](int a, int b) { return static_cast<int16_t>(a + b); });
    }
    for (const std::string route : {"speaker", "headphone"}) {
        const std::string base = "--set VB_boostlin=0 --route " + route;
        const Sound flat = rendered(all, base);
        const std::string own = route == "speaker" ? "EQ_" : "Headphone_EQ_";
        const std::string other = route == "speaker" ? "Headphone_EQ_" : "EQ_";
        for (const auto& [name, hz] : bands) {
            const Sound raised = rendered(all, base + " --set " + own + name + "gain=6");
            for (const auto& [otherName, otherHz] : bands) {
                const double change = level_db(raised, 0, otherHz) - level_db(flat, 0, otherHz);
                const double octaves = std::abs(std::log2(otherHz / hz));
                if (octaves < 0.1) {
                    EXPECT_NEAR(change, 6.0, 0.1) << route << name;
                } else if (octaves > 1.9) {
                    EXPECT_LT(std::abs(change), 1.5) << route << name << " at " << otherHz;
                }
            }
        }
        EXPECT_TRUE(rendered(all, base + " --set " + other + "1khzgain=6") == flat) << route;
    }
}

TEST_F(SettingsHeardTest, BassAndTrebleOnTheLoudspeaker) {
    // The virtual bass answers a low tone with its overtones.
    const Sound low = tone(2 * kRate, 62.5, 0.2);
    const double without = level_db(rendered(low, "--set VB_boostlin=0"), 0, 125.0);
    const double half = level_db(rendered(low, "--set VB_boostlin=50"), 0, 125.0);
    const double full = level_db(rendered(low, "--set VB_boostlin=100"), 0, 125.0);
    EXPECT_GT(half, without + 20.0);
    EXPECT_NEAR(full - half, 6.02, 0.5);
    // Treble adds 0.02 x of a 10 kHz high-pass: 1 + 2 at the top of the band.
    const Sound high = tone(2 * kRate, 20000.0, 0.05), middle = tone(2 * kRate, 400.0, 0.05);
    const std::string flat = "--set VB_boostlin=0 ", treble = flat + "--set EQ_trebleBoost=100";
    EXPECT_NEAR(level_db(rendered(high, treble), 0, 20000.0) - level_db(rendered(high, flat), 0, 20000.0),
                20.0 * std::log10(3.0), 0.6);
    EXPECT_LT(level_db(rendered(middle, treble), 0, 400.0) - level_db(rendered(middle, flat), 0, 400.0), 0.5);
    for (const char* set :
         {"VB_boostlin=100", "EQ_trebleBoost=100", "DS_stereoWidth=100", "CompressionGain=100"}) {
        EXPECT_TRUE(rendered(low, std::string("--route headphone --set ") + set) ==
                    rendered(low, "--route headphone"))
            << set;
    }
}

TEST_F(SettingsHeardTest, WidthOnBothRoutes) {
    // What only one side plays: the wider, the more the loudspeakers' difference outweighs their sum ...
    const Sound side = left_only(tone(2 * kRate, 500.0, 0.1));
    const auto difference = [&](const char* width) {
        Sound output = rendered(side, std::string("--set VB_boostlin=0 --set DS_stereoWidth=") + width);
        for (size_t i = 0; i < output.values.size(); i += 2) {
            const int left = output.values[i], right = output.values[i + 1];
            output.values[i] = static_cast<int16_t>(left - right);
            output.values[i + 1] = static_cast<int16_t>(left + right);
        }
        const Channels sides = levels(output, 500.0);
        return sides.left - sides.right;
    };
    EXPECT_NEAR(difference("1"), 0.0, 1.0);
    EXPECT_GT(difference("50"), difference("1") + 3.0);
    EXPECT_GT(difference("100"), difference("50") + 3.0);
    // ... and the far ear hears what only the near one got without the room.
    const auto far = [&](const char* width) {
        const Channels ears =
            levels(rendered(side, std::string("--route headphone --set HP_SurroundWidth=") + width), 500.0);
        return ears.right - ears.left;
    };
    EXPECT_LT(far("0"), -40.0);
    EXPECT_GT(far("50"), -20.0);
    EXPECT_GT(std::abs(far("100") - far("50")), 0.3);
    EXPECT_TRUE(rendered(side, "--set HP_SurroundWidth=100") == rendered(side, ""));
}

TEST_F(SettingsHeardTest, SpeechInTheCentreOnBothRoutes) {
    const Sound centred = voice(4 * kRate), aside = left_only(centred);
    for (const char* route : {"--route speaker --set VB_boostlin=0", "--route headphone"}) {
        const auto gain = [&](const Sound& sound) {
            const std::string set = std::string(route) + " --set DEN_centspeechgain=";
            return rms_db(rendered(sound, set + "100"), 0, kRate, 3 * kRate) -
                   rms_db(rendered(sound, set + "0"), 0, kRate, 3 * kRate);
        };
        EXPECT_GT(gain(centred), 2.0) << route;
        EXPECT_LT(std::abs(gain(aside)), 0.5) << route;
    }
}

TEST_F(SettingsHeardTest, CompressionOnBothRoutes) {
    const Sound quiet = tone(2 * kRate, 1000.0, 0.02), loud = tone(2 * kRate, 1000.0, 0.9);
    const std::pair<const char*, const char*> routes[] = {
        {"--route speaker --set VB_boostlin=0 --set CompressionGain=", "18"},
        {"--route headphone --set Headphone_CompressionGain=", "20"}};
    for (const auto& [options, fullDb] : routes) {
        const auto level = [&, options = options](const Sound& sound, const char* percent) {
            return level_db(rendered(sound, std::string(options) + percent), 0, 1000.0);
        };
        // Half of the full gain lifts what is quiet whole and what is loud not half as far.
        const double lift = level(quiet, "50") - level(quiet, "0");
        EXPECT_NEAR(lift, std::atof(fullDb) / 2.0, 1.0) << options;
        EXPECT_LT(level(loud, "50") - level(loud, "0"), 0.6 * lift) << options;
    }
}

}  // namespace
