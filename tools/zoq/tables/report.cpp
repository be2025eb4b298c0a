#include "tools/zoq/tables/report.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/zoq/formatted.h"

namespace zoq {

namespace {

using tables::Figure;
using tables::Property;
using tables::TableReport;
using tables::Verdict;
using Json = nlohmann::ordered_json;

constexpr int kFiguresPerLine = 5;

std::string number(double value, const std::string& unit) {
    const bool level = unit == "dB" && std::isfinite(value);
    return level ? formatted("%.2f", value) : formatted("%.7g", value);
}

std::string with_unit(const std::string& text, const std::string& unit) {
    return unit.empty() ? text : text + " " + unit;
}

std::string allowed(const Figure& figure, const std::string& unit) {
    const bool low = std::isfinite(figure.low), high = std::isfinite(figure.high);
    if (low && high) {
        return figure.low == figure.high ? "exactly " + number(figure.low, unit)
                                         : number(figure.low, unit) + " .. " + number(figure.high, unit);
    }
    return low ? "at least " + number(figure.low, unit) : high ? "at most " + number(figure.high, unit) : "";
}

const char* name(Verdict verdict) {
    return verdict == Verdict::kPass ? "ok" : verdict == Verdict::kFail ? "FAIL" : "-";
}

bool share_one_range(const Property& property) {
    return std::all_of(property.figures.begin(), property.figures.end(), [&](const Figure& figure) {
        return figure.low == property.figures[0].low && figure.high == property.figures[0].high;
    });
}

// A figure that fails has a "!" before it.
std::string mark(const Figure& figure) {
    return figure.passes() ? " " : "!";
}

std::string figure_rows(const Property& property) {
    std::string text;
    for (const Figure& figure : property.figures) {
        text += formatted("       %s %-40s  %-20s ", mark(figure).c_str(), figure.at.c_str(),
                          with_unit(number(figure.value, property.unit), property.unit).c_str()) +
                allowed(figure, property.unit) + "\n";
    }
    return text;
}

std::string figure_lines(const Property& property) {
    std::string text;
    int column = 0;
    for (const Figure& figure : property.figures) {
        text += column == 0 ? "       " : "";
        text += formatted(
            "%s %-19s", mark(figure).c_str(),
            (figure.at + (figure.at.empty() ? "" : ": ") + number(figure.value, property.unit)).c_str());
        column = (column + 1) % kFiguresPerLine;
        text += column == 0 ? "\n" : "";
    }
    return column == 0 ? text : text + "\n";
}

std::string row(const Property& property) {
    const bool oneRange = share_one_range(property), single = property.figures.size() == 1;
    std::string text = formatted("  %-4s %-50s ", name(property.verdict()), property.name.c_str());
    if (single) {
        const Figure& figure = property.figures[0];
        text += formatted("%-20s ", with_unit(number(figure.value, property.unit), property.unit).c_str());
    }
    if (!property.notCompared.empty()) {
        text += "not compared";
    } else if (oneRange && !property.figures.empty()) {
        text += with_unit(allowed(property.figures[0], property.unit), single ? "" : property.unit);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += "\n";
    return single ? text : text + (oneRange ? figure_lines(property) : figure_rows(property));
}

// Each reason once.
std::string reasons(const std::vector<TableReport>& reports) {
    std::vector<std::string> found;
    for (const TableReport& report : reports) {
        for (const Property& property : report.properties) {
            if (!property.notCompared.empty() &&
                std::find(found.begin(), found.end(), property.notCompared) == found.end()) {
                found.push_back(property.notCompared);
            }
        }
    }
    std::string text;
    for (const std::string& reason : found) {
        text += "not compared with a measured head: " + reason + "\n";
    }
    return text;
}

std::string trimmed_lines(const std::string& text) {
    std::string lines;
    for (const char c : text) {
        if (c == '\n') {
            lines.erase(lines.find_last_not_of(' ') + 1);
        }
        lines += c;
    }
    return lines;
}

// JSON has no infinities and no not-a-number: an open side of a range and a figure beyond counting are null.
Json number_or_null(double value) {
    return std::isfinite(value) ? Json(value) : Json();
}

Json json(const Property& property) {
    Json figures = Json::array();
    for (const Figure& figure : property.figures) {
        figures.push_back({{"at", figure.at},
                           {"value", number_or_null(figure.value)},
                           {"low", number_or_null(figure.low)},
                           {"high", number_or_null(figure.high)},
                           {"pass", figure.passes()}});
    }
    const Verdict verdict = property.verdict();
    Json item = {{"name", property.name},
                 {"unit", property.unit},
                 {"verdict", verdict == Verdict::kPass   ? "pass"
                             : verdict == Verdict::kFail ? "fail"
                                                         : "not compared"},
                 {"figures", std::move(figures)}};
    if (!property.notCompared.empty()) {
        item["notCompared"] = property.notCompared;
    }
    return item;
}

}  // namespace

std::string tables_text(const std::vector<TableReport>& reports) {
    std::string text;
    for (const TableReport& report : reports) {
        text += report.title + "\n";
        for (const Property& property : report.properties) {
            text += row(property);
        }
        text += "\n";
    }
    const tables::Count count = tables::count(reports);
    return trimmed_lines(
        text + reasons(reports) +
        formatted("%d passed, %d failed, %d not compared\n", count.passed, count.failed, count.notCompared));
}

std::string tables_json(const std::vector<TableReport>& reports) {
    const tables::Count count = tables::count(reports);
    Json all = {{"passed", count.passed},
                {"failed", count.failed},
                {"notCompared", count.notCompared},
                {"tables", Json::array()}};
    for (const TableReport& report : reports) {
        Json properties = Json::array();
        for (const Property& property : report.properties) {
            properties.push_back(json(property));
        }
        all["tables"].push_back({{"title", report.title}, {"properties", std::move(properties)}});
    }
    return all.dump(2) + "\n";
}

}  // namespace zoq
