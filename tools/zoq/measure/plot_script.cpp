#include "tools/zoq/measure/plot_script.h"

#include <algorithm>

#include "tools/zoq/gnuplot.h"

namespace zoq {

namespace {

constexpr int kPanelWidth = 760;  // pixels
constexpr int kPanelHeight = 410;
constexpr int kTitleHeight = 50;
constexpr size_t kLongestTitle = 90;  // letters, as many as fit above one panel

}  // namespace

std::string PlotScript::add(const std::vector<double>& x, const std::vector<double>& y, double gap) {
    std::string name = "$data" + std::to_string(blocks_++);
    data_ << name << " << END\n";
    for (size_t i = 0; i < x.size(); ++i) {
        if (i > 0 && std::abs(y[i] - y[i - 1]) > gap) {
            data_ << "\n";
        }
        data_ << x[i] << " " << y[i] << "\n";
    }
    data_ << "END\n";
    return name;
}

std::string PlotScript::add_levels(const std::vector<double>& x, const std::vector<double>& levels) {
    std::vector<double> shown(levels);
    for (double& level : shown) {
        level = level > kPlotFloorDb ? level : kPlotFloorDb;
    }
    return add(x, shown);
}

std::ostream& PlotScript::panel(const std::string& title, const std::string& x, const std::string& y) {
    ++panels_;
    commands_ << "reset\nset grid lt 1 lw 1 lc rgb '#d8d8d8'\n"
              << "set bmargin 6\nset key bmargin center horizontal samplen 3\nset title "
              << gnuplot_text(title) << "\nset xlabel " << gnuplot_text(x) << "\nset ylabel "
              << gnuplot_text(y) << "\n";
    return commands_;
}

std::ostream& PlotScript::frequency_panel(const std::string& title, const std::string& y) {
    return panel(title, "frequency (Hz)", y) << "set logscale x\nset xrange [20:20000]\nset xtics (20, 50, "
                                                "100, 200, 500, '1k' 1000, '2k' 2000, "
                                                "'5k' 5000, '10k' 10000, '20k' 20000)\n";
}

void PlotScript::draw(const std::string& title, const std::string& path) const {
    const int columns = std::min(2, panels_);
    const int rows = (panels_ + 1) / 2;
    const size_t longest = kLongestTitle * static_cast<size_t>(columns);
    const std::string shown = title.size() > longest ? title.substr(0, longest - 3) + "..." : title;
    std::ostringstream layout;
    layout << "set multiplot layout " << rows << "," << columns << " title " << gnuplot_text(shown)
           << " font 'sans,14'\n";
    draw_with_gnuplot(data_.str() + layout.str() + commands_.str() + "unset multiplot\n",
                      columns * kPanelWidth, rows * kPanelHeight + kTitleHeight, path);
}

std::string curve(const std::string& block, const char* colour, const std::string& title, bool dashed) {
    return block + " with lines lw 2 " + (dashed ? "dt (6,4) " : "") + "lc rgb '" + colour + "' title " +
           gnuplot_text(title);
}

std::string gain_range(const std::vector<const std::vector<double>*>& curves) {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    for (const std::vector<double>* values : curves) {
        for (const double value : *values) {
            if (value > kPlotFloorDb) {
                low = std::min(low, value);
                high = std::max(high, value);
            }
        }
    }
    if (low > high) {
        low = high = 0.0;
    }
    const double margin = std::max(1.0, (20.0 - (high - low)) / 2.0);
    high = 5.0 * std::ceil((high + margin) / 5.0);
    low = std::max(5.0 * std::floor((low - margin) / 5.0), high - 80.0);
    std::ostringstream text;
    text << "set yrange [" << low << ":" << high << "]\n";
    return text.str();
}

std::string vertical_line(double x) {
    std::ostringstream text;
    text << "set arrow from " << x << ", graph 0 to " << x << ", graph 1 nohead dt 2 lc rgb '" << kGrey
         << "'\n";
    return text.str();
}

}  // namespace zoq
