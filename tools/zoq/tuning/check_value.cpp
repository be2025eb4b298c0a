#include "tools/zoq/tuning/check_value.h"

#include <algorithm>
#include <cmath>

#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using Kind = android::Setting::Kind;

std::string range_text(const Range& range) {
    return number_text(range.lo) + ".." + number_text(range.hi);
}

bool only_space(std::string_view text) {
    return text.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos;
}

bool key_behind(std::string_view text, size_t used) {
    return guess_key(text.substr(used), Dialect::kFile).certain();
}

// What the chain makes of a value: " (boostLin 10)".
std::string chain_remark(int row, float value) {
    const SettingDoc& doc = setting_doc(row);
    if (!doc.chain || !doc.chain->initial) {
        return "";
    }
    return " (" + std::string(doc.chain->field) + " " + number_text(android::settings()[row].derive(value)) +
           ")";
}

void check_range(CheckResult& result, int row, float value, const Token& token) {
    const SettingDoc& doc = setting_doc(row);
    const std::string number = number_text(value);
    if (doc.validity && !doc.validity->holds(value)) {
        std::string message = number + " lies outside " + range_text(*doc.validity) + ": used as it stands" +
                              chain_remark(row, value);
        if (result.dialect == Dialect::kFile) {
            message += "; every later initialisation first stores " + number_text(doc.fallback) +
                       ", then reads the file again, which stores " + number + " again";
        } else {
            message += " until the next initialisation, which stores " + number_text(doc.fallback);
            message += doc.chain->initial ? " and puts " + std::string(doc.chain->field) + " back to " +
                                                number_text(*doc.chain->initial) + ", unless the file sets it"
                                          : ", unless the file sets it";
        }
        report(result, Severity::kWarning, "out-of-range", token, message);
    } else if (doc.usual && !doc.usual->holds(value)) {
        report(result, Severity::kWarning, "unusual", token,
               number + " lies outside the usual " + range_text(*doc.usual) +
                   "; the engine never checks it and uses it as it stands");
    }
}

void check_number(CheckResult& result, int row, const Token& token) {
    const std::string text(token.text);
    const NumberReading reading = read_number(text);
    const auto value = static_cast<float>(reading.value);
    const std::string key = spelling(row, result.dialect);
    if (reading.used == 0) {
        const bool colon = !text.empty() && text.front() == ':';
        report(result, Severity::kError, "not-a-number", token,
               shown(text) + " is the value of " + key + " and no number: read as 0" +
                   (colon ? "; ':' is not a separator" : ""));
        return;
    }
    if (!std::isfinite(value)) {
        report(result, Severity::kError, "not-finite", token,
               shown(text) + " is read as " + number_text(value) +
                   (std::isnan(value) ? ", which no range check catches" : ""));
        return;
    }
    if (key_behind(text, reading.used)) {
        report(result, Severity::kError, "key-in-value", token,
               shown(text) + " is read as " + number_text(value) + ": the key in it is not looked at");
    } else if (!only_space(std::string_view(text).substr(reading.used))) {
        report(result, Severity::kWarning, "trailing-text", token,
               shown(text) + " is read as " + number_text(value) + ", the rest of it is ignored",
               number_text(value));
    } else if (text.find_first_of("xX") != std::string::npos) {
        report(result, Severity::kWarning, "hexadecimal", token,
               shown(text) + " is hexadecimal and read as " + number_text(value), number_text(value));
    }
    check_range(result, row, value, token);
}

void check_integer(CheckResult& result, int row, const Token& token) {
    const std::string text(token.text);
    const IntegerReading reading = read_integer(text);
    const NumberReading number = read_number(text);
    const std::string value = std::to_string(reading.value);
    const std::string key = spelling(row, result.dialect);
    if (reading.used > 0 && key_behind(text, reading.used)) {
        report(result, Severity::kError, "key-in-value", token,
               shown(text) + " is read as " + value + ": the key in it is not looked at");
    } else if (reading.used == 0) {
        report(result, Severity::kError, "not-a-number", token,
               shown(text) + " is the value of " + key + " and no decimal integer: read as 0");
    } else if (reading.saturated) {
        report(result, Severity::kWarning, "too-large", token, shown(text) + " is read as " + value, value);
    } else if (number.used > reading.used) {
        const bool far = !(std::fabs(number.value - static_cast<double>(reading.value)) < 1.0);
        report(result, far ? Severity::kError : Severity::kWarning, "not-an-integer", token,
               shown(text) + " is read as the integer " + value, integer_text(number.value));
    } else if (!only_space(std::string_view(text).substr(reading.used))) {
        report(result, Severity::kWarning, "trailing-text", token,
               shown(text) + " is read as " + value + ", the rest of it is ignored", value);
    }
}

void check_switch(CheckResult& result, const Token& token) {
    if (token.text != "STEREOWIDEN_Enable=true" && token.text != "STEREOWIDEN_Enable=false") {
        report(result, Severity::kError, "bad-switch", token,
               shown(token.text) +
                   " changes nothing: the switch takes exactly STEREOWIDEN_Enable=true or "
                   "STEREOWIDEN_Enable=false");
    }
}

}  // namespace

bool is_whole_number(std::string_view text) {
    const size_t sign = !text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0;
    return text.size() > sign && text.find_first_not_of("0123456789", sign) == std::string_view::npos;
}

void check_value(CheckResult& result, int row, const Token& value) {
    switch (android::settings()[row].kind) {
        case Kind::kSwitch:
            check_switch(result, value);
            break;
        case Kind::kDevice:
        case Kind::kVolume:
            check_integer(result, row, value);
            break;
        case Kind::kNumber:
            check_number(result, row, value);
            break;
    }
}

void report(CheckResult& result, Severity severity, const char* code, const Token& token, std::string message,
            std::string suggestion) {
    result.diagnostics.push_back(
        {severity, code, token.place, std::string(token.text), std::move(message), std::move(suggestion)});
}

}  // namespace zoq
