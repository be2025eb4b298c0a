#include "tools/zoq/simulate/command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/zoq/failure.h"
#include "tools/zoq/gnuplot.h"
#include "tools/zoq/simulate/report.h"
#include "tools/zoq/text_file.h"

namespace zoq {

namespace {

struct SimulateCommand {
    SimulationOptions options;
    std::vector<std::pair<double, std::string>> events;
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
    "turns), rate=HZ, device=MASK (decimal or 0x...; also output_device=MASK), route=speaker|headphone,\n"
    "volume=INDEX, processing=on|off (for HIFIPARA), every setting of 'zoq params' that has a number, and\n"
    "init, without a value: the host calls ZOQ_OUTPROC_PLAY_INIT between two blocks. That sets the volume\n"
    "index to 15 and what the modules derive from settings to its defaults, --config and --set included.\n"
    "An event comes with the first block that begins at its time or later. A schedule's remarks begin\n"
    "with '#'.\n"
    "\n"
    "Columns of the text, one line for every event and for the first block after each change:\n"
    "  seconds   when the block begins\n"
    "  block     its size in sample frames\n"
    "  state     untouched (a new stream settles), dry, fading in, processed, fading out, underrun\n"
    "  delay     expected of this block's sound, in sample frames: queue, chain and widening together\n"
    "  received  sample frames that wait for the rest of a hop, after the block\n"
    "  waiting   sample frames that are ready and wait for later blocks, after the block\n"
    "  wet       how far the crossfade has come, 100 % is all processed\n"
    "  vol       volume index\n"
    "  dB        full compression, of which CompressionGain takes a percentage: loudspeaker 18, above\n"
    "            volume_index_switch 21; headphones 20 (of Headphone_CompressionGain)\n"
    "\n"
    "Exit code: 0 done; 1 a file cannot be read or written; 2 the command line is wrong.";

std::vector<HostEvent> scheduled(const SimulateCommand& command) {
    std::vector<HostEvent> events;
    const auto add = [&events](const std::vector<HostEvent>& more) {
        events.insert(events.end(), more.begin(), more.end());
    };
    for (const auto& [seconds, text] : command.events) {
        add(host_events(seconds, text, "--at"));
    }
    if (!command.schedule.empty()) {
        add(read_schedule(read_text(command.schedule), command.schedule));
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const HostEvent& a, const HostEvent& b) { return a.seconds < b.seconds; });
    return events;
}

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
    options.events = scheduled(command);
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
        ->check(number_within(0.01, 3600.0))
        ->option_text("S");
    simulate->add_option("--at", command->events, "what changes at a time in seconds; may be repeated")
        ->option_text("TIME KEY=VALUE;...");
    simulate->add_option("--schedule", command->schedule, "a text of such lines; '-' is standard input")
        ->option_text("FILE");
    simulate->add_option("--plot", command->picture, "draw a picture, .svg or .png (needs gnuplot)")
        ->option_text("FILE");
    const std::vector<CLI::Option*> ofPlayback =
        simulate->get_options([](const CLI::Option* option) { return option->get_name() != "--help"; });
    CLI::Option* scan = simulate->add_flag(
        "--scan", command->scan,
        "instead, alone or with --json: run every block size from 1 to 4096, name those that never underrun");
    for (CLI::Option* option : ofPlayback) {
        scan->excludes(option);
    }
    simulate->add_flag("--json", command->json, "print everything as JSON instead of text");
    simulate->callback([command] { run_simulate(*command); });
}

}  // namespace zoq
