// Finding a setting by what somebody wrote for its name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/settings.h"

namespace zoq {

enum class Dialect { kFile, kString };

// A row's spelling in a dialect, null when it is not known there; and the spelling to name it by.
const char* spelling(int row, Dialect dialect);
const char* any_spelling(int row);

// The row that the engine finds for exactly this text; -1 for none.
int find_exact(std::string_view text, Dialect dialect);

// The row spelled like this in either dialect, in any letter case; -1 for none.
int find_any_case(std::string_view text);

// The row whose spelling takes the fewest edits (letter inserted, left out, replaced, or two swapped).
struct Nearest {
    int row = -1;
    size_t edits = 0;
    bool unique = false;
    bool sameDigits = false;  // no figure is among the edits
};
std::optional<Nearest> nearest_key(std::string_view text);  // none when nothing is near

// Whether a few edits make the text a name, or what the name begins with.
bool is_near(std::string_view text, std::string_view name);

// The row whose spelling holds the text, whose meaning does, or that takes the fewest edits: always one, of the keys of
// a dialect or of all.
struct ClosestKey {
    int row = -1;
    bool likely = false;  // worth writing instead; otherwise just the nearest one there is
};
ClosestKey closest_key(std::string_view text, std::optional<Dialect> dialect = {});

// "'EQ_63hz' is no key; did you mean EQ_62hzgain?"
std::string unknown_key(std::string_view text);

// What a text that is no key of a dialect was probably meant to be.
struct KeyGuess {
    enum class How { kNone, kExact, kGlued, kOtherDialect, kLetterCase, kAbsent, kNear };
    How how = How::kNone;
    int row = -1;
    std::string prefix, core, suffix;  // what is glued in front, the name itself, what is glued behind
    Nearest nearest;                   // for kNear

    bool glued() const { return !prefix.empty() || !suffix.empty(); }
    bool certain() const { return how != How::kNone && how != How::kNear; }
};
KeyGuess guess_key(std::string_view text, Dialect dialect);

// The text between quotation marks, bytes outside printable ASCII as \xNN, shortened when long.
std::string shown(std::string_view text);

}  // namespace zoq
