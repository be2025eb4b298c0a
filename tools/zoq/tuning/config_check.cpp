#include "tools/zoq/tuning/config_check.h"

#include <algorithm>
#include <map>
#include <set>

#include "tools/zoq/tuning/check_ignored.h"
#include "tools/zoq/tuning/check_value.h"

namespace zoq {

namespace {

bool has_content(std::string_view rest) {
    return std::any_of(rest.begin(), rest.end(), [](char c) { return c != '\0' && !is_separator(c); });
}

Token whole_rest(std::string_view text, size_t offset) {
    PlaceFinder places(text);
    return {text.substr(offset, 0), places.at(offset)};
}

// Walks the tokens as the engine does: a key takes the next token as its value, anything else is skipped.
class FileCheck {
  public:
    FileCheck(std::string_view text, CheckResult& result)
        : text_(text),
          extent_(file_extent(text)),
          read_(text.substr(0, extent_.length)),
          tokens_(file_tokens(read_)),
          result_(result) {}

    void run() {
        result_.bytes = text_.size();
        result_.bytesRead = extent_.length;
        check_encoding();
        for (size_t i = 0; i < tokens_.size();) {
            const int row = find_exact(tokens_[i].text, Dialect::kFile);
            i = row >= 0 ? take_setting(row, i) : ignore(i);
        }
        check_end();
    }

  private:
    size_t ignore(size_t i) {
        ignore_token(result_, read_, tokens_, i, context_);
        return i + 1;
    }

    size_t take_setting(int row, size_t i) {
        const Token& key = tokens_[i];
        const int commentLine = context_.commentLine;
        context_ = {};
        context_.commentLine = commentLine;
        if (i + 1 == tokens_.size()) {
            report(result_, Severity::kError, "missing-value", key,
                   shown(key.text) + " is the last word and has no value: no effect");
            result_.ignored.push_back({std::string(key.text), key.place, "missing-value"});
            return i + 1;
        }
        const Token& value = tokens_[i + 1];
        result_.assignments.push_back({row, key.place, std::string(value.text), value.place, false});
        context_.afterSetting = i + 2;
        context_.setting = key.text;
        context_.settingLine = value.place.line;
        check_surroundings(key, value);
        if (decimal_comma(read_, tokens_, i + 1)) {
            report_comma(key, value, tokens_[i + 2]);
            return i + 3;
        }
        if (guess_key(value.text, Dialect::kFile).certain()) {
            report(result_, Severity::kError, "key-as-value", value,
                   shown(value.text) + " stands where the value of " + std::string(key.text) +
                       " is due: read as 0 and not looked at as a key");
            context_.keyTakenAsValue = true;
        } else {
            check_value(result_, row, value);
        }
        return i + 2;
    }

    // What stands behind the comma is digits, no key: the engine skips it too.
    void report_comma(const Token& key, const Token& value, const Token& fraction) {
        report(result_, Severity::kError, "decimal-comma", value,
               "a comma separates: " + std::string(key.text) + " gets " + shown(value.text) + ", " +
                   shown(fraction.text) + " is ignored",
               std::string(value.text) + "." + std::string(fraction.text));
        result_.ignored.push_back({std::string(fraction.text), fraction.place, "decimal-comma"});
    }

    // Settings that look switched off to a reader, but are not.
    void check_surroundings(const Token& key, const Token& value) {
        if (key.comment) {
            report(result_, Severity::kError, "comment-applied", key,
                   "this looks like a comment, but there is no comment syntax: " + std::string(key.text) +
                       " " + shown(value.text) + " is applied");
        } else if (behind_leading_semicolon(key)) {
            report(result_, Severity::kWarning, "semicolon", key,
                   "the ';' in front only separates: " + std::string(key.text) + " " + shown(value.text) +
                       " is applied");
        }
    }

    bool behind_leading_semicolon(const Token& token) const {
        const size_t lineStart = token.place.offset + 1 - static_cast<size_t>(token.place.column);
        const std::string_view before = read_.substr(lineStart, token.place.offset - lineStart);
        const size_t first = before.find_first_not_of(" \t\r");
        return first != std::string_view::npos && before[first] == ';';
    }

    void check_encoding() {
        if (is_utf16(text_)) {
            report(result_, Severity::kError, "utf-16", whole_rest(text_, 0),
                   "the text is UTF-16, every other byte of which is NUL: write it as UTF-8 without a "
                   "byte-order mark");
        }
    }

    void check_end() {
        const std::string_view rest = text_.substr(extent_.length);
        const std::string left = std::to_string(rest.size()) + " bytes";
        const bool matters = has_content(rest);
        const Severity severity = matters ? Severity::kError : Severity::kWarning;
        if (extent_.nul) {
            report(result_, severity, "nul", whole_rest(text_, extent_.length),
                   "a NUL byte ends the text: the last " + left + " are not read" +
                       (matters ? "" : " (nothing but separators)"));
            note_unread("nul");
        } else if (extent_.limited) {
            check_cut(rest);
            note_unread("past-limit");
            report(result_, severity, "past-limit", whole_rest(text_, extent_.length),
                   "only the first " + std::to_string(extent_.length) + " bytes are read: the last " + left +
                       " are not" + (matters ? "" : " (nothing but separators)"));
        }
        if (result_.assignments.empty()) {
            report(result_, Severity::kNote, "no-settings", whole_rest(text_, 0),
                   "no setting reaches the engine");
        }
    }

    // Every word of the rest; of UTF-16 there would be one for each letter.
    void note_unread(const char* code) {
        if (is_utf16(text_)) {
            return;
        }
        std::string rest(text_);
        std::replace(rest.begin(), rest.end(), '\0', ' ');
        for (const Token& token : file_tokens(rest, extent_.length)) {
            result_.ignored.push_back({std::string(token.text), token.place, code});
        }
    }

    void check_cut(std::string_view rest) {
        const bool cut = !tokens_.empty() && tokens_.back().end() == extent_.length &&
                         !is_separator(rest.front()) && rest.front() != '\0';
        if (cut) {
            report(result_, Severity::kError, "cut-token", tokens_.back(),
                   shown(tokens_.back().text) + " is what the limit of bytes leaves of a longer word");
        }
    }

    std::string_view text_;
    TextExtent extent_;
    std::string_view read_;
    std::vector<Token> tokens_;
    CheckResult& result_;
    IgnoreContext context_;
};

// Marks every assignment but the last of each setting. What was said of the range of the others is moot.
void mark_replaced(CheckResult& result) {
    std::map<int, Place> winner;
    std::set<size_t> replaced;
    for (auto it = result.assignments.rbegin(); it != result.assignments.rend(); ++it) {
        const auto [last, isLast] = winner.try_emplace(it->row, it->keyPlace);
        it->replaced = !isLast;
        if (it->replaced) {
            replaced.insert(it->valuePlace.offset);
            const std::string key = spelling(it->row, result.dialect);
            result.diagnostics.push_back({Severity::kWarning, "duplicate", it->keyPlace, key,
                                          key + " " + shown(it->value) + " is replaced in line " +
                                              std::to_string(last->second.line) + ", column " +
                                              std::to_string(last->second.column) + ": the last one wins",
                                          ""});
        }
    }
    std::erase_if(result.diagnostics, [&replaced](const Diagnostic& diagnostic) {
        return (diagnostic.code == "out-of-range" || diagnostic.code == "unusual") &&
               replaced.count(diagnostic.place.offset) > 0;
    });
}

void sort_by_place(CheckResult& result) {
    std::stable_sort(
        result.diagnostics.begin(), result.diagnostics.end(),
        [](const Diagnostic& a, const Diagnostic& b) { return a.place.offset < b.place.offset; });
}

// The pairs behind a NUL byte.
void note_unread_pairs(CheckResult& result, std::string_view text) {
    std::string rest(text);
    std::fill_n(rest.begin(), result.bytesRead, ';');
    std::replace(rest.begin(), rest.end(), '\0', ';');
    PlaceFinder places(text);
    for (const Pair& pair : string_pairs(rest)) {
        const size_t from = pair.key.place.offset, end = pair.hasValue ? pair.value.end() : pair.key.end();
        result.ignored.push_back({rest.substr(from, end - from), places.at(from), "nul"});
    }
}

void check_pair(CheckResult& result, const Pair& pair) {
    const int row = find_exact(pair.key.text, Dialect::kString);
    if (row < 0) {
        ignore_pair(result, pair);
        return;
    }
    const bool number = android::settings()[row].kind != android::Setting::Kind::kSwitch;
    if (pair.value.text.empty() && number) {
        report(result, Severity::kError, "missing-value", pair.key,
               shown(pair.key.text) + " has no value: 0 is stored");
    } else if (!number || !check_comma(result, pair)) {
        check_value(result, row, pair.value);
    }
    result.assignments.push_back(
        {row, pair.key.place, std::string(pair.value.text), pair.value.place, false});
}

}  // namespace

Severity CheckResult::worst() const {
    Severity severity = Severity::kNote;
    for (const Diagnostic& diagnostic : diagnostics) {
        severity = std::max(severity, diagnostic.severity);
    }
    return severity;
}

void CheckResult::apply_to(Prediction& prediction) const {
    for (const Assignment& assignment : assignments) {
        prediction.apply(assignment.row, assignment.value);
    }
}

CheckResult check_file(std::string_view text) {
    CheckResult result{};
    result.dialect = Dialect::kFile;
    FileCheck(text, result).run();
    mark_replaced(result);
    sort_by_place(result);

    result.now.initialise();
    result.apply_to(result.now);
    result.afterNextStart = result.now;
    result.afterNextStart.initialise();
    result.apply_to(result.afterNextStart);
    return result;
}

CheckResult check_parameter_string(std::string_view text, std::string_view file) {
    const CheckResult fileResult = check_file(file);
    CheckResult result{};
    result.dialect = Dialect::kString;
    result.bytes = text.size();
    result.bytesRead = std::min(text.find('\0'), text.size());
    for (const Pair& pair : string_pairs(text)) {
        check_pair(result, pair);
    }
    if (result.bytesRead < text.size()) {
        note_unread_pairs(result, text);
        report(result, Severity::kError, "nul", whole_rest(text, result.bytesRead),
               "a NUL byte ends the text");
    }
    mark_replaced(result);
    sort_by_place(result);

    result.now = fileResult.now;
    result.apply_to(result.now);
    result.afterNextStart = result.now;
    result.afterNextStart.initialise();
    fileResult.apply_to(result.afterNextStart);
    return result;
}

}  // namespace zoq
