// Configurations made of single settings, of other configurations and of equalizer curves.
#pragma once

#include <string>
#include <string_view>

#include "tools/zoq/tuning/config_fix.h"
#include "tools/zoq/tuning/eq_fit.h"

namespace zoq {

enum class EqRoute { kSpeaker, kHeadphone, kBoth };

// Adds "KEY=VALUE". The key may be spelt in either way and in any letter case; the value must be a finite number in
// the setting's range, or the switch's text. Throws Failure.
void add_setting(Settings& settings, const std::string& pair, Dialect dialect);

// Adds the settings that the engine takes from a file. Throws Failure when the check finds errors in it,
// and for a value outside its range: nothing that sounds otherwise is written without a word.
void add_file(Settings& settings, std::string_view text, const std::string& name);

// Adds the nine gains of a route, or of both.
void add_gains(Settings& settings, const BandGains& gainDb, EqRoute route);

// The text, found clean by the check.
std::string checked_text(const Settings& settings, Dialect dialect);

}  // namespace zoq
