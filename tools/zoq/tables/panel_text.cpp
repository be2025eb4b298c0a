#include "tools/zoq/tables/panel_text.h"

#include <cmath>
#include <cstdio>

namespace zoq::gnuplot {

namespace {

constexpr double kSilence = 1e-14;  // float rounding of full scale

constexpr const char* kColours[] = {"#1f5fa8", "#c8501e", "#2e8b57", "#7a4fa3", "#404040"};

}  // namespace

const char kFrequencyAxis[] =
    "set logscale x\n"
    "set xtics (20, 50, 100, 200, 500, '1k' 1000, '2k' 2000, '5k' 5000, '10k' 10000, '20k' 20000)\n"
    "set xlabel 'frequency (Hz)'\n";

double power_db(double power) {
    return power > kSilence ? 10.0 * std::log10(power) : std::nan("");
}

std::string block(const std::string& name, const Rows& rows) {
    std::string text = "$" + name + " << END\n";
    for (const std::vector<double>& row : rows) {
        for (const double value : row) {
            char digits[32];
            std::snprintf(digits, sizeof digits, "%.7g ", value);
            text += digits;
        }
        text += "\n";
    }
    return text + "END\n";
}

std::string line(const std::string& source, const std::string& columns, const std::string& title,
                 size_t colour, double width) {
    char style[64];
    std::snprintf(style, sizeof style, " with lines lw %.1f lc rgb '%s'", width, kColours[colour]);
    return source + " using " + columns + style + " title '" + title + "'";
}

std::string joined(const std::vector<std::string>& curves) {
    std::string text = "plot ";
    for (const std::string& curve : curves) {
        text += curve + (&curve == &curves.back() ? "\n" : ", \\\n     ");
    }
    return text;
}

}  // namespace zoq::gnuplot
