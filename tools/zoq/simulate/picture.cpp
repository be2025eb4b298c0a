#include <algorithm>
#include <sstream>

#include "tools/zoq/gnuplot.h"
#include "tools/zoq/simulate/report.h"

namespace zoq {

namespace {

constexpr int kWidth = 1000;  // pixels
constexpr int kHeight = 1100;

// Of the labels of events, in widths of the picture.
constexpr double kLabelShift = 0.008, kLabelWidth = 0.014;

// Blocks as named data: begin, crossfade in %, expected delay, received, waiting, full compression in dB.
void write_blocks(std::ostream& script, const Simulation& simulation) {
    script << "$blocks << EOD\n";
    for (const PlayedBlock& block : simulation.blocks) {
        script << block.seconds << ' ' << block.mix / 51.2 << ' ' << block.latency.total() << ' '
               << block.inFrames << ' ' << block.outFrames << ' ' << block.fullDb << '\n';
    }
    script << "EOD\n";
}

// Spans of one kind of block as boxes behind the curves.
void write_spans(std::ostream& script, const Simulation& simulation, BlockState state, const char* colour) {
    const auto& blocks = simulation.blocks;
    for (size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i].state == state) {
            const double from = blocks[i].seconds;
            while (i + 1 < blocks.size() && blocks[i + 1].state == state) {
                ++i;
            }
            script << "set object rectangle from " << from << ", graph 0 to "
                   << blocks[i].seconds + double(blocks[i].frames) / blocks[i].rate
                   << ", graph 1 behind fillstyle solid noborder fillcolor rgb '" << colour << "'\n";
        }
    }
}

// A line through all curves and, in the first of them, what it stands for; the words beside the line, or beside the
// words of an event just before.
void write_events(std::ostream& script, const Simulation& simulation, double end) {
    double free = 0.0;
    for (const HostEvent& event : simulation.events) {
        script << "set arrow from " << event.seconds << ", graph 0 to " << event.seconds
               << ", graph 1 nohead dashtype 2 linecolor rgb '#606060'\n";
        const double at = std::max(event.seconds + kLabelShift * end, free);
        free = at + kLabelWidth * end;
        script << "set label " << gnuplot_text(words_of(event)) << " at " << at
               << ", graph 0.1 rotate by 90 front font ',10'\n";
    }
}

}  // namespace

void draw_simulation(const Simulation& simulation, const std::string& path) {
    std::ostringstream script;
    write_blocks(script, simulation);
    script << "$clicks << EOD\n";
    for (const SimulatedClick& click : simulation.clicks) {
        script << click.seconds << ' ' << click.measured << '\n';
    }
    script << "EOD\n";
    const PlayedBlock& last = simulation.blocks.back();
    const double end = last.seconds + double(last.frames) / last.rate;
    script << "set xrange [0:" << end << "]\nset grid\n";
    write_spans(script, simulation, BlockState::kUntouched, "#e8e8e8");
    write_spans(script, simulation, BlockState::kUnderrun, "#ffb0a0");
    write_events(script, simulation, end);
    script
        << "set multiplot layout 4,1\nset lmargin 10\nset rmargin 4\nset key outside top center horizontal\n"
        << "set title 'grey: untouched; red: underrun; dashed: the host changes something'\n"
        << "set ylabel 'processed, %'\nset yrange [-5:105]\n"
        << "plot $blocks using 1:2 with steps linewidth 2 title 'crossfade'\n"
        << "unset title\nunset label\nset ylabel 'sample frames'\nset yrange [0:*]\n"
        << "plot $blocks using 1:3 with steps linewidth 2 title 'delay, expected', "
        << "$clicks using 1:($2 < 0 ? NaN : $2) with points pointtype 7 title 'delay of clicks, measured'\n"
        << "plot $blocks using 1:4 with steps title 'received, not yet processed', "
        << "$blocks using 1:5 with steps title 'processed, waiting'\n"
        << "set xlabel 'seconds'\nset ylabel 'dB'\nset yrange [17:22]\n"
        << "plot $blocks using 1:6 with steps linewidth 2 title 'full compression'\n"
        << "unset multiplot\n";
    draw_with_gnuplot(script.str(), kWidth, kHeight, path);
}

}  // namespace zoq
