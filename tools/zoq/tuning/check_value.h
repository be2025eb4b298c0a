// The part of the check that looks at one value under a known key; file and parameter string share it.
#pragma once

#include "tools/zoq/tuning/config_check.h"

namespace zoq {

// Appends what there is to say about a value that the engine is about to read.
void check_value(CheckResult& result, int row, const Token& value);

// "70", "10dB": whole is digits with at most a sign in front; used for decimal commas.
bool is_whole_number(std::string_view text);

void report(CheckResult& result, Severity severity, const char* code, const Token& token, std::string message,
            std::string suggestion = "");

}  // namespace zoq
