// The tuning commands' answers as text for readers and as JSON for scripts.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/zoq/tuning/config_check.h"
#include "tools/zoq/tuning/eq_fit.h"

namespace zoq {

// All settings in one table, or one setting in full.
void print_settings(std::ostream& out);
void print_setting(std::ostream& out, int row);
void print_settings_json(std::ostream& out, int onlyRow = -1);

// name:line:column: severity: message [code]; at most `most` of them, the errors first, 0 for all;
// then the words that are not read at all.
void print_diagnostics(std::ostream& out, const CheckResult& result, const std::string& name, size_t most);

// What the engine stores and the chain uses, setting by setting.
void print_prediction(std::ostream& out, const CheckResult& result);

struct NamedResult {
    std::string name;
    const CheckResult* result;
};

// One object, or an array of them when there are several.
void print_check_json(std::ostream& out, const std::vector<NamedResult>& results);

// The nine gains, how far the engine's response stays from the curve, and what was left out of it.
void print_fit(std::ostream& out, const EqFit& fit, double preampDb);

}  // namespace zoq
