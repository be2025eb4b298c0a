// Configurations from settings, files and equalizer texts; the fit against the engine's own sound.
#include <gtest/gtest.h>
#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>
#include <random>

#include "chain/chain_initialization.h"
#include "tests/tools/settings_probe.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/tuning/config_write.h"
#include "tools/zoq/tuning/eq_text.h"

namespace zoq {
namespace {

constexpr double kPi = std::numbers::pi;

// The level of the graphic equalizer at a frequency, by the sound it makes: the transform of what it answers to an
// impulse.
class EngineResponse {
  public:
    explicit EngineResponse(const BandGains& gainDb) {
        android::parameterGEQ geq;
        android::factory_contents(&geq);
        std::copy(gainDb.begin(), gainDb.end(), geq.bandGainDb);
        android::graphicalEQ_init();
        std::array<float, 2 * android::kHopSamples> hop = {1.0f};
        for (int n = 0; n < 64; ++n) {
            android::graphicalEQ(hop.data(), 1.0f, geq.bandCount, geq.bandGainDb, geq.bandQ, geq.bandWarp);
            answer_.insert(answer_.end(), hop.begin(), hop.begin() + android::kHopSamples);
            hop.fill(0.0f);
        }
    }

    double db(double hz) const {
        const std::complex<double> step = std::polar(1.0, -2.0 * kPi * hz / 48000.0);
        std::complex<double> sum = 0.0, turn = 1.0;
        for (const float sample : answer_) {
            sum += double(sample) * turn;
            turn *= step;
        }
        return 20.0 * std::log10(std::abs(sum));
    }

  private:
    std::vector<float> answer_;
};

EqFit fit(const EqTarget& target, double limitDb = 12.0) {
    EqFitOptions options;
    options.limitDb = limitDb;
    return fit_bands([&target](double hz) { return target.db(hz); }, options);
}

TEST(EqFit, RecoversTheGainsBehindTheEnginesOwnSound) {
    constexpr double kOffset = -7.3;
    for (const BandGains& gains :
         {BandGains{0, 0, 6, 0, 0, 0, 0, 0, 0}, BandGains{3, -2, 1.5, 0, -4, 2.25, 6, -8, 5},
          BandGains{-11, 9, -7, 10, -10, 8, -6, 11, -9}, BandGains{6, 6, 6, 6, 6, 6, 6, 6, 6}}) {
        const EngineResponse response(gains);
        std::string text = "GraphicEQ:";
        for (double hz = 30.0; hz < 21000.0; hz *= std::exp2(1.0 / 24.0)) {
            char point[40];
            std::snprintf(point, sizeof point, " %.3f %.4f;", hz, response.db(hz) + kOffset);
            text += point;
        }
        const EqFit found = fit(read_eq_text(text, "eq"));
        for (size_t band = 0; band < gains.size(); ++band) {
            EXPECT_NEAR(found.gainDb[band], gains[band], 0.05) << "band " << band;
        }
        EXPECT_NEAR(found.levelDb, kOffset, 0.05);
        EXPECT_LT(found.rmsDb, 0.02);
    }
    // What is flat leaves every band alone, whatever its level.
    EXPECT_EQ(fit(read_eq_text("GraphicEQ: 100 -5.5", "eq")).gainDb, BandGains{});
}

// Mean square difference over the logarithm of frequency, with the best level, by the engine's sound.
double misfit(const EqTarget& target, const BandGains& gains) {
    const EngineResponse response(gains);
    std::vector<double> difference;
    double mean = 0.0, sum = 0.0;
    for (double hz = 40.0; hz <= 20000.0; hz *= std::exp2(1.0 / 12.0)) {
        difference.push_back(response.db(hz) - target.db(hz));
        mean += difference.back();
    }
    mean /= double(difference.size());
    for (const double d : difference) {
        sum += (d - mean) * (d - mean);
    }
    return sum / double(difference.size());
}

TEST(EqFit, NoGainWithinTheLimitComesNearer) {
    const EqTarget target = read_eq_text(
        "Filter 1: ON LSC Fc 105 Hz Gain 6 dB Q 0.7\n"
        "Filter 2: ON PK Fc 1400 Hz Gain -4 dB Q 1.2\n"
        "Filter 3: ON PK Fc 6000 Hz Gain 7 dB Q 2\n",
        "eq");
    for (const double limit : {12.0, 3.0}) {
        const EqFit found = fit(target, limit);
        const double least = misfit(target, found.gainDb);
        bool limited = false;
        for (size_t band = 0; band < found.gainDb.size(); ++band) {
            EXPECT_LE(std::fabs(found.gainDb[band]), limit);
            limited = limited || std::fabs(found.gainDb[band]) == limit;
            for (const double change : {-0.5, 0.5}) {
                BandGains other = found.gainDb;
                other[band] = std::clamp(other[band] + change, -limit, limit);
                EXPECT_GE(misfit(target, other), least - 1e-4) << "band " << band << " by " << change;
            }
        }
        EXPECT_EQ(limited, limit < 12.0);
    }
}

double level(const std::string& filter, double hz) {
    return read_eq_text("Filter: ON " + filter, "eq").db(hz);
}

TEST(EqText, FiltersHaveTheLevelsTheirNamesPromise) {
    EXPECT_NEAR(level("PK Fc 1000 Hz Gain -4 dB Q 2", 1000), -4.0, 1e-9);
    EXPECT_NEAR(level("PK Fc 1000 Hz Gain -4 dB Q 2", 20), 0.0, 0.01);
    EXPECT_NEAR(level("PEQ Fc 100 Hz Gain 6 dB BW Oct 1", 100 * std::sqrt(2.0)), 3.0, 0.01);
    EXPECT_NEAR(level("LSC Fc 100 Hz Gain 6 dB Q 0.7", 100), 3.0, 1e-6);
    EXPECT_NEAR(level("LSC Fc 100 Hz Gain 6 dB Q 0.7", 1), 6.0, 0.01);
    EXPECT_NEAR(level("LSC Fc 100 Hz Gain 6 dB Q 0.7", 10000), 0.0, 0.01);
    EXPECT_NEAR(level("HSQ Fc 1000 Hz Gain -6 dB Q 0.7", 1000), -3.0, 1e-6);
    EXPECT_NEAR(level("HS Fc 1000 Hz Gain -6 dB Q 0.7", 23000), -6.0, 0.01);
    EXPECT_NEAR(level("HSC 6 dB Fc 1000 Hz Gain 6 dB", 1000), 3.0, 1e-6);
    EXPECT_NEAR(level("LS 6dB Fc 100 Hz Gain 6 dB", 100 * std::pow(10.0, 6.0 / 40.0)), 3.0, 1e-6);
    EXPECT_NEAR(level("LP Fc 1000 Hz", 1000), -3.0103, 1e-3);
    EXPECT_NEAR(level("HPQ Fc 1000 Hz Q 2", 1000), 6.0206, 1e-3);
    EXPECT_NEAR(level("HP Fc 1000 Hz", 100), -40.0, 0.1);
    EXPECT_NEAR(level("BP Fc 1000 Hz Q 1", 1000), 0.0, 1e-9);
    EXPECT_EQ(level("NO Fc 1000 Hz", 1000), -60.0);
    EXPECT_EQ(level("AP Fc 1000 Hz Q 1", 1000), 0.0);
}

TEST(EqText, ReadsTheCommonWritings) {
    const EqTarget target = read_eq_text(
        "\xEF\xBB\xBF# measured\r\n"
        "Filter Settings file\r\n"
        "Equaliser: Generic\r\n"
        "Preamp: -6.2 dB\r\n"
        "Filter  1: ON  PK       Fc   1,000 Hz  Gain  \xE2\x88\x92"
        "2,5dB  Q  8.00\r\n"
        "Filter  2: OFF PK nonsense\r\n"
        "Filter  3: ON  None\r\n"
        "filter: on pk fc 2kHz gain +1.5 dB q 8\r\n",
        "eq");
    EXPECT_EQ(target.sections.size(), 2u);
    EXPECT_EQ(target.preampDb, -6.2);
    EXPECT_EQ(target.remarks.size(), 2u);
    EXPECT_NEAR(target.db(1000), -2.5, 0.1);
    EXPECT_NEAR(target.db(2000), 1.5, 0.1);

    const EqTarget graph = read_eq_text("GraphicEQ: 20 -0.5; 80 1.5; 1000 0;", "eq");
    EXPECT_NEAR(graph.db(40), 0.5, 1e-9);
    EXPECT_EQ(graph.db(10), -0.5);
    EXPECT_EQ(graph.db(5000), 0.0);
}

TEST(EqText, ErrorsNameTheLine) {
    const struct {
        const char *text, *message;
    } kCases[] = {
        {"Preamp: -6 dB", "no 'Filter'"},
        {"\nFilter 1: ON PK Fc 100 Hz Gain 3 dB", "line 2: the filter has no Q"},
        {"Filter 1: ON PK Gain 3 dB Q 1", "line 1: the filter has no Fc"},
        {"Filter 1: ON PK Fc 100 Hz Q 1", "line 1: the filter has no Gain"},
        {"Filter 1: ON PK Fc x Gain 3 dB Q 1", "Fc is not followed by a number: 'x'"},
        {"Filter 1: ON PK Fc 100 Hz Gain", "Gain is not followed by a number"},
        {"Filter 1: ON PK Fc 100 dB Gain 3 Q 1", "is no number to use for Fc"},
        {"Filter 1: ON PK Fc 30 kHz Gain 3 dB Q 1", "between 0 and 24000 Hz"},
        {"Filter 1: ON PK Fc 100 Hz Gain 3 dB Q 0", "must be above 0"},
        {"Filter 1: ON PK Fc 100 Hz Gain 300 dB Q 1", "between -100 and 100"},
        {"Filter 1: ON PK Fc 100 Hz Gain 3 dB Q 1 loud", "'loud' is not understood"},
        {"Filter 1: ON PK Fc 100 Hz Gain 3 dB BW 1", "without 'Oct'"},
        {"Filter 1: ON XY Fc 100 Hz", "'xy' is no known filter type"},
        {"Channel: L", "both channels"},
        {"Include: other.txt", "cannot be followed"},
        {"GraphicEQ: 20 1; 20 2", "ascend"},
        {"GraphicEQ: 20", "not followed by a number"},
        {"GraphicEQ: 20 1 2", "'2' is too much"},
        {"GraphicEQ: ;", "no points"},
        {"Preamp: loud", "Preamp is not followed"},
    };
    for (const auto& c : kCases) {
        try {
            read_eq_text(c.text, "eq.txt");
            ADD_FAILURE() << c.text;
        } catch (const Failure& failure) {
            const std::string message = failure.what();
            EXPECT_EQ(message.find("eq.txt: "), 0u);
            EXPECT_NE(message.find(c.message), std::string::npos) << message;
        }
    }
}

// Hostile texts end in a curve or in a Failure, and every curve can be fitted.
TEST(EqText, AnyTextIsReadOrRefused) {
    TextMaker make(30);
    static constexpr const char* kWords[] = {
        "Filter 1:", "ON",  "PK",         "LS",    "HSC",     "Fc",    "Gain", "Q",  "105 Hz",
        "-2,1",      "dB",  "1e9",        "nan",   "0",       ";",     "\n",   "BW", "Oct",
        "12",        "kHz", "GraphicEQ:", "20 1;", "Preamp:", "1,000", "inf"};
    int curves = 0;
    for (int n = 0; n < 4000; ++n) {
        std::string text = make.below(2) == 0 ? "Filter: ON PK Fc 105 Gain 2 Q 1\n" : "";
        for (size_t words = make.below(24); words > 0; --words) {
            text += make.one_of(kWords) + (make.below(9) == 0 ? make.noise(3) : "") + " ";
        }
        try {
            const EqTarget target = read_eq_text(text, "eq");
            for (const double hz : {20.0, 1000.0, 20000.0}) {
                ASSERT_TRUE(std::isfinite(target.db(hz))) << text;
            }
            curves += 1;
            if (curves % 50 == 0) {
                const EqFit found = fit(target);
                ASSERT_TRUE(std::isfinite(found.rmsDb)) << text;
            }
        } catch (const Failure&) {
        }
    }
    EXPECT_GT(curves, 200);
}

TEST(ConfigWrite, MergesAndWritesWhatTheEngineThenHolds) {
    Settings settings;
    add_file(settings, "compressionGain = 40; VB_boostlin 10dB, EQ_62hzgain 3", "base.txt");
    add_gains(settings, {1, 0, -2.5, 0, 0, 0, 0, 0, 12}, EqRoute::kHeadphone);
    add_setting(settings, "vb_BOOSTLIN=55", Dialect::kFile);
    add_setting(settings, "volume_index_switch=9", Dialect::kFile);
    const std::string text = checked_text(settings, Dialect::kFile);

    android::b_parameterMEM = {};
    start_engine(text);
    const android::parameterMEM& mem = android::b_parameterMEM;
    EXPECT_EQ(mem.compressionGain, 40.0f);
    EXPECT_EQ(mem.vbBoostlin, 55.0f);
    EXPECT_EQ(mem.eqBandGain[0], 3.0f);
    EXPECT_EQ(mem.headphoneEqBandGain[0], 1.0f);
    EXPECT_EQ(mem.headphoneEqBandGain[2], -2.5f);
    EXPECT_EQ(mem.headphoneEqBandGain[8], 12.0f);
    EXPECT_EQ(mem.volumeIndexSwitch, 9);

    Settings both;
    add_gains(both, {1, 2, 3, 4, 5, 6, 7, 8, 9}, EqRoute::kBoth);
    EXPECT_EQ(both.size(), 18u);
    EXPECT_EQ(checked_text({{0, "STEREOWIDEN_Enable=true"}, {2, "7"}}, Dialect::kString),
              "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=7");
}

TEST(ConfigWrite, RefusesWhatTheEngineWouldReadOtherwise) {
    Settings settings;
    for (const char* pair :
         {"VB_boostlin", "VB_bostlin=3", "VB_boostlin=", "VB_boostlin=2,5", "VB_boostlin=3dB",
          "VB_boostlin=101", "VB_boostlin=nan", "VB_boostlin=3 DS_stereoWidth=4", "EQ_62hzgain=-25",
          "output_device=2", "HIFIPARA=STEREOWIDEN_Enable=true", "volume_index_switch=1.5"}) {
        EXPECT_THROW(add_setting(settings, pair, Dialect::kFile), UsageFailure) << pair;
    }
    EXPECT_THROW(add_setting(settings, "volume_index_switch=3", Dialect::kString), UsageFailure);
    EXPECT_THROW(add_setting(settings, "HIFIPARA=true", Dialect::kString), UsageFailure);
    for (const char* text : {"VB_boostlin: 3", "compressionGain = 170", "headphone_compressionGain=250",
                             "EQ_62hzgain -30", "compressionGain = 70\vVB_boostlin = 3"}) {
        EXPECT_THROW(add_file(settings, text, "base.txt"), Failure) << text;
    }
    EXPECT_TRUE(settings.empty());
}

}  // namespace
}  // namespace zoq
