#include "tools/zoq/tuning/config_write.h"

#include <cmath>
#include <cstdio>

#include "tools/zoq/failure.h"
#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using Kind = android::Setting::Kind;

std::string dialect_name(Dialect dialect) {
    return dialect == Dialect::kFile ? "the configuration file" : "parameter strings";
}

// The check's first complaint about a value, "" for none.
std::string complaint(int row, const std::string& value, Dialect dialect) {
    const std::string text = settings_text({{row, value}}, dialect);
    const CheckResult result = dialect == Dialect::kFile ? check_file(text) : check_parameter_string(text);
    for (const Diagnostic& diagnostic : result.diagnostics) {
        if (diagnostic.severity != Severity::kNote) {
            return diagnostic.message;
        }
    }
    return "";
}

// A number may hold neither separators nor white space; the switch's text may.
bool one_word(int row, const std::string& value) {
    return !value.empty() && (android::settings()[row].kind == Kind::kSwitch ||
                              value.find_first_not_of("0123456789+-.eE") == std::string::npos);
}

}  // namespace

void add_setting(Settings& settings, const std::string& pair, Dialect dialect) {
    const size_t equals = pair.find('=');
    if (equals == std::string::npos) {
        throw UsageFailure("--set needs KEY=VALUE, not " + shown(pair));
    }
    const std::string key = pair.substr(0, equals), value = pair.substr(equals + 1);
    const int row = find_any_case(key);
    if (row < 0) {
        throw UsageFailure("--set: " + unknown_key(key));
    }
    if (spelling(row, dialect) == nullptr) {
        throw UsageFailure("--set: " + dialect_name(dialect) + " cannot hold " + any_spelling(row));
    }
    if (!one_word(row, value)) {
        throw UsageFailure("--set: " + shown(value) + " is no value for " + any_spelling(row));
    }
    if (const std::string trouble = complaint(row, value, dialect); !trouble.empty()) {
        throw UsageFailure("--set " + key + ": " + trouble);
    }
    settings[row] = value;
}

void add_file(Settings& settings, std::string_view text, const std::string& name) {
    const CheckResult result = check_file(text);
    for (const Diagnostic& diagnostic : result.diagnostics) {
        const bool changes = diagnostic.code == "out-of-range" || diagnostic.code == "unusual";
        if (diagnostic.severity == Severity::kError || changes) {
            throw Failure(name + ": line " + std::to_string(diagnostic.place.line) + ": " +
                          diagnostic.message + " ('zoq config check --fix' writes a corrected file)");
        }
    }
    for (const Assignment& assignment : result.assignments) {
        settings[assignment.row] = clean_number(assignment.row, assignment.value);
    }
}

void add_gains(Settings& settings, const BandGains& gainDb, EqRoute route) {
    const int speaker = find_exact("EQ_62hzgain", Dialect::kFile);
    const int headphone = find_exact("Headphone_EQ_62hzgain", Dialect::kFile);
    for (int band = 0; band < android::kGeqBands; ++band) {
        char value[32];
        std::snprintf(value, sizeof value, "%.2f", gainDb[static_cast<size_t>(band)]);
        if (route != EqRoute::kHeadphone) {
            settings[speaker + band] = value;
        }
        if (route != EqRoute::kSpeaker) {
            settings[headphone + band] = value;
        }
    }
}

std::string checked_text(const Settings& settings, Dialect dialect) {
    const std::string text = settings_text(settings, dialect);
    const CheckResult result = dialect == Dialect::kFile ? check_file(text) : check_parameter_string(text);
    if (result.worst() != Severity::kNote) {
        throw Failure("the new text fails its own check: " + result.diagnostics.front().message);
    }
    return text;
}

}  // namespace zoq
