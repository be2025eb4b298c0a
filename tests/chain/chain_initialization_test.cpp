// The one-call fill with the real modules: what every record holds after it, and what it leaves alone.
#include "chain/chain_initialization.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

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
    template <typename Body>
    void with_each_of(const Records& other, Body body) const {
        body(den, other.den);
        body(tws, other.tws);
        body(eq, other.eq);
        body(drc, other.drc);
        body(vb, other.vb);
        body(x2b, other.x2b);
        body(geq, other.geq);
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

// Both blocks are what the host's routine makes of these gains, for a control grid of 16 kHz and with a release of
// four times that length; the second stages are quicker and a little softer.
TEST(ChainInitialization, CompressorsHaveTheValuesOfTheirGains) {
    const auto records = filled();
    for (const auto& [block, gainDb] :
         {std::pair{records->drc.record, 13.5f}, std::pair{records->x2b.record.headphoneDrc, 6.0f}}) {
        parameterDRC made;
        initialize_dynamicRangeCompression_C(gainDb, &made);
        EXPECT_FLOAT_EQ(block.compThreshold, made.compThreshold);
        EXPECT_FLOAT_EQ(block.compKnee, made.compKnee);
        EXPECT_FLOAT_EQ(block.compMakeup, made.compMakeup);
        EXPECT_FLOAT_EQ(block.compSlope, made.compSlope);
        EXPECT_FLOAT_EQ(block.compAttack, std::pow(made.compAttack, 3.0f));
        EXPECT_FLOAT_EQ(block.compRelease, std::pow(made.compRelease, 0.75f));
        EXPECT_FLOAT_EQ(block.limAttack, std::exp(-1.0f / 1.12f));   // 0.07 ms
        EXPECT_FLOAT_EQ(block.limRelease, std::exp(-1.0f / 16.0f));  // 1 ms
    }
}

// From any contents to the same bytes: every field is written, none is read, and nothing beside the records is.
TEST(ChainInitialization, WritesEveryByteOfTheRecordsAndNoOther) {
    const auto first = filled(0x5a), second = filled(0xa5);
    first->with_each_of(*second, [](const auto& a, const auto& b) {
        EXPECT_TRUE(same(a.record, b.record));
        for (const auto* guard : {a.before, a.after}) {
            EXPECT_TRUE(std::all_of(guard, guard + kGuard, [](unsigned char byte) { return byte == 0x5a; }));
        }
    });
    parameterVB bass;
    factory_contents(200.0f, &bass);
    EXPECT_TRUE(same(filled(0x5a, 200.0f)->vb.record, bass));
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
