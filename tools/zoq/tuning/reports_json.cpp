#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/zoq/tuning/reports.h"
#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using Json = nlohmann::ordered_json;

// JSON knows no infinities: they and not-a-number become texts. A float keeps its shortest decimal form.
Json number_json(float value) {
    return std::isfinite(value) ? Json::parse(number_text(value)) : Json(number_text(value));
}

Json text_or_null(const char* text) {
    return text != nullptr ? Json(text) : Json(nullptr);
}

Json range_json(const std::optional<Range>& range) {
    return range ? Json::array({number_json(range->lo), number_json(range->hi)}) : Json(nullptr);
}

Json setting_json(int row) {
    const SettingDoc& doc = setting_doc(row);
    Prediction start;
    start.initialise();
    Json setting = {
        {"string_key", text_or_null(spelling(row, Dialect::kString))},
        {"file_key", text_or_null(spelling(row, Dialect::kFile))},
        {"meaning", doc.meaning},
        {"unit", doc.unit},
        {"valid_range", range_json(doc.validity)},
        {"fallback", doc.validity ? number_json(doc.fallback) : Json(nullptr)},
        {"usual_range", range_json(doc.usual)},
        {"default", start.integral(row) ? Json(start[row].integer) : number_json(start[row].number)},
        {"chain", nullptr},
        {"effect", effect_name(doc.effect)},
        {"effect_explanation", effect_explanation(doc.effect)}};
    if (doc.chain) {
        setting["chain"] = {{"field", doc.chain->field},
                            {"formula", derivation(doc)},
                            {"remark", doc.chain->remark},
                            {"default", start[row].field ? number_json(*start[row].field) : Json(nullptr)}};
    }
    return setting;
}

Json place_json(const Place& place) {
    return {{"line", place.line}, {"column", place.column}, {"offset", place.offset}};
}

Json state_json(const Prediction& prediction, int row) {
    Json state = {{"stored", prediction.integral(row) ? Json(prediction[row].integer)
                                                      : number_json(prediction[row].number)}};
    if (const std::optional<float> chain = prediction.chain_value(row)) {
        state["chain"] = number_json(*chain);
    }
    return state;
}

Json result_settings(const CheckResult& result) {
    Json settings = Json::array();
    for (int row = 0; row < android::kSettings; ++row) {
        const char* key = spelling(row, result.dialect);
        if (key == nullptr) {
            continue;
        }
        Json setting = {{"key", key}, {"given", nullptr}};
        for (const Assignment& assignment : result.assignments) {
            if (assignment.row == row && !assignment.replaced) {
                setting["given"] = {{"text", assignment.value}, {"place", place_json(assignment.keyPlace)}};
            }
        }
        setting["now"] = state_json(result.now, row);
        setting["after_next_initialisation"] = state_json(result.afterNextStart, row);
        settings.push_back(setting);
    }
    return settings;
}

Json diagnostic_json(const Diagnostic& diagnostic) {
    static constexpr const char* kSeverities[] = {"note", "warning", "error"};
    return {{"severity", kSeverities[static_cast<int>(diagnostic.severity)]},
            {"code", diagnostic.code},
            {"place", place_json(diagnostic.place)},
            {"token", diagnostic.token},
            {"message", diagnostic.message},
            {"suggestion", diagnostic.suggestion}};
}

Json ignored_json(const IgnoredToken& token) {
    return {{"token", token.text}, {"code", token.code}, {"place", place_json(token.place)}};
}

// Bytes that are no UTF-8 are replaced, so that the answer can always be read.
std::string dumped(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

void print(std::ostream& out, const Json& json) {
    out << dumped(json, 2) << "\n";
}

// An element a line, written as it is made: a text of megabytes has millions of them.
template <typename Elements, typename ToJson>
void print_list(std::ostream& out, const char* name, const Elements& elements, ToJson to_json) {
    out << "  \"" << name << "\": [";
    const char* between = "\n";
    for (const auto& element : elements) {
        out << between << "    " << dumped(to_json(element));
        between = ",\n";
    }
    out << "],\n";
}

void print_check(std::ostream& out, const CheckResult& result, const std::string& name) {
    static constexpr const char* kVerdicts[] = {"clean", "warnings", "errors"};
    out << "{\n  \"name\": " << dumped(name) << ",\n  \"bytes\": " << result.bytes
        << ",\n  \"bytes_read\": " << result.bytesRead << ",\n  \"verdict\": \""
        << kVerdicts[result.exit_code()] << "\",\n";
    print_list(out, "diagnostics", result.diagnostics, diagnostic_json);
    print_list(out, "ignored", result.ignored, ignored_json);
    out << "  \"settings\": " << dumped(result_settings(result), 2) << "}";
}

}  // namespace

void print_settings_json(std::ostream& out, int onlyRow) {
    Json settings = Json::array();
    for (int row = 0; row < android::kSettings; ++row) {
        if (onlyRow < 0 || row == onlyRow) {
            settings.push_back(setting_json(row));
        }
    }
    print(out, onlyRow < 0 ? settings : settings[0]);
}

void print_check_json(std::ostream& out, const std::vector<NamedResult>& results) {
    const bool list = results.size() > 1;
    out << (list ? "[" : "");
    for (size_t i = 0; i < results.size(); ++i) {
        out << (i > 0 ? ",\n" : "");
        print_check(out, *results[i].result, results[i].name);
    }
    out << (list ? "]\n" : "\n");
}

}  // namespace zoq
