#include <sstream>

#include "bench/module_calls.h"
#include "bench/speed/reports.h"
#include "bench/speed/work.h"
#include "tools/zoq/gnuplot.h"

namespace bench {

namespace {

constexpr int kWidth = 1000, kHeight = 560;  // pixels
constexpr const char* kColours[] = {"#a0a0a0", "#e0a040", "#c8501e", "#1f5fa8"};

// A row per bar group: name, time at each level.
void write_times(std::ostream& script, const Speed& speed) {
    std::vector<std::string> groups = {kTransform};
    for (const ModuleCall& module : kModuleCalls) {
        groups.push_back(module.name);
    }
    script << "$times << EOD\n";
    for (const std::string& name : groups) {
        script << name;
        for (const android::KernelLevel level : levels()) {
            script << ' ' << microseconds(speed, name, level);
        }
        script << '\n';
    }
    script << "EOD\n";
}

}  // namespace

void draw(const Speed& speed, const Machine& machine, const std::string& path) {
    std::ostringstream script;
    write_times(script, speed);
    script
        << "set title " << zoq::gnuplot_text("time per hop, " + machine.processor + ", " + machine.compiler)
        << "\nset ylabel 'microseconds, logarithmic'\nset logscale y\nset yrange [0.5:*]\nset grid "
           "ytics\nset key top right\n"
           "set style data histograms\nset style histogram clustered gap 1\nset style fill solid noborder\n"
           "plot";
    for (size_t i = 0; i < levels().size(); ++i) {
        script << (i == 0 ? " " : ", ") << "$times using " << i + 2 << ":xtic(1) linecolor rgb '"
               << kColours[i] << "' title '" << name_of(levels()[i]) << "'";
    }
    script << '\n';
    zoq::draw_with_gnuplot(script.str(), kWidth, kHeight, path);
}

}  // namespace bench
