// Measured properties of tables, each with the range it must lie in.
#pragma once

#include <limits>
#include <string>
#include <vector>

namespace zoq::tables {

inline constexpr double kUnbounded = std::numeric_limits<double>::infinity();

struct Figure {
    std::string at;  // where it was measured, such as "bin 10"; may be empty
    double value;
    double low = -kUnbounded, high = kUnbounded;

    // Not-a-number is nowhere within.
    bool passes() const { return value >= low && value <= high; }
};

enum class Verdict { kPass, kFail, kNotCompared };

struct Property {
    std::string name;
    std::string unit;  // empty for plain numbers
    std::vector<Figure> figures;
    std::string notCompared = {};  // why there is nothing to compare with, if so

    Verdict verdict() const;
};

struct TableReport {
    std::string title;
    std::vector<Property> properties;
};

struct Count {
    int passed = 0, failed = 0, notCompared = 0;
};
Count count(const std::vector<TableReport>& reports);

// A property whose figures share one range.
Property within(double low, double high, std::string name, std::string unit, std::vector<Figure> figures);

}  // namespace zoq::tables
