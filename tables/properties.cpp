#include "tables/properties.h"

#include <algorithm>

namespace zoq::tables {

Verdict Property::verdict() const {
    const bool good =
        std::all_of(figures.begin(), figures.end(), [](const Figure& figure) { return figure.passes(); });
    return !good ? Verdict::kFail : notCompared.empty() ? Verdict::kPass : Verdict::kNotCompared;
}

Count count(const std::vector<TableReport>& reports) {
    Count total;
    for (const TableReport& report : reports) {
        for (const Property& property : report.properties) {
            switch (property.verdict()) {
                case Verdict::kPass:
                    ++total.passed;
                    break;
                case Verdict::kFail:
                    ++total.failed;
                    break;
                case Verdict::kNotCompared:
                    ++total.notCompared;
                    break;
            }
        }
    }
    return total;
}

Property within(double low, double high, std::string name, std::string unit, std::vector<Figure> figures) {
    for (Figure& figure : figures) {
        figure.low = low;
        figure.high = high;
    }
    return {std::move(name), std::move(unit), std::move(figures)};
}

}  // namespace zoq::tables
