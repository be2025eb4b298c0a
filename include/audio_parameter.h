// Parameter strings: pairs of key "=" value separated by ";", as a store sorted by key.
//
// Control threads only: every operation allocates.
#pragma once

#include <utils/Errors.h>
#include <utils/SortedVector.h>
#include <utils/String8.h>
#include <cstddef>

namespace android {

class AudioParameter {
  public:
    virtual ~AudioParameter();
    AudioParameter();
    // Splits at every ";"; a key is the text before the first "=", a token without one has the empty value;
    // the last occurrence of a key wins.
    AudioParameter(const String8& keyValuePairs);

    static const char* keyRouting;
    static const char* keySamplingRate;
    static const char* keyFormat;
    static const char* keyChannels;
    static const char* keyFrameCount;
    static const char* keyInputSource;
    static const char* keyScreenState;
    static const char* keyOutputDevice;
    static const char* keyFm;
    static const char* keyFmSpeaker;

    String8 toString() const;  // the pairs in ascending byte order of their keys, "" for none

    // 0, or -17 when the key existed and its value was replaced. Numbers are formatted with "%d", "%lld",
    // "%.10f".
    status_t add(const String8& key, const String8& value);
    status_t addInt(const String8& key, int value);
    status_t addInt64(const String8& key, long long value);
    status_t addFloat(const String8& key, float value);

    status_t remove(const String8& key);  // 0, or -22 when the key is absent

    // 0, or -22 when the key is absent; the numbers are 0 then, and with -38 when the value does not begin
    // with one.
    status_t get(const String8& key, String8& value) const;
    status_t getInt(const String8& key, int& value) const;
    status_t getFloat(const String8& key, float& value) const;

    // The pair at a position of the sorted store: 0, or -22 behind its end, which leaves both arguments
    // alone.
    status_t getAt(size_t index, String8& key, String8& value) const;

  private:
    struct Key : String8 {
        using String8::String8;
        Key(const String8& text) : String8(text) {}
        bool operator<(const Key& other) const;  // unsigned byte order
    };
    using Pair = key_value_pair_t<Key, String8>;

    const String8& value_of(const String8& key) const;
    bool has(const String8& key) const;

    String8 keyValuePairs;
    SortedVector<Pair> parameters;
};
static_assert(sizeof(AudioParameter) <= 256);

}  // namespace android
