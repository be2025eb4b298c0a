// What a tuning engineer needs to know of each setting, row by row beside the engine's table (host/settings.h).
//
// The engine's table says how a value is read, stored and derived; this one says what its numbers mean. A test
// runs the engine and compares every range, fallback, default and formula given here.
#pragma once

#include <optional>
#include <string>

#include "host/settings.h"

namespace zoq {

struct Range {
    float lo, hi;
    bool holds(float value) const { return !(value < lo || value > hi); }  // not-a-number counts as inside
};

// What the chain uses of a setting: slope x percent + offset.
struct ChainValue {
    const char* field;  // the record's field, or what is formed of it before every frame
    double slope, offset;
    std::optional<float>
        initial;         // the field after an initialisation without a file; none: formed of the value
    const char* remark;  // "" for none
};

enum class Effect { kFade, kNextBlock, kNextFrame };

struct SettingDoc {
    const char* key;                // as in the engine's table, in the same row
    const char* unit;               // "" for texts and indices
    std::optional<Range> validity;  // checked by every initialisation, before it reads the file
    float fallback;                 // stored instead when outside
    std::optional<Range> usual;     // sensible values of a setting that is never checked
    float initial;                  // stored value after the first initialisation, without a file
    bool resetAtStart;              // every initialisation stores it again; otherwise it holds from load on
    std::optional<ChainValue> chain;
    Effect effect;
    const char* meaning;

    // The range a value should lie in, checked by the engine or not.
    std::optional<Range> range() const { return validity ? validity : usual; }
};

const SettingDoc& setting_doc(int row);

const char* effect_name(Effect effect);         // one word
const char* effect_explanation(Effect effect);  // a sentence

// "trebleGain = 0.02 x", "" when the chain reads nothing of it.
std::string derivation(const SettingDoc& doc);

// The loudspeaker's compression above the volume threshold: the slope of "CompressionGain" there.
inline constexpr double kLoudCompressionSlope = 0.21;

// The shortest text that reads back as the same float.
std::string number_text(float value);

}  // namespace zoq
