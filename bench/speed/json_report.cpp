#include <nlohmann/json.hpp>

#include <cmath>

#include "bench/speed/reports.h"
#include "bench/speed/work.h"

namespace bench {

namespace {

using nlohmann::ordered_json;

// By level; nothing where nothing was measured.
template <typename Value>
ordered_json by_level(size_t from, Value value) {
    ordered_json result = ordered_json::object();
    for (size_t i = from; i < levels().size(); ++i) {
        if (const double x = value(levels()[i]); !std::isnan(x)) {
            result[name_of(levels()[i])] = x;
        }
    }
    return result;
}

ordered_json to_json(const Speed& speed, const Comparison& row) {
    return {{"job", row.job},
            {"against", row.against},
            {"ratio", by_level(1, [&](android::KernelLevel level) { return ratio(speed, row, level); })},
            {"most", by_level(1, [&](android::KernelLevel level) {
                 const double value = most(speed, row, level);
                 return value > 0.0 ? value : std::nan("");
             })}};
}

}  // namespace

std::string json_report(const Speed& speed, const Machine& machine) {
    ordered_json result = {{"processor", machine.processor},
                           {"compiler", machine.compiler},
                           {"flags", machine.flags},
                           {"turns", speed.turns},
                           {"fftw", machine.fftw},
                           {"fftwSets", speed.fftwSets},
                           {"comparisons", ordered_json::array()},
                           {"microseconds", ordered_json::object()}};
    for (const Comparison& row : comparisons()) {
        result["comparisons"].push_back(to_json(speed, row));
    }
    for (const std::string& name : names(speed)) {
        result["microseconds"][name] =
            by_level(0, [&](android::KernelLevel level) { return microseconds(speed, name, level); });
    }
    return result.dump(2) + "\n";
}

}  // namespace bench
