#include <sstream>

#include "tools/zoq/gnuplot.h"
#include "tools/zoq/simulate/report.h"

namespace zoq {

namespace {

constexpr int kWidth = 1000;  // pixels
constexpr int kHeight = 900;

// Blocks as named data: begin, crossfade in %, expected delay, received, waiting.
void write_blocks(std::ostream& script, const Simulation& simulation) {
    script << "$blocks << EOD\n";
    for (const PlayedBlock& block : simulation.blocks) {
        script << block.seconds << ' ' << block.mix / 51.2 << ' ' << block.latency.total() << ' '
               << block.inFrames << ' ' << block.outFrames << '\n';
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

void write_events(std::ostream& script, const Simulation& simulation) {
    for (const HostEvent& event : simulation.events) {
        script << "set arrow from " << event.seconds << ", graph 0 to " << event.seconds
               << ", graph 1 nohead dashtype 2 linecolor rgb '#606060'\n";
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
    script << "set xrange [0:" << last.seconds + double(last.frames) / last.rate << "]\nset grid\n";
    write_spans(script, simulation, BlockState::kUntouched, "#e8e8e8");
    write_spans(script, simulation, BlockState::kUnderrun, "#ffb0a0");
    write_events(script, simulation);
    script
        << "set multiplot layout 3,1\nset key outside top center horizontal\n"
        << "set title 'grey: untouched; red: underrun; dashed: the host changes something'\n"
        << "set ylabel 'processed, %'\nset yrange [-5:105]\n"
        << "plot $blocks using 1:2 with steps linewidth 2 title 'crossfade'\n"
        << "unset title\nset ylabel 'sample frames'\nset yrange [0:*]\n"
        << "plot $blocks using 1:3 with steps linewidth 2 title 'delay, expected', "
        << "$clicks using 1:($2 < 0 ? NaN : $2) with points pointtype 7 title 'delay of clicks, measured'\n"
        << "set xlabel 'seconds'\n"
        << "plot $blocks using 1:4 with steps title 'received, not yet processed', "
        << "$blocks using 1:5 with steps title 'processed, waiting'\n"
        << "unset multiplot\n";
    draw_with_gnuplot(script.str(), kWidth, kHeight, path);
}

}  // namespace zoq
