// The parameter string store, against a map.
#include "audio_parameter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>

#include "tests/host/comma_locale.h"

using android::AudioParameter;
using android::status_t;
using android::String8;

namespace {

constexpr status_t kOk = 0, kMissing = -22, kReplaced = -17, kNoNumber = -38;

String8 text(const std::string& value) {
    return String8(value.c_str());
}

std::string normalised(const std::string& pairs) {
    return AudioParameter(text(pairs)).toString().string();
}

TEST(AudioParameter, SplitsPairsAndSortsThem) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {";;;", ""},
        {"a=1;b", "a=1;b="},
        {"k=1;k=2", "k=2"},
        {"x=y=z", "x=y=z"},
        {"=v", "=v"},
        {"=", "="},
        {";;b=2;;;a=1;", "a=1;b=2"},
        {"\xff=3;z=2;\x01=1;=0", "=0;\x01=1;z=2;\xff=3"},
        {"ab=2;a=1;abc=3;B=0", "B=0;a=1;ab=2;abc=3"},
        {"a =1 ;a=2", "a=2;a =1 "},
        {"k;k=1;k", "k="},
    };
    for (const auto& [pairs, expected] : cases) {
        EXPECT_EQ(normalised(pairs), expected) << pairs;
    }
}

TEST(AudioParameter, AgreesWithAMapOnAnyText) {
    std::mt19937 generator(3);
    for (int n = 0; n < 2000; ++n) {
        std::string pairs;
        for (auto length = generator() % 60; length > 0; --length) {
            pairs += "ab=;\x80"[generator() % 5];
        }
        std::map<std::string, std::string> model;
        for (size_t start = 0; start <= pairs.size();) {
            const size_t end = std::min(pairs.find(';', start), pairs.size());
            const std::string pair = pairs.substr(start, end - start);
            if (!pair.empty()) {
                const size_t equals = std::min(pair.find('='), pair.size());
                model[pair.substr(0, equals)] = pair.substr(std::min(equals + 1, pair.size()));
            }
            start = end + 1;
        }
        const AudioParameter store(text(pairs));
        size_t index = 0;
        for (const auto& [key, value] : model) {
            String8 keyAt, valueAt, found;
            ASSERT_EQ(store.getAt(index++, keyAt, valueAt), kOk);
            ASSERT_EQ(store.get(text(key), found), kOk);
            ASSERT_EQ(keyAt.string(), key) << pairs;
            ASSERT_EQ(valueAt.string(), value);
            ASSERT_EQ(found.string(), value);
        }
        String8 key("kept"), value("kept");
        ASSERT_EQ(store.getAt(index, key, value), kMissing);
        ASSERT_EQ(store.getAt(SIZE_MAX, key, value), kMissing);
        ASSERT_EQ(store.get(String8("absent"), value), kMissing);
        ASSERT_STREQ(key.string(), "kept");
        ASSERT_STREQ(value.string(), "kept");
    }
}

TEST(AudioParameter, AddsReplacesAndRemoves) {
    AudioParameter store;
    EXPECT_EQ(store.add(String8("b"), String8("1")), kOk);
    EXPECT_EQ(store.add(String8("a"), String8("2")), kOk);
    EXPECT_EQ(store.add(String8("c"), String8("x;y")), kOk);
    EXPECT_EQ(store.add(String8("b"), String8("3")), kReplaced);
    EXPECT_STREQ(store.toString().string(), "a=2;b=3;c=x;y");
    EXPECT_EQ(store.remove(String8("a")), kOk);
    EXPECT_EQ(store.remove(String8("a")), kMissing);
    AudioParameter copy(store);
    EXPECT_EQ(copy.remove(String8("b")), kOk);
    EXPECT_EQ(copy.addInt(String8("c"), 7), kReplaced);
    EXPECT_STREQ(copy.toString().string(), "c=7");
    EXPECT_STREQ(store.toString().string(), "b=3;c=x;y");
}

TEST(AudioParameter, CopiesAreOnTheirOwn) {
    AudioParameter store(text("b=2;a=1;c=3"));
    AudioParameter copy(store), assigned(text("z=9"));
    assigned = store;
    store.add(text("a"), text("changed"));
    store.remove(text("c"));
    copy.add(text("0"), text("first"));
    EXPECT_STREQ(store.toString().string(), "a=changed;b=2");
    EXPECT_STREQ(copy.toString().string(), "0=first;a=1;b=2;c=3");
    EXPECT_STREQ(assigned.toString().string(), "a=1;b=2;c=3");
    assigned = AudioParameter();
    EXPECT_STREQ(assigned.toString().string(), "");
}

TEST(AudioParameter, FormatsNumbersIntoTheirBuffers) {
    AudioParameter store;
    EXPECT_EQ(store.addInt(String8("a"), std::numeric_limits<int>::min()), kOk);
    EXPECT_EQ(store.addInt64(String8("b"), std::numeric_limits<long long>::min()), kOk);
    EXPECT_EQ(store.addFloat(String8("c"), 0.1f), kOk);
    EXPECT_EQ(store.addFloat(String8("d"), -3.4028235e38f), kOk);
    EXPECT_EQ(store.addFloat(String8("e"), -HUGE_VALF), kOk);
    EXPECT_STREQ(store.toString().string(),
                 "a=-2147483648;b=-9223372036854775808;c=0.1000000015;d=-340282346638528859811;e=-inf");
}

TEST(AudioParameter, ReadsNumbersAsFarAsTheyGo) {
    struct Case {
        const char* value;
        status_t intStatus;
        int integer;
        status_t floatStatus;
        float number;
    };
    const Case cases[] = {
        {"12abc", kOk, 12, kOk, 12.0f},
        {"abc", kNoNumber, 0, kNoNumber, 0.0f},
        {"", kNoNumber, 0, kNoNumber, 0.0f},
        {" \t+7.9", kOk, 7, kOk, 7.9f},
        {"-", kNoNumber, 0, kNoNumber, 0.0f},
        {".5", kNoNumber, 0, kOk, 0.5f},
        {"0x1p3", kOk, 0, kOk, 8.0f},
        {"1e2", kOk, 1, kOk, 100.0f},
        {"inf", kNoNumber, 0, kOk, HUGE_VALF},
        {"-2147483648", kOk, std::numeric_limits<int>::min(), kOk, -2147483648.0f},
        {"1,5", kOk, 1, kOk, 1.0f},
        // Just above the middle of two floats: rounding to double first would land on it and go down.
        {"1.00000005960464477540", kOk, 1, kOk, 1.0f + std::numeric_limits<float>::epsilon()},
    };
    const auto expect_read = [&cases] {
        for (const Case& c : cases) {
            AudioParameter store;
            store.add(String8("k"), String8(c.value));
            int integer = 99;
            float number = 99.0f;
            EXPECT_EQ(store.getInt(String8("k"), integer), c.intStatus) << c.value;
            EXPECT_EQ(integer, c.integer) << c.value;
            EXPECT_EQ(store.getFloat(String8("k"), number), c.floatStatus) << c.value;
            EXPECT_EQ(number, c.number) << c.value;
            EXPECT_EQ(store.getInt(String8("absent"), integer), kMissing);
            EXPECT_EQ(store.getFloat(String8("absent"), number), kMissing);
            EXPECT_EQ(integer, 0);
            EXPECT_EQ(number, 0.0f);
        }
    };
    expect_read();
    const CommaLocale locale(ZOQ_TEST_LOCALES);
    if (!locale.works()) {
        GTEST_SKIP() << "no locale with a decimal comma";
    }
    expect_read();
    AudioParameter store;
    store.addFloat(String8("k"), 1.5f);
    EXPECT_STREQ(store.toString().string(), "k=1.5000000000");
}

TEST(AudioParameter, TakesLongTexts) {
    const std::string megabyte(1 << 20, 'x');
    EXPECT_EQ(normalised(megabyte + "=" + megabyte + ";a=1"), "a=1;" + megabyte + "=" + megabyte);
    std::string repeated;
    while (repeated.size() < megabyte.size()) {
        repeated += "k=" + std::to_string(repeated.size()) + ";;j=\x01\x7f\r\n;";
    }
    EXPECT_EQ(normalised(repeated + "k=last"), "j=\x01\x7f\r\n;k=last");
    // Distinct keys in falling order, each given twice: a store that moves all for each would need minutes.
    std::string falling, rising;
    for (int key = 99999; key >= 0; --key) {
        falling += std::to_string(100000 + key) + "=old;" + std::to_string(100000 + key) + "=n;";
    }
    for (int key = 0; key < 100000; ++key) {
        rising += std::to_string(100000 + key) + (key < 99999 ? "=n;" : "=n");
    }
    EXPECT_TRUE(normalised(falling) == rising);
}

TEST(AudioParameter, KeepsTheKeyNamesHostsUse) {
    EXPECT_STREQ(AudioParameter::keyRouting, "routing");
    EXPECT_STREQ(AudioParameter::keySamplingRate, "sampling_rate");
    EXPECT_STREQ(AudioParameter::keyFormat, "format");
    EXPECT_STREQ(AudioParameter::keyChannels, "channels");
    EXPECT_STREQ(AudioParameter::keyFrameCount, "frame_count");
    EXPECT_STREQ(AudioParameter::keyInputSource, "input_source");
    EXPECT_STREQ(AudioParameter::keyScreenState, "screen_state");
    EXPECT_STREQ(AudioParameter::keyOutputDevice, "output_device");
    EXPECT_STREQ(AudioParameter::keyFm, "fm");
    EXPECT_STREQ(AudioParameter::keyFmSpeaker, "fm_speaker");
}

}  // namespace
