// Settings as a text's writer meant them, and clean texts made of settings.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zoq/tuning/config_check.h"

namespace zoq {

// Values by row, each as text that the engine reads as this number.
using Settings = std::map<int, std::string>;

struct Meant {
    Settings settings;
    std::vector<std::string> dropped;    // one line for each word, or setting, that could not be carried over
    std::map<int, std::string> changed;  // by row, one line for each value that was moved into its range
};

// A number as it is read, in plain digits; "" for none. A value outside its range is moved into it.
std::string clean_number(int row, const std::string& text);

// Reads a whole text, past NUL bytes and the limit of bytes too: glued and misspelt keys count, decimal commas and
// numbers with something behind them are read, values are moved into their range, words that look like comments are
// left out without a word, the last occurrence of a key wins. A misspelt key counts only where no figure and no other key is in
// doubt.
Meant meant_by_file(std::string_view text);
Meant meant_by_parameter_string(std::string_view text);

// The settings that the dialect knows, in the order of the engine's table: "key = value" lines, or pairs joined by
// ";".
std::string settings_text(const Settings& settings, Dialect dialect);

}  // namespace zoq
