#include "tools/zoq/tables/panels.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "tables/widening_filters.h"
#include "tools/zoq/tables/panel_text.h"

namespace zoq {

namespace {

using android::kBins;
using android::kDenCurveColumns;
using android::kFrameSamples;
using android::kSampleRateHz;
using android::parameterVB;
using gnuplot::block;
using gnuplot::joined;
using gnuplot::line;
using gnuplot::power_db;
using gnuplot::Rows;
using tables::Signal;

Rows checkpoints(const std::vector<tables::BinLevel>& points) {
    Rows rows;
    for (const tables::BinLevel& point : points) {
        if (point.bin > 0 && point.bin < kBins - 1) {
            rows.push_back({double(point.bin) * kSampleRateHz / kFrameSamples,
                            power_db(point.magnitude * point.magnitude)});
        }
    }
    return rows;
}

Panel widening_magnitudes(const android::parameterTWS& tws) {
    Rows rows;
    for (int k = 1; k < kBins; ++k) {
        const android::creal32_T &s = tws.sameSideFilter[k], &c = tws.crossFeedFilter[k];
        const std::complex<double> same(double(s.re), double(s.im)), cross(double(c.re), double(c.im));
        rows.push_back({double(k) * kSampleRateHz / kFrameSamples, power_db(std::norm(same)),
                        power_db(std::norm(cross)), power_db(std::norm(same + cross)),
                        power_db(std::norm(same - cross))});
    }
    const std::string points = " using 1:2 with points pt 6 ps 1.1 lw 2 lc rgb '#404040' title ";
    return {block("magnitudes", rows) + block("same_points", checkpoints(tables::kSameSideCheckpoints)) +
                block("cross_points", checkpoints(tables::kCrossFeedCheckpoints)),
            std::string(gnuplot::kFrequencyAxis) +
                "set title 'widening filters: magnitude'\n"
                "set xrange [40:24000]\nset yrange [-45:15]\nset ytics 10\nset ylabel 'gain (dB)'\n"
                "set key bottom center\n" +
                joined({line("$magnitudes", "1:2", "same side", 0, 2.5),
                        line("$magnitudes", "1:3", "cross-feed", 1, 2.5),
                        line("$magnitudes", "1:4", "what L + R gets", 2, 1.2),
                        line("$magnitudes", "1:5", "what L - R gets", 3, 1.2),
                        "$same_points" + points + "'checkpoints'", "$cross_points" + points + "''"})};
}

Panel widening_impulses(const android::parameterTWS& tws) {
    const Signal same = tables::impulse_response(tws.sameSideFilter),
                 cross = tables::impulse_response(tws.crossFeedFilter);
    Rows rows;
    for (size_t n = 0; n < same.size(); ++n) {
        rows.push_back({double(n), same[n], cross[n]});
    }
    return {
        block("impulses", rows),
        "set title 'widening filters: impulse response around its peaks'\n"
        "set xrange [140:240]\nset xtics 10\nset xlabel 'time (samples at 48 kHz)'\nset ylabel 'amplitude'\n"
        "set xzeroaxis lt 1 lc rgb '#909090'\n" +
            joined({line("$impulses", "1:2", "same side", 0), line("$impulses", "1:3", "cross-feed", 1)})};
}

}  // namespace

Panel curve_panel(const android::parameterDEN& den) {
    constexpr int kSteps = 100;
    Rows rows(kSteps + 1);
    for (int i = 0; i <= kSteps; ++i) {
        const double u = double(i) / kSteps;
        rows[size_t(i)].push_back(u);
        for (int column = 0; column < kDenCurveColumns; ++column) {
            double value = 0.0;
            for (const auto& row : den.wideCurve) {
                value = value * u + double(row[column]);
            }
            rows[size_t(i)].push_back(std::clamp(value, 0.0, 1.0));
        }
    }
    return {
        block("curves", rows),
        "set title 'pan curves: every fifth column thin, those of wideAmount 1 to 4 thick'\n"
        "set xrange [0:1]\nset yrange [0:1.02]\nset xlabel 'pan (0 centre, 1 side)'\nset ylabel 'new pan'\n"
        "set palette defined (0 '#b0c4de', 1 '#1f3f78')\nset cbrange [1:100]\nunset colorbox\n"
        "set key bottom right\n"
        "plot for [k=5:100:5] $curves using 1:k+1 with lines lw 1 lc palette cb k notitle, \\\n"
        "     $curves using 1:1 with lines lw 1 dt 2 lc rgb '#404040' title 'unchanged', \\\n"
        "     for [a=1:4] $curves using 1:25*a+1 with lines lw 2.8 lc rgb word('#2e8b57 #1f5fa8 #7a4fa3 "
        "#c8501e', a) title sprintf('wideAmount %d (column %d)', a, 25 * a)\n"};
}

std::vector<Panel> widening_panels(const android::parameterTWS& tws) {
    return {widening_magnitudes(tws), widening_impulses(tws)};
}

Panel bass_panel(const std::array<parameterVB, tables::kBassCutoffsHz.size()>& records) {
    constexpr int kSteps = 200;
    Rows rows;
    for (int i = 0; i <= kSteps; ++i) {
        const double hz = 20.0 * std::pow(250.0, double(i) / kSteps);  // to 5 kHz
        std::vector<double> row = {hz};
        for (const parameterVB& vb : records) {
            row.push_back(power_db(tables::cascade_power(vb.lowpassSos, 2, hz)));
            row.push_back(power_db(tables::cascade_power(vb.outputHighpassSos, 2, hz)));
        }
        rows.push_back(row);
    }
    const std::string inUse = std::to_string(2 * 2 + 2), highInUse = std::to_string(2 * 2 + 3);
    return {block("bass", rows),
            std::string(gnuplot::kFrequencyAxis) +
                "set title 'virtual bass: low-pass and output high-pass of the ten cutoffs, 80 Hz thick'\n"
                "set xrange [20:5000]\nset yrange [-60:5]\nset ytics 10\nset ylabel 'gain (dB)'\nset key at "
                "graph 0.98, 0.8\n"
                "plot for [s=0:9] $bass using 1:2*s+2 with lines lw 0.8 lc rgb '#8fb0d8' notitle, \\\n"
                "     for [s=0:9] $bass using 1:2*s+3 with lines lw 0.8 lc rgb '#e3a78c' notitle, \\\n     " +
                line("$bass", "1:" + inUse, "low-pass, 80 Hz", 0, 2.5) + ", \\\n     " +
                line("$bass", "1:" + highInUse, "output high-pass, 80 Hz", 1, 2.5) + "\n"};
}

}  // namespace zoq
