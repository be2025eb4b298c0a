#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tools/zoq/formatted.h"
#include "tools/zoq/measure/facts.h"
#include "tools/zoq/measure/reports.h"

namespace zoq {

namespace {

using Json = nlohmann::ordered_json;

std::string plain(double value) {
    return std::isfinite(value) ? formatted("%.9g", value) : "";
}

// Nine digits, as in the table.
Json number(double value) {
    return std::isfinite(value) ? Json(std::strtod(plain(value).c_str(), nullptr)) : Json(nullptr);
}

Json numbers(const std::vector<double>& values) {
    Json array = Json::array();
    for (const double value : values) {
        array.push_back(number(value));
    }
    return array;
}

Json& place_of(Json& report, const std::string& measure, const std::string& channel,
               const std::string& quantity) {
    Json& place = report[measure];
    return channel.empty() ? place[quantity] : place[channel][quantity];
}

Json options_object(const MeasureOptions& options) {
    const EngineSettings& engine = options.engine;
    return {
        {"route", route_name(engine.route)}, {"volume", engine.volume ? Json(*engine.volume) : Json(nullptr)},
        {"configurations", engine.files},    {"settings", engine.settings},
        {"blockFrames", engine.blockFrames}, {"excitation", excitation_name(options.excitation)},
        {"levelDbfs", options.levelDb}};
}

}  // namespace

std::string json_report(const MeasureOptions& options, const Measurements& results) {
    Json report = {{"options", options_object(options)}};
    const Facts facts = facts_of(results);
    for (const Figure& figure : facts.figures) {
        place_of(report, figure.measure, figure.channel, figure.quantity) = {{"unit", figure.unit},
                                                                             {"value", number(figure.value)}};
    }
    for (const Series& series : facts.series) {
        place_of(report, series.measure, series.channel, series.quantity) = {
            {"unit", series.unit},
            {"values", numbers(series.values)},
            {"x", {{"quantity", series.xQuantity}, {"unit", series.xUnit}, {"values", numbers(series.x)}}}};
    }
    // File names need not be UTF-8.
    return report.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string csv_report(const Measurements& results) {
    const Facts facts = facts_of(results);
    std::string table = "measure,channel,quantity,x_quantity,x,x_unit,value,unit\n";
    for (const Figure& figure : facts.figures) {
        table += figure.measure + "," + figure.channel + "," + figure.quantity + ",,,," +
                 plain(figure.value) + "," + figure.unit + "\n";
    }
    for (const Series& series : facts.series) {
        const std::string head =
            series.measure + "," + series.channel + "," + series.quantity + "," + series.xQuantity + ",";
        for (size_t i = 0; i < series.x.size(); ++i) {
            table += head + plain(series.x[i]) + "," + series.xUnit + "," + plain(series.values[i]) + "," +
                     series.unit + "\n";
        }
    }
    return table;
}

}  // namespace zoq
