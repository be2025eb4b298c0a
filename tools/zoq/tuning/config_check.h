// What the engine will really do with a configuration file or a parameter string, and where that is probably not
// what its writer meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/zoq/tuning/config_text.h"
#include "tools/zoq/tuning/key_names.h"
#include "tools/zoq/tuning/prediction.h"

namespace zoq {

enum class Severity { kNote, kWarning, kError };

struct Diagnostic {
    Severity severity;
    std::string code;  // stable name of the kind, for scripts
    Place place;
    std::string token;       // the text concerned, as it stands
    std::string message;     // what happens and why
    std::string suggestion;  // what to write instead; "" for none
};

// A value that reaches the engine, in the order of application.
struct Assignment {
    int row;
    Place keyPlace;
    std::string value;  // as the engine reads it
    Place valuePlace;
    bool replaced;  // a later one wins
};

// A token, or a whole pair of a parameter string, without any effect. Those that are not read at all ("nul",
// "past-limit") have one diagnostic together.
struct IgnoredToken {
    std::string text;
    Place place;
    const char* code;  // of the diagnostic that explains it
};

struct CheckResult {
    Dialect dialect;
    size_t bytes = 0, bytesRead = 0;
    std::vector<Diagnostic> diagnostics;  // in the order of their places
    std::vector<Assignment> assignments;
    std::vector<IgnoredToken> ignored;
    Prediction now;             // after the text has been applied
    Prediction afterNextStart;  // after one more initialisation, with the same file

    Severity worst() const;
    // Whether the engine doesn't even read it.
    static bool unread(const IgnoredToken& token) {
        return token.code == std::string_view("nul") || token.code == std::string_view("past-limit");
    }
    int exit_code() const { return static_cast<int>(worst()); }  // 0 clean or notes, 1 warnings, 2 errors
    void apply_to(Prediction& prediction) const;
};

// A file at the first initialisation after load.
CheckResult check_file(std::string_view text);

// A parameter string after an initialisation with a file ("" for none).
CheckResult check_parameter_string(std::string_view text, std::string_view file = {});

}  // namespace zoq
