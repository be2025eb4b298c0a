#include "tools/zoq/measure_command.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <memory>

#include "tools/zoq/failure.h"
#include "tools/zoq/file_names.h"
#include "tools/zoq/gnuplot.h"
#include "tools/zoq/measure/measurements.h"
#include "tools/zoq/measure/pictures.h"
#include "tools/zoq/measure/reports.h"
#include "tools/zoq/settings_options.h"
#include "tools/zoq/text_file.h"

namespace zoq {

namespace {

const std::map<std::string, Measure> kMeasures = {
    {"response", Measure::kResponse},     {"impulse", Measure::kImpulse}, {"latency", Measure::kLatency},
    {"distortion", Measure::kDistortion}, {"static", Measure::kStatic},   {"dynamics", Measure::kDynamics},
    {"crosstalk", Measure::kCrosstalk},   {"clicks", Measure::kClicks}};

const std::map<std::string, Excitation> kExcitations = {
    {"mid", Excitation::kMid}, {"side", Excitation::kSide}, {"left", Excitation::kLeft}};

struct MeasureCommand {
    MeasureOptions options;
    std::string what = "all";
    std::string excitation = "mid";
    bool json = false;
    bool quiet = false;
    std::string csv;
    std::string picture;
};

constexpr char kMeasureFooter[] =
    "The engine is measured from outside: every measurement starts it anew, plays 16-bit sound through its "
    "entry\n"
    "points, and looks at what comes out once processing is faded in.\n"
    "\n"
    "  response    gain and phase, by an exponential sweep of 5.5 s from 2 Hz to 24 kHz at --level; "
    "harmonics\n"
    "              are left out; a compressor at work shows with the gain it has at each frequency\n"
    "  impulse     the same sweep's impulse response\n"
    "  latency     where it peaks and where it reaches a tenth of that; the expected value is that of "
    "blocks, hop\n"
    "              and widening: filters and rooms peak some samples later\n"
    "  distortion  harmonics 2 to 9, THD and THD+N of a tone and of a bass tone at --level\n"
    "  static      output level over input level, -70 to 0 dBFS\n"
    "  dynamics    the time that nine tenths of the change of gain, in dB, take behind a step of the "
    "input's\n"
    "              level (--step), and back; a tone of 8000 Hz has no ripple that the compressor could "
    "follow.\n"
    "              Where the louder tone would leave full scale until the compressor has acted, the limiter\n"
    "              takes part, and the report says so; on headphones above 90 % it is faster: --step -36 "
    "-20\n"
    "  crosstalk   what the right output has of a left input, at --level\n"
    "  clicks      switching on and off while 200 Hz play at --level: the largest difference of two "
    "neighbouring\n"
    "              samples against the largest without switching, and what is heard above 8 kHz\n"
    "\n"
    "Levels are of full scale: a sine at 0 dBFS just fills 16 bits. /etc/zoq/zoq_config.txt applies if it "
    "exists.\n"
    "\n"
    "Exit code: 0 done; 1 a file cannot be read or written; 2 the command line is wrong.";

void add_measure_options(CLI::App& app, MeasureCommand& command) {
    app.add_option("--what", command.what,
                   "response, impulse, latency, distortion, static, dynamics, crosstalk, clicks, joined by "
                   "commas; or "
                   "all (default)")
        ->option_text("LIST");
    app.add_option(
           "--excite", command.excitation,
           "mid (default): both channels alike; side: the right one inverted; left: the right one silent")
        ->check(CLI::IsMember({"mid", "side", "left"}))
        ->option_text("CHANNELS");
    MeasureOptions& options = command.options;
    app.add_option("--level", options.levelDb, "peak of the excitation, -80 to 0 dBFS (default: -20)")
        ->check(number_within(-80.0, 0.0))
        ->option_text("DB");
    app.add_option("--tone", options.toneHz,
                   "for distortion, static and dynamics, 20 to 20000 Hz (default: 1000); a period of 3 "
                   "samples or more, whole, "
                   "for the latter two")
        ->check(number_within(20.0, 20000.0))
        ->option_text("HZ");
    app.add_option("--step", options.stepDb, "levels for dynamics, -80 to 0 dBFS (default: -30 -6)")
        ->option_text("LOW HIGH");
    app.add_option("--bass", options.bassHz, "for distortion, 20 to 20000 Hz (default: 50)")
        ->check(number_within(20.0, 20000.0))
        ->option_text("HZ");
}

void add_output_options(CLI::App& app, MeasureCommand& command) {
    app.add_flag("--json", command.json, "print everything as JSON instead of text");
    app.add_option("--csv", command.csv, "write everything as a table; '-' prints it instead of text")
        ->option_text("FILE");
    app.add_option("--plot", command.picture, "draw a picture, .svg or .png (needs gnuplot)")
        ->option_text("FILE");
    app.add_flag("-q,--quiet", command.quiet, "no messages but errors");
}

std::set<Measure> chosen(const std::string& list) {
    std::set<Measure> measures;
    for (const std::string& name : CLI::detail::split(list, ',')) {
        const auto found = kMeasures.find(name);
        if (found != kMeasures.end()) {
            measures.insert(found->second);
        } else if (name == "all") {
            for (const auto& [each, measure] : kMeasures) {
                measures.insert(measure);
            }
        } else {
            throw UsageFailure("--what: no measurement is called " + quoted(name));
        }
    }
    return measures;
}

void check(const MeasureCommand& command) {
    if (command.json && command.csv == "-") {
        throw UsageFailure("--json and --csv - both want standard output");
    }
    const auto [low, high] = command.options.stepDb;
    if (!(low >= -80.0 && high > low && high <= 0.0)) {
        throw UsageFailure("--step needs two levels of -80 to 0 dBFS, the lower one first");
    }
    const std::vector<NamedFile> outputs = {{"--csv", command.csv}, {"--plot", command.picture}};
    check_different(outputs);
    for (const std::string& text : command.options.engine.files) {
        check_kept({{"--config", text}}, outputs);
    }
    if (!command.picture.empty() && !is_picture_path(command.picture)) {
        throw UsageFailure("cannot draw " + quoted(command.picture) + ": the name must end in .svg or .png");
    }
}

void run_measure(MeasureCommand& command) {
    MeasureOptions& options = command.options;
    check(command);
    options.what = chosen(command.what);
    options.excitation = kExcitations.at(command.excitation);
    resolve(options.engine);
    const Measurements results = measure(options);
    if (!command.picture.empty()) {
        draw_measurements(options, results, command.picture);
    }
    if (!command.csv.empty() && command.csv != "-") {
        write_text(command.csv, csv_report(results));
    }
    write_text("-", command.csv == "-" ? csv_report(results)
                    : command.json     ? json_report(options, results)
                                       : text_report(options, results));
}

}  // namespace

void add_measure_command(CLI::App& app) {
    CLI::App* measure = app.add_subcommand("measure", "Measure what the engine does at given settings");
    measure->footer(kMeasureFooter);
    const auto command = std::make_shared<MeasureCommand>();
    add_settings_options(*measure, command->options.engine);
    add_measure_options(*measure, *command);
    add_output_options(*measure, *command);
    measure->callback([command] { run_measure(*command); });
}

}  // namespace zoq
