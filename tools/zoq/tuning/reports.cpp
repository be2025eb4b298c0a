#include "tools/zoq/tuning/reports.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using Kind = android::Setting::Kind;

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

std::string range_text(const SettingDoc& doc) {
    const std::optional<Range> range = doc.range();
    if (!range) {
        return "any";
    }
    return number_text(range->lo) + ".." + number_text(range->hi) + (doc.validity ? "" : " *");
}

std::string default_text(int row) {
    Prediction start;
    start.initialise();
    const std::optional<float> chain = start[row].field;
    return start.stored_text(row) + (chain ? " / " + number_text(*chain) : "");
}

std::string place_of(const Assignment& assignment) {
    return "line " + std::to_string(assignment.keyPlace.line);
}

// What the chain computes with, in words: "boostLin 1.25".
std::string chain_text(const Prediction& prediction, int row) {
    const std::optional<float> chain = prediction.chain_value(row);
    if (!chain) {
        return "";
    }
    std::string text = std::string(setting_doc(row).chain->field) + " " + number_text(*chain);
    if (any_spelling(row) == std::string("CompressionGain")) {
        text += " (loud: " + number_text(*prediction.chain_value(row, true)) + ")";
    }
    return text;
}

const Assignment* winner(const CheckResult& result, int row) {
    const auto found = std::find_if(
        result.assignments.begin(), result.assignments.end(),
        [row](const Assignment& assignment) { return assignment.row == row && !assignment.replaced; });
    return found != result.assignments.end() ? &*found : nullptr;
}

const char* severity_name(Severity severity) {
    return severity == Severity::kError ? "error" : severity == Severity::kWarning ? "warning" : "note";
}

// Where the diagnostics are that come first when there is room for some only (0: for all), in their own order.
std::vector<size_t> most_severe(const std::vector<Diagnostic>& diagnostics, size_t most) {
    std::vector<size_t> chosen;
    for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
        for (size_t i = 0; i < diagnostics.size() && (most == 0 || chosen.size() < most); ++i) {
            if (diagnostics[i].severity == severity) {
                chosen.push_back(i);
            }
        }
    }
    std::sort(chosen.begin(), chosen.end());
    return chosen;
}

std::string spelling_text(int row, Dialect dialect) {
    const char* key = spelling(row, dialect);
    return key != nullptr ? key : "-";
}

}  // namespace

void print_settings(std::ostream& out) {
    out << "in parameter strings       in the file                unit  range     default      the chain "
           "uses\n";
    for (int row = 0; row < android::kSettings; ++row) {
        const SettingDoc& doc = setting_doc(row);
        const std::string string = spelling_text(row, Dialect::kString),
                          file = spelling_text(row, Dialect::kFile);
        out << padded(string, 27) << padded(file == string ? "same" : file, 27) << padded(doc.unit, 6)
            << padded(range_text(doc), 10) << padded(default_text(row), 13) << derivation(doc) << "\n";
    }
    out << "\nx: the value. Default: stored / what the chain uses until the key is given.\n"
           "Range: checked by every initialisation, which stores a fallback for a value outside; * never "
           "checked.\n"
           "The file is read by every initialisation, parameter strings work at any time.\n"
           "'zoq params KEY' explains one setting.\n";
}

void print_setting(std::ostream& out, int row) {
    const SettingDoc& doc = setting_doc(row);
    const android::Setting& setting = android::settings()[row];
    const auto line = [&out](const char* name, const std::string& text) {
        if (!text.empty()) {
            out << "  " << padded(name, 16) << text << "\n";
        }
    };
    out << any_spelling(row) << ": " << doc.meaning << "\n";
    line("in strings", spelling_text(row, Dialect::kString));
    line("in the file", spelling_text(row, Dialect::kFile));
    line("unit", doc.unit);
    if (doc.validity) {
        line("range",
             range_text(doc) + "; outside, the next initialisation stores " + number_text(doc.fallback));
    } else if (doc.usual) {
        line("range",
             number_text(doc.usual->lo) + ".." + number_text(doc.usual->hi) + " is usual; never checked");
    }
    line("default", default_text(row) + (doc.chain && doc.chain->initial ? " (stored / the chain's)" : ""));
    line("the chain uses", derivation(doc));
    if (doc.chain) {
        line("", doc.chain->remark);
    }
    if (setting.derived != nullptr) {
        std::string examples;
        for (const float x : {0.0f, 50.0f, 100.0f}) {
            examples +=
                (examples.empty() ? "" : ", ") + number_text(x) + " gives " + number_text(setting.derive(x));
        }
        line("", examples);
    }
    line("takes effect", effect_explanation(doc.effect));
}

void print_diagnostics(std::ostream& out, const CheckResult& result, const std::string& name, size_t most) {
    const std::vector<size_t> chosen = most_severe(result.diagnostics, most);
    for (const size_t i : chosen) {
        const Diagnostic& diagnostic = result.diagnostics[i];
        out << name << ":" << diagnostic.place.line << ":" << diagnostic.place.column << ": "
            << severity_name(diagnostic.severity) << ": " << diagnostic.message;
        if (!diagnostic.suggestion.empty()) {
            out << "; write " << diagnostic.suggestion;
        }
        out << " [" << diagnostic.code << "]\n";
    }
    size_t left = result.diagnostics.size() - chosen.size(), room = most - std::min(most, chosen.size());
    for (const IgnoredToken& token : result.ignored) {
        if (!CheckResult::unread(token)) {
            continue;
        }
        if (most > 0 && room == 0) {
            ++left;
            continue;
        }
        room -= most > 0 ? 1 : 0;
        out << name << ":" << token.place.line << ":" << token.place.column
            << ": warning: " << shown(token.text) << " is not read [" << token.code << "]\n";
    }
    if (left > 0) {
        out << name << ": " << left << " more\n";
    }
}

void print_prediction(std::ostream& out, const CheckResult& result) {
    const bool file = result.dialect == Dialect::kFile;
    out << padded("setting", 27) << padded("stored", 13) << padded("the chain uses", 44)
        << (file ? "from" : padded("from", 10) + "after the next initialisation") << "\n";
    for (int row = 0; row < android::kSettings; ++row) {
        if (spelling(row, result.dialect) == nullptr) {
            continue;
        }
        const Assignment* source = winner(result, row);
        out << padded(spelling(row, result.dialect), 27) << padded(result.now.stored_text(row), 13)
            << padded(chain_text(result.now, row), 44);
        const std::string from = source != nullptr ? place_of(*source) : "default";
        if (file) {
            out << from << "\n";
        } else {
            const std::string chain = chain_text(result.afterNextStart, row);
            out << padded(from, 10) << result.afterNextStart.stored_text(row) << (chain.empty() ? "" : ", ")
                << chain << "\n";
        }
    }
}

void print_fit(std::ostream& out, const EqFit& fit, double preampDb) {
    char line[160];
    for (int band = 0; band < android::kGeqBands; ++band) {
        const double gain = fit.gainDb[static_cast<size_t>(band)];
        std::snprintf(line, sizeof line, "%8.1f Hz %+7.2f dB%s\n", 62.5 * double(1 << band), gain,
                      std::abs(gain) >= fit.limitDb ? "  (at the limit)" : "");
        out << line;
    }
    std::snprintf(line, sizeof line, "residual: rms %.2f dB, worst %+.2f dB at %.0f Hz (%.0f to %.0f Hz)\n",
                  fit.rmsDb, fit.worstDb, fit.worstHz, fit.hz.front(), fit.hz.back());
    out << line;
    std::snprintf(line, sizeof line,
                  "left out: a level of %+.2f dB and a preamp of %+.2f dB; the engine has no preamp\n",
                  fit.levelDb, preampDb);
    out << line;
    if (fit.peakDb > 0.0) {
        std::snprintf(line, sizeof line,
                      "largest boost %+.2f dB at %.0f Hz: the limiter takes what exceeds full scale\n",
                      fit.peakDb, fit.peakHz);
        out << line;
    }
}

}  // namespace zoq
