#include "tools/zoq/plot.h"

#include <sstream>

#include "tools/zoq/gnuplot.h"

namespace zoq {

namespace {

constexpr int kWidth = 900;  // pixels
constexpr int kHeight = 500;

std::string script_of(const Plot& plot) {
    std::ostringstream script;
    script << "set title " << gnuplot_text(plot.title) << "\nset xlabel 'Hz'\nset ylabel "
           << gnuplot_text(plot.yLabel) << "\nset logscale x\nset grid\nset xrange [" << plot.hz.front()
           << ":" << plot.hz.back() << "]\n"
           << "set xtics (20,50,100,200,500,'1k' 1000,'2k' 2000,'5k' 5000,'10k' 10000,'20k' 20000)\n";
    for (size_t c = 0; c < plot.curves.size(); ++c) {
        script << (c == 0 ? "plot" : ",") << " '-' using 1:2 with lines linewidth 2 title "
               << gnuplot_text(plot.curves[c].title);
    }
    script << "\n";
    for (const PlotCurve& curve : plot.curves) {
        for (size_t i = 0; i < plot.hz.size(); ++i) {
            script << plot.hz[i] << " " << curve.y[i] << "\n";
        }
        script << "e\n";
    }
    return script.str();
}

}  // namespace

void draw(const Plot& plot, const std::string& path) {
    draw_with_gnuplot(script_of(plot), kWidth, kHeight, path);
}

}  // namespace zoq
