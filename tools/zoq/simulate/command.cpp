#include "tools/zoq/simulate/command.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/zoq/failure.h"
#include "tools/zoq/gnuplot.h"
#include "tools/zoq/simulate/report.h"
#include "tools/zoq/text_file.h"

namespace zoq {

namespace {

struct SimulateCommand {
    SimulationOptions options;
    std::vector<TimedHostText> events;
    std::string schedule, picture;
    bool scan = false, json = false;
};

constexpr char kSimulateFooter[] =
    "Plays silence with a click now and then, block by block as a host would, processing switched on.\n"
    "Shown over time: where blocks come back untouched, the crossfade, the delay that is expected and\n"
    "the one at which clicks come out, blocks that came back unprocessed because the queue was short\n"
    "(underruns), and what lies in the engine's queues. Filters and rooms are loudest some samples\n"
    "behind the expected delay.\n"
    "\n"
    "--at and the lines of --schedule take KEY=VALUE;... of: block=FRAMES (or 480,512: sizes that take\n"
    "turns), rate=HZ, device=MASK (decimal or 0x...), route=speaker|headphone, volume=INDEX,\n"
    "processing=on|off, and every setting of parameter strings. A schedule's remarks begin with '#'.\n"
    "\n"
    "Exit code: 0 done; 1 a file cannot be read or written; 2 the command line is wrong.";

void run_simulate(SimulateCommand& command) {
    if (!command.picture.empty() && !is_picture_path(command.picture)) {
        throw UsageFailure("cannot draw " + zoq::quoted(command.picture) +
                           ": the name must end in .svg or .png");
    }
    if (command.scan) {
        const Scan scan = scan_block_sizes();
        write_text("-", command.json ? json_report(scan) : text_report(scan));
        return;
    }
    SimulationOptions& options = command.options;
    resolve(options.engine);
    std::vector<TimedHostText> texts = command.events;
    if (!command.schedule.empty()) {
        const auto more = read_schedule(read_text(command.schedule), command.schedule);
        texts.insert(texts.end(), more.begin(), more.end());
    }
    options.events = host_events(texts);
    const Simulation simulation = simulate(options);
    if (!command.picture.empty()) {
        draw_simulation(simulation, command.picture);
    }
    write_text("-", command.json ? json_report(options, simulation) : text_report(options, simulation));
}

}  // namespace

void add_simulate_command(CLI::App& app) {
    CLI::App* simulate = app.add_subcommand(
        "simulate", "Replay a host's block sizes, rates, devices and volume: delay, fade, underruns, queues");
    simulate->footer(kSimulateFooter);
    const auto command = std::make_shared<SimulateCommand>();
    add_settings_options(*simulate, command->options.engine);
    simulate->add_option("--seconds", command->options.seconds, "how long (default: 2)")
        ->check(CLI::Range(0.01, 3600.0))
        ->option_text("S");
    simulate->add_option("--at", command->events, "what changes at a time in seconds; may be repeated")
        ->option_text("TIME KEY=VALUE;...");
    simulate->add_option("--schedule", command->schedule, "a text of such lines; '-' is standard input")
        ->option_text("FILE");
    simulate->add_option("--plot", command->picture, "draw a picture, .svg or .png (needs gnuplot)")
        ->option_text("FILE");
    simulate->add_flag("--scan", command->scan,
                       "instead: run every block size from 1 to 4096 and name those that never underrun");
    simulate->add_flag("--json", command->json, "print everything as JSON instead of text");
    simulate->callback([command] { run_simulate(*command); });
}

}  // namespace zoq
