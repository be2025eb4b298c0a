// The part of the check that explains why a word or a pair has no effect.
#pragma once

#include <vector>

#include "tools/zoq/tuning/config_check.h"

namespace zoq {

// What the walk over a file's tokens remembers for the explanations.
struct IgnoreContext {
    size_t afterSetting = 0;       // position of the token behind the last setting's value
    std::string_view setting;      // that setting's key
    int settingLine = 0;           // and its value's line
    bool keyTakenAsValue = false;  // its value was meant to be a key
    std::string_view
        attempt;  // the last ignored token that was meant to be a key, still waiting for its value
    int attemptLine = 0;
    int commentLine = 0;  // line whose ignored words have been reported
};

// Records the token at i as ignored, with the likely reason.
void ignore_token(CheckResult& result, std::string_view text, const std::vector<Token>& tokens, size_t i,
                  IgnoreContext& context);

void ignore_pair(CheckResult& result, const Pair& pair);

// Reports a decimal comma in a pair's number, or a comma meant to separate pairs; whether there was one.
bool check_comma(CheckResult& result, const Pair& pair);

// Whether all of a text is a number.
bool reads_as_number(std::string_view text);

// Whether the token at i is a name that was meant to be a key: "name = 3", or "name 3" alone on a line.
bool meant_as_key(std::string_view text, const std::vector<Token>& tokens, size_t i);

// Whether the tokens at i and i + 1 are a number with a decimal comma.
bool decimal_comma(std::string_view text, const std::vector<Token>& tokens, size_t i);

}  // namespace zoq
