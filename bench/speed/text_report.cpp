#include <cmath>
#include <cstdio>

#include "bench/speed/reports.h"
#include "bench/speed/work.h"

namespace bench {

namespace {

using android::KernelLevel;

constexpr size_t kNameWidth = 30, kRatioWidth = 22, kTimeWidth = 9;

std::string padded(const std::string& text, size_t width) {
    return text + std::string(text.size() < width ? width - text.size() : 0, ' ');
}

std::string number(double value, int decimals) {
    char text[40];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return std::isnan(value) ? "-" : text;
}

// "0.312 of 0.35, met"
std::string judged(double value, double most) {
    if (std::isnan(value) || !(most > 0.0)) {
        return number(value, 3);
    }
    char text[80];
    std::snprintf(text, sizeof text, "%.3f of %g, %s", value, most, value <= most ? "met" : "missed");
    return text;
}

std::string line(const std::vector<std::string>& first, const std::vector<std::string>& rest, size_t width) {
    std::string text = "|";
    for (const std::string& value : first) {
        text += " " + padded(value, kNameWidth) + " |";
    }
    for (const std::string& value : rest) {
        text += " " + padded(value, width) + " |";
    }
    return text + "\n";
}

std::vector<std::string> level_names(size_t from) {
    std::vector<std::string> result;
    for (size_t i = from; i < levels().size(); ++i) {
        result.push_back(name_of(levels()[i]));
    }
    return result;
}

std::string ratio_table(const Speed& speed) {
    const std::vector<std::string> heads = level_names(1), rules(heads.size(), "---");
    std::string text =
        line({"job", "against"}, heads, kRatioWidth) + line({"---", "---"}, rules, kRatioWidth);
    for (const Comparison& row : comparisons()) {
        std::vector<std::string> cells;
        for (size_t i = 1; i < levels().size(); ++i) {
            cells.push_back(judged(ratio(speed, row, levels()[i]), most(speed, row, levels()[i])));
        }
        text += line({row.job, row.against}, cells, kRatioWidth);
    }
    return text;
}

std::string time_table(const Speed& speed) {
    const std::vector<std::string> heads = level_names(0), rules(heads.size(), "---:");
    std::string text = line({"microseconds"}, heads, kTimeWidth) + line({"---"}, rules, kTimeWidth);
    for (const std::string& name : names(speed)) {
        std::vector<std::string> cells;
        for (const KernelLevel level : levels()) {
            cells.push_back(number(microseconds(speed, name, level), 2));
        }
        text += line({name}, cells, kTimeWidth);
    }
    return text;
}

std::string about_fftw(const Speed& speed, const Machine& machine) {
    std::string text = machine.fftw + ", best plans at";
    for (size_t i = 0; i < levels().size(); ++i) {
        const std::string& set = speed.fftwSets[i];
        text += std::string(i == 0 ? " " : ", ") + name_of(levels()[i]) + ": " +
                (set.empty() ? "no vectors" : set);
    }
    return text;
}

}  // namespace

std::string text_report(const Speed& speed, const Machine& machine) {
    return machine.processor + "; " + machine.compiler + "; `" + machine.flags + "`; the least of " +
           std::to_string(speed.turns) + " turns on one core; " + about_fftw(speed, machine) + ".\n\n" +
           ratio_table(speed) +
           "\nTimes of one call, for modules and hops of one hop of 512 sample frames:\n\n" +
           time_table(speed);
}

}  // namespace bench
