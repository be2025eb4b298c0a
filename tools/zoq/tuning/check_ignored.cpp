#include "tools/zoq/tuning/check_ignored.h"

#include "tools/zoq/tuning/check_value.h"

namespace zoq {

namespace {

using How = KeyGuess::How;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kNoBreakSpace = "\xC2\xA0";

// What is glued to a key, in words: "':'", "a byte-order mark".
std::string glue_name(const KeyGuess& guess) {
    const std::string& glue = !guess.prefix.empty() ? guess.prefix : guess.suffix;
    if (glue == kByteOrderMark) {
        return "a byte-order mark";
    }
    if (glue == kNoBreakSpace) {
        return "a no-break space";
    }
    if (glue.find_first_not_of(" \t\n\v\f\r") == std::string::npos) {
        return "white space";
    }
    return shown(glue);
}

struct Reason {
    const char* code;
    std::string text;
};

// Why a text that is nearly a key has no effect.
Reason key_reason(const KeyGuess& guess, Dialect dialect) {
    const char* key = spelling(guess.row, dialect);
    const std::string glue = guess.glued() ? ", and " + glue_name(guess) + " is glued to it" : "";
    const bool file = dialect == Dialect::kFile;
    switch (guess.how) {
        case How::kGlued:
            return {"glued-key", glue_name(guess) + " is glued to the key " + key};
        case How::kOtherDialect:
            return {"wrong-spelling",
                    (file ? "only parameter strings spell it so" : "only the file spells it so") + glue};
        case How::kLetterCase:
            return {"letter-case", "upper and lower case matter" + glue};
        case How::kAbsent:
            return {"not-here",
                    file ? "only parameter strings know it" : "only the configuration file knows it"};
        case How::kNear:
            return {"unknown-key", "unknown key"};
        case How::kNone:
        case How::kExact:
            break;
    }
    return {"unknown-key", "not a key"};
}

void note_ignored(CheckResult& result, const Token& token, Severity severity, const char* code,
                  const std::string& why, std::string suggestion = "") {
    result.ignored.push_back({std::string(token.text), token.place, code});
    report(result, severity, code, token, shown(token.text) + " is ignored: " + why, std::move(suggestion));
}

void ignore_comment(CheckResult& result, const Token& token, IgnoreContext& context) {
    const bool first = context.commentLine != token.place.line;
    context.commentLine = token.place.line;
    result.ignored.push_back({std::string(token.text), token.place, "comment"});
    report(result, first ? Severity::kWarning : Severity::kNote, "comment", token,
           shown(token.text) +
               (first ? " starts no comment, there is no comment syntax: its words are skipped one by "
                        "one, and a key among them would be applied"
                      : " is ignored: it is no key"));
}

// A name that no key has: the nearest one is written instead, or just named when it is not near.
void ignore_unknown(CheckResult& result, const Token& token, Dialect dialect, Severity severity,
                    const char* code, const std::string& why) {
    const ClosestKey closest = closest_key(token.text, dialect);
    const std::string key = spelling(closest.row, dialect);
    note_ignored(result, token, severity, code, why + (closest.likely ? "" : " (the nearest is " + key + ")"),
                 closest.likely ? key : "");
}

void ignore_attempt(CheckResult& result, const Token& token, const KeyGuess& guess, IgnoreContext& context) {
    context.attempt = token.text;
    context.attemptLine = token.place.line;
    const Reason reason = key_reason(guess, Dialect::kFile);
    const char* key = spelling(guess.row, Dialect::kFile);
    note_ignored(result, token, Severity::kError, reason.code, reason.text, key != nullptr ? key : "");
}

// Words that resemble no key.
void ignore_word(CheckResult& result, std::string_view text, const std::vector<Token>& tokens, size_t i,
                 IgnoreContext& context) {
    const Token& token = tokens[i];
    const bool behindSetting = context.afterSetting == i && context.settingLine == token.place.line;
    if (meant_as_key(text, tokens, i)) {
        context.attempt = token.text;
        context.attemptLine = token.place.line;
        ignore_unknown(result, token, Dialect::kFile, Severity::kError, "unknown-key",
                       "no key has this name");
    } else if (!context.attempt.empty() && token.place.line == context.attemptLine) {
        note_ignored(result, token, Severity::kWarning, "stray-value",
                     "it belongs to " + shown(context.attempt) + ", which is not read as a key");
    } else if (context.keyTakenAsValue && behindSetting) {
        note_ignored(result, token, Severity::kWarning, "stray-value",
                     "the key in front of it was taken as the value of " + std::string(context.setting));
    } else if (behindSetting) {
        note_ignored(result, token, Severity::kWarning, "stray-value",
                     std::string(context.setting) + " takes exactly one value");
    } else if (reads_as_number(token.text)) {
        note_ignored(result, token, Severity::kWarning, "stray-value", "no key in front of it");
    } else if (token.text == "STEREOWIDEN_Enable") {
        context.attempt = token.text;
        context.attemptLine = token.place.line;
        note_ignored(result, token, Severity::kError, "not-here",
                     "it is a value of the key HIFIPARA, which only parameter strings know");
    } else if (closest_key(token.text, Dialect::kFile).likely) {
        ignore_unknown(result, token, Dialect::kFile, Severity::kWarning, "stray-word", "it is no key");
    } else {
        note_ignored(result, token, Severity::kWarning, "stray-word", "it is no key");
    }
}

}  // namespace

bool reads_as_number(std::string_view text) {
    const std::string copy(text);
    return !copy.empty() && read_number(copy).used == copy.size();
}

bool meant_as_key(std::string_view text, const std::vector<Token>& tokens, size_t i) {
    const Token& token = tokens[i];
    if (i + 1 >= tokens.size() || reads_as_number(token.text)) {
        return false;
    }
    const Token& next = tokens[i + 1];
    if (!reads_as_number(next.text) || token.text.find_first_of(kLetters) == std::string_view::npos) {
        return false;
    }
    if (text.substr(token.end(), next.place.offset - token.end()).find('=') != std::string_view::npos) {
        return true;
    }
    const auto other_line = [&](size_t k) {
        return k >= tokens.size() || tokens[k].place.line != token.place.line;
    };
    return !other_line(i + 1) && other_line(i + 2) && (i == 0 || other_line(i - 1));
}

bool decimal_comma(std::string_view text, const std::vector<Token>& tokens, size_t i) {
    if (i + 1 >= tokens.size() || !is_whole_number(tokens[i].text)) {
        return false;
    }
    const Token& fraction = tokens[i + 1];
    return text.substr(tokens[i].end(), fraction.place.offset - tokens[i].end()) == "," &&
           fraction.text.find_first_not_of("0123456789") == std::string_view::npos;
}

void ignore_token(CheckResult& result, std::string_view text, const std::vector<Token>& tokens, size_t i,
                  IgnoreContext& context) {
    const Token& token = tokens[i];
    if (token.comment) {
        ignore_comment(result, token, context);
        return;
    }
    const KeyGuess guess = guess_key(token.text, Dialect::kFile);
    if (guess.how != How::kNone) {
        ignore_attempt(result, token, guess, context);
    } else {
        ignore_word(result, text, tokens, i, context);
    }
}

void ignore_pair(CheckResult& result, const Pair& pair) {
    const KeyGuess guess = guess_key(pair.key.text, Dialect::kString);
    if (guess.row < 0 && pair.key.text != "STEREOWIDEN_Enable") {
        ignore_unknown(result, pair.key, Dialect::kString, Severity::kError, "unknown-key",
                       "no key has this name");
        return;
    }
    Reason reason = key_reason(guess, Dialect::kString);
    const char* key = guess.row >= 0 ? spelling(guess.row, Dialect::kString) : nullptr;
    std::string suggestion = key != nullptr ? key : "";
    if (pair.key.text == "STEREOWIDEN_Enable") {
        suggestion = "HIFIPARA=STEREOWIDEN_Enable=" + std::string(pair.value.text);
        reason.text = "it is a value of the key HIFIPARA";
    }
    note_ignored(result, pair.key, Severity::kError, reason.code, reason.text, suggestion);
}

bool check_comma(CheckResult& result, const Pair& pair) {
    const std::string value(pair.value.text);
    const size_t comma = value.find(',');
    if (comma == std::string::npos) {
        return false;
    }
    const std::string behind = value.substr(comma + 1);
    if (guess_key(behind.substr(0, behind.find('=')), Dialect::kString).how != How::kNone) {
        report(result, Severity::kError, "comma-between-pairs", pair.value,
               shown(value) + " is the value of " + std::string(pair.key.text) + ": only ';' separates pairs",
               value.substr(0, comma) + ";" + behind);
        return true;
    }
    if (is_whole_number(value.substr(0, comma)) && is_whole_number(behind)) {
        report(result, Severity::kError, "decimal-comma", pair.value,
               shown(value) + " is read as " + value.substr(0, comma) + ": numbers have a decimal point",
               value.substr(0, comma) + "." + behind);
        return true;
    }
    return false;
}

}  // namespace zoq
