// The one-call fill with the real modules: what every record holds after it, and what it leaves alone.
#include "chain/chain_initialization.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "modules/den/den_tables.h"
#include "modules/tws/tws_tables.h"
#include "modules/x2b/x2b_tables.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

constexpr size_t kGuard = 64;

template <typename Record>
struct Guarded {
    unsigned char before[kGuard];
    Record record;
    unsigned char after[kGuard];
};

// All bytes, guards included, begin as one value, which no record's contents could equal by chance.
struct Records {
    Guarded<parameterDEN> den;
    Guarded<parameterTWS> tws;
    Guarded<parameterEQ> eq;
    Guarded<parameterDRC> drc;
    Guarded<parameterVB> vb;
    Guarded<parameterX2B> x2b;
    Guarded<parameterGEQ> geq;

    void fill(float cutoffHz) {
        stereoWidening_initialization(cutoffHz, &den.record, &tws.record, &eq.record, &drc.record, &vb.record,
                                      &x2b.record, &geq.record);
    }
};
static_assert(std::is_trivially_copyable_v<Records>);

std::unique_ptr<Records> filled(int byte = 0x5a, float cutoffHz = 80.0f) {
    auto records = std::make_unique<Records>();
    std::memset(static_cast<void*>(records.get()), byte, sizeof(Records));
    records->fill(cutoffHz);
    return records;
}

template <typename Record>
bool same(const Record& a, const Record& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

template <typename Record>
void expect_guards(const Guarded<Record>& guarded, unsigned char byte) {
    const auto untouched = [byte](unsigned char value) { return value == byte; };
    EXPECT_TRUE(std::all_of(guarded.before, guarded.before + kGuard, untouched));
    EXPECT_TRUE(std::all_of(guarded.after, guarded.after + kGuard, untouched));
}

using Block = std::array<float, 14>;

Block block(const parameterDRC& drc) {
    Block values;
    std::memcpy(values.data(), &drc, sizeof values);
    return values;
}

// Hops of noise through the chain; before each the caller may do something.
template <typename Before>
std::vector<float> played(Records& records, float channels, bool headphone, Before before) {
    const std::vector<float> input = signals::noise(11, 24 * kFrameSamples, 0.3f);
    std::vector<float> output;
    for (size_t hop = 0; hop + 2 < 24; ++hop) {
        before(hop);
        float in[kChainChannels * kFrameSamples] = {}, out[2 * kHopSamples] = {};
        std::copy_n(&input[hop * kFrameSamples], 2 * kFrameSamples, in);
        stereoWidening_frame(in, channels, headphone ? 1 : 0, &records.den.record, &records.tws.record,
                             &records.eq.record, &records.drc.record, &records.vb.record, &records.x2b.record,
                             &records.geq.record, out);
        output.insert(output.end(), out, out + 2 * kHopSamples);
    }
    return output;
}

}  // namespace

TEST(ChainInitialization, DialogueEnhancement) {
    const auto records = filled();
    const parameterDEN& den = records->den.record;
    EXPECT_EQ(den.smoothFactor, 0.8f);
    EXPECT_EQ(den.centerSpeechGain, 2.0f);
    EXPECT_EQ(den.baseGain, 1.0f);
    EXPECT_EQ(den.wideAmount, 3.0f);
    EXPECT_EQ(den.stereoOutput, 0.0f);
    EXPECT_TRUE(same(den.wideCurve, kWideCurve));
    constexpr int kEnds[kDenBands] = {
        2,  4,  6,  8,  10, 12, 14,  16,  18,  20,  22,  24,  26,  28,  30,  32,  34,  36,  38,  40,  42, 48,
        54, 60, 68, 76, 85, 95, 106, 119, 133, 148, 166, 185, 207, 230, 257, 287, 320, 357, 398, 444, 513};
    constexpr int kWidths[kDenBands] = {2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,
                                        2,  2,  2,  2,  2,  2,  6,  6,  6,  8,  8,  9,  10, 11, 13,
                                        14, 15, 18, 19, 22, 23, 27, 30, 33, 37, 41, 46, 69};
    for (int j = 0; j < kDenBands; ++j) {
        EXPECT_EQ(den.bandEnd[j], float(kEnds[j])) << j;
        EXPECT_EQ(den.bandWidth[j], float(kWidths[j])) << j;
        EXPECT_EQ(den.bandStart[j], float(kEnds[j] - kWidths[j] + 1)) << j;
    }
}

TEST(ChainInitialization, WideningAndRooms) {
    const auto records = filled();
    const parameterTWS& tws = records->tws.record;
    EXPECT_EQ(tws.widthGain, 1.0f);
    EXPECT_EQ(tws.stereoWidth, 1.0f);
    EXPECT_EQ(tws.directDelay, 180.0f);
    EXPECT_TRUE(same(tws.sameSideFilter, kSameSideFilter));
    EXPECT_TRUE(same(tws.crossFeedFilter, kCrossFeedFilter));

    const parameterX2B& x2b = records->x2b.record;
    EXPECT_EQ(x2b.numPartitions, 4.0f);
    EXPECT_TRUE(same(x2b.ipsiResponse, kIpsiResponse));
    EXPECT_TRUE(same(x2b.contraResponse, kContraResponse));
    EXPECT_EQ(x2b.surroundWidth, 0.0f);
    const Block headphone = {-9.375f, 4.6875f, 1.9952623f, -0.75f,      0.9793822f, 0.99996096f, -1.0f,
                             0.5f,    1.0f,    -0.9f,      0.40948412f, 0.9394131f, -60.0f,      0.5f};
    EXPECT_EQ(block(x2b.headphoneDrc), headphone);
}

TEST(ChainInitialization, EqualizersAndCompressor) {
    const auto records = filled();
    const Block speaker = {-19.207317f, 9.603659f, 4.7315125f, -0.8333333f, 0.9692332f, 0.9999479f, -1.0f,
                           0.5f,        1.0f,      -0.9f,      0.40948412f, 0.9394131f, -60.0f,     0.5f};
    EXPECT_EQ(block(records->drc.record), speaker);

    const parameterEQ& eq = records->eq.record;
    EXPECT_EQ(eq.peakSectionCount, 0.0f);
    EXPECT_EQ(eq.trebleSectionCount, 1.0f);
    EXPECT_EQ(eq.trebleGain, 0.5f);
    EXPECT_EQ(eq.finalPassCount, 0.0f);
    float treble[kSectionMatrixFloats] = {};
    treble[0] = 0.5658262f, treble[3] = -0.5658262f, treble[9] = 1.0f, treble[12] = -0.1316525f;
    for (int i = 0; i < kSectionMatrixFloats; ++i) {
        EXPECT_EQ(eq.peakSos[i], 0.0f) << i;
        EXPECT_EQ(eq.trebleSos[i], treble[i]) << i;
    }
    const float identity[6] = {1, 0, 0, 1, 0, 0};
    EXPECT_TRUE(std::equal(identity, identity + 6, eq.finalSos));

    const parameterGEQ& geq = records->geq.record;
    EXPECT_EQ(geq.bandCount, 9.0f);
    EXPECT_EQ(geq.bandQ, 1.4142135f);
    const float warps[kGeqBands] = {0.0040906384f, 0.0081814136f, 0.016363923f, 0.03273661f, 0.06554347f,
                                    0.1316525f,    0.26794919f,   0.57735032f,  1.7320509f};
    for (int k = 0; k < kGeqBands; ++k) {
        EXPECT_EQ(geq.bandGainDb[k], 0.0f) << k;
        EXPECT_EQ(geq.bandWarp[k], warps[k]) << k;
    }
}

TEST(ChainInitialization, VirtualBass) {
    const auto records = filled();
    const parameterVB& vb = records->vb.record;
    const float scalars[] = {vb.harmonicGain,
                             vb.boostLin,
                             vb.compSlope,
                             vb.compOffsetDb,
                             vb.outputGain,
                             vb.lowpassSections,
                             vb.inputHighpassSections,
                             vb.bandHighpassSections,
                             vb.harmonicLowpassSections,
                             vb.fastAttack,
                             vb.fastRelease,
                             vb.slowAttack,
                             vb.slowRelease,
                             vb.gainSmoothing,
                             vb.outputHighpassSections};
    const float expected[] = {1.9952623f, 1.9952623f, 0.2f,       12.0f,      1.3182567f,
                              2.0f,       0.0f,       0.0f,       0.0f,       0.0019304542f,
                              0.9394131f, 0.9993752f, 0.9993752f, 0.9937695f, 2.0f};
    for (size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(scalars[i], expected[i]) << i;
    }
}

// The low-pass's first pole pair tells which set is in place; the sets themselves are the module's tests' matter.
TEST(ChainInitialization, EverySelectorTakesItsSet) {
    const auto cutoff_of = [](float selector) {
        const auto records = filled(0x5a, selector);
        for (const int hz : {60, 70, 80, 100, 120, 150, 180, 200, 220, 250}) {
            const double K = std::tan(std::numbers::pi * hz / 48000.0), Q = 0.5411961;
            const double a1 = 2.0 * (K * K - 1.0) / (1.0 + K / Q + K * K);
            if (std::fabs(double(records->vb.record.lowpassSos[12]) - a1) < 2e-7) {
                return hz;
            }
        }
        return 0;
    };
    for (const float hz : {60.0f, 70.0f, 80.0f, 100.0f, 120.0f, 150.0f, 180.0f, 200.0f, 220.0f, 250.0f}) {
        EXPECT_EQ(cutoff_of(hz), int(hz));
        EXPECT_EQ(cutoff_of(hz + 0.9f), int(hz));
        EXPECT_EQ(cutoff_of(hz - 0.1f), 120) << hz;
        EXPECT_EQ(cutoff_of(hz + 1.0f), 120) << hz;
    }
    for (const float odd : {0.0f, -80.0f, 3e9f, -1e30f, HUGE_VALF, NAN}) {
        EXPECT_EQ(cutoff_of(odd), 120) << odd;
    }
}

// From any contents to the same bytes: every field is written, none is read, and nothing beside the records is.
TEST(ChainInitialization, WritesEveryByteOfTheRecordsAndNoOther) {
    const auto first = filled(0x5a), second = filled(0xa5);
    EXPECT_TRUE(same(first->den.record, second->den.record));
    EXPECT_TRUE(same(first->tws.record, second->tws.record));
    EXPECT_TRUE(same(first->eq.record, second->eq.record));
    EXPECT_TRUE(same(first->drc.record, second->drc.record));
    EXPECT_TRUE(same(first->vb.record, second->vb.record));
    EXPECT_TRUE(same(first->x2b.record, second->x2b.record));
    EXPECT_TRUE(same(first->geq.record, second->geq.record));
    expect_guards(first->den, 0x5a);
    expect_guards(first->tws, 0x5a);
    expect_guards(first->eq, 0x5a);
    expect_guards(first->drc, 0x5a);
    expect_guards(first->vb, 0x5a);
    expect_guards(first->x2b, 0x5a);
    expect_guards(first->geq, 0x5a);
    const auto before = std::make_unique<Records>(*first);
    first->fill(80.0f);
    EXPECT_TRUE(same(*first, *before));
}

// What a host and hops rewrite comes back.
TEST(ChainInitialization, RestoresWhatHostAndChainRewrite) {
    const auto factory = filled(), used = filled();
    played(*used, 2.0f, false, [&](size_t) {
        used->den.record.centerSpeechGain = 1.0f;
        used->tws.record.stereoWidth = 0.5f;
        used->x2b.record.surroundWidth = 0.7f;
        used->vb.record.boostLin = 2.5f;
        used->eq.record.trebleGain = 0.3f;
        std::fill_n(used->geq.record.bandGainDb, kGeqBands, 3.0f);
        initialize_dynamicRangeCompression_C(12.6f, &used->drc.record);
        initialize_dynamicRangeCompression_C(14.0f, &used->x2b.record.headphoneDrc);
    });
    EXPECT_EQ(used->den.record.wideAmount, 0.0f);
    EXPECT_EQ(used->tws.record.widthGain, 0.8f);
    used->fill(80.0f);
    EXPECT_TRUE(same(*used, *factory));
}

// A fill between two hops is no reset: the same records give the hops that would have come without it.
TEST(ChainInitialization, LeavesTheModulesStatesAlone) {
    for (const bool headphone : {false, true}) {
        for (const float channels : {2.0f, 1.0f}) {
            const auto run = [&](bool again) {
                const auto records = filled();
                stereoWidening_frame_initialize();
                return played(*records, channels, headphone, [&](size_t hop) {
                    if (again && hop % 5 == 4) {
                        records->fill(80.0f);
                    }
                    // What the factory leaves idle: a room, and bands of the equalizer.
                    records->x2b.record.surroundWidth = 0.7f;
                    records->geq.record.bandGainDb[2] = 6.0f;
                });
            };
            const std::vector<float> without = run(false), with = run(true);
            EXPECT_EQ(with, without) << headphone << channels;
            EXPECT_GT(*std::max_element(with.begin(), with.end()), 0.1f);
        }
    }
}
