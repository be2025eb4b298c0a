// The check and the correction of texts of settings: what the check foretells is what the engine holds, a corrected
// text is clean and corrects to itself, and nothing changes what was clean already. The first byte chooses between a
// file and a parameter string.
#include <sstream>
#include <string>

#include "fuzz/require.h"
#include "tests/tools/engine_probe.h"
#include "tools/zoq/tuning/config_fix.h"
#include "tools/zoq/tuning/config_write.h"
#include "tools/zoq/tuning/reports.h"

namespace {

using zoq::CheckResult;
using zoq::Dialect;

void require_engine(const zoq::Prediction& prediction, const char* what) {
    require(zoq::engine_difference(prediction) < 0, what);
}

CheckResult check(const std::string& text, Dialect dialect) {
    return dialect == Dialect::kFile ? zoq::check_file(text) : zoq::check_parameter_string(text);
}

zoq::Meant meant_by(const std::string& text, Dialect dialect) {
    return dialect == Dialect::kFile ? zoq::meant_by_file(text) : zoq::meant_by_parameter_string(text);
}

void compare_with_engine(const std::string& text, const CheckResult& result) {
    android::b_parameterMEM = {};
    android::gCurOutputDevice = 2;
    const bool file = result.dialect == Dialect::kFile;
    zoq::start_engine(file ? text : "");
    if (!file) {
        ZOQ_PARAMS_SET(android::String8(text.c_str()));
    }
    require_engine(result.now, "the engine holds what the check foretells");
    zoq::start_engine(file ? text : "");
    require_engine(result.afterNextStart, "and after another start too");
}

bool same(const zoq::Prediction& a, const zoq::Prediction& b) {
    for (int row = 0; row < android::kSettings; ++row) {
        if (!zoq::same_float(a[row].number, b[row].number) || a[row].integer != b[row].integer) {
            return false;
        }
    }
    return true;
}

void correct(const std::string& text, const CheckResult& result) {
    const zoq::Meant meant = meant_by(text, result.dialect);
    const std::string fixed = zoq::checked_text(meant.settings, result.dialect);  // throws unless it is clean
    const zoq::Meant again = meant_by(fixed, result.dialect);
    require(again.settings == meant.settings && again.dropped.empty(), "a corrected text corrects to itself");
    if (result.diagnostics.empty() && !result.assignments.empty()) {
        require(same(check(fixed, result.dialect).now, result.now), "what was clean keeps its values");
    }
}

void report(const CheckResult& result) {
    std::ostringstream out;
    zoq::print_diagnostics(out, result, "text", 0);
    zoq::print_prediction(out, result);
    zoq::print_check_json(out, {{"text", &result}});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const Dialect dialect = data[0] == '&' ? Dialect::kString : Dialect::kFile;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const CheckResult result = check(text, dialect);
    compare_with_engine(text, result);
    report(result);
    correct(text, result);
    return 0;
}
