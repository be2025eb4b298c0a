#include "tools/zoq/render_command.h"

#include <unistd.h>
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "tools/zoq/failure.h"
#include "tools/zoq/render.h"
#include "tools/zoq/report.h"
#include "tools/zoq/settings_options.h"

namespace zoq {

namespace {

struct RenderCommand {
    RenderOptions options;
    bool quiet = false;
    bool textReport = false;
    bool jsonReport = false;
};

constexpr char kRenderFooter[] =
    "The output is 16-bit stereo at 48000 Hz, WAV or FLAC by its name. It has as many sample frames as the\n"
    "input at that rate, and without --at every sound sits where it was: the engine's start, fade-in and "
    "delay\n"
    "are taken off. --as-played leaves them in: 6000 sample frames (0.125 s) untouched, a fade-in of 5120, "
    "the delay.\n"
    "\n"
    "--at takes effect with the first block that begins at or behind its time: up to 10.7 ms late, 384 ms "
    "with\n"
    "--block 18432. The delay taken off is that of the beginning. A change of route starts anew, as on a "
    "phone:\n"
    "6000 sample frames pass untouched, and so as much early as the delay was, then processing fades in with "
    "the\n"
    "new route's delay. From the loudspeaker to headphones every sound sits 180 sample frames early from "
    "then on\n"
    "(512 instead of 692); with processing=off it sits early by all of the chain's delay.\n"
    "\n"
    "--level-match has the length of OUTPUT. Two of the files that are written must not be the same one.\n"
    "\n"
    "INPUT is anything libsndfile reads: WAV, FLAC, Ogg Vorbis, Opus, MP3, ... at any rate, with up to 8\n"
    "channels. '-' is standard input or standard output (as WAV), both kept in memory. The report goes to\n"
    "standard output, or to standard error when OUTPUT is '-'. /etc/zoq/zoq_config.txt applies if it "
    "exists.\n"
    "\n"
    "Exit code: 0 done; 1 a file cannot be read or written (nothing half-written remains, and an existing\n"
    "OUTPUT stays as it was); 2 the command line is wrong.";

void add_files(CLI::App& app, RenderOptions& options) {
    app.add_option("INPUT", options.input, "the file to process, or - for standard input")->required();
    app.add_option("OUTPUT", options.output, "the .wav or .flac file to write, or - for standard output")
        ->required();
}

void add_engine_options(CLI::App& app, RenderCommand& command) {
    RenderOptions& options = command.options;
    add_settings_options(app, options.engine);
    app.add_option(
           "--at", options.timeline,
           "settings that change at a time of the input, in seconds: KEY=VALUE;... as with --set, and "
           "volume=INDEX, route=speaker|headphone, processing=on|off; may be repeated")
        ->option_text("TIME SETTINGS");
    app.add_flag("--bypass", options.bypass, "processing off: the output equals the input");
    app.add_flag("--as-played", options.asPlayed, "what a phone's listener hears, start and delay included");
}

void add_report_options(CLI::App& app, RenderCommand& command) {
    CLI::Option* text =
        app.add_flag("--report", command.textReport, "print loudness, true peak, delay and speed when done");
    app.add_flag("--json", command.jsonReport, "print the report as JSON")->excludes(text);
    app.add_option("--level-match", command.options.levelMatch,
                   "write the input, unprocessed, at the loudness of the output, for a fair comparison")
        ->option_text("FILE");
    app.add_option("--curves", command.options.curves,
                   "write outlines and spectra, before and after, as a table for gnuplot")
        ->option_text("FILE");
    app.add_flag("-q,--quiet", command.quiet, "no messages but errors, no progress bar");
}

void print(std::FILE* stream, const std::string& text) {
    if (std::fputs(text.c_str(), stream) < 0 || std::fflush(stream) != 0) {
        throw system_failure("cannot write", "the report", errno);
    }
}

void run_render(RenderCommand& command) {
    RenderOptions& options = command.options;
    resolve(options.engine);
    options.measure = command.textReport || command.jsonReport;
    options.showProgress = !command.quiet;
    const bool quiet = command.quiet;
    const RenderResult result = render(options, [quiet](const std::string& line) {
        if (!quiet) {
            std::fprintf(stderr, "zoq: %s\n", line.c_str());
        }
    });
    if (options.measure) {
        print(options.output == "-" ? stderr : stdout,
              command.jsonReport ? json_report(options, result) : text_report(options, result));
    }
}

}  // namespace

void add_render_command(CLI::App& app) {
    CLI::App* render = app.add_subcommand("render", "Process an audio file as a phone would play it");
    render->footer(kRenderFooter);
    const auto command = std::make_shared<RenderCommand>();
    add_files(*render, command->options);
    add_engine_options(*render, *command);
    add_report_options(*render, *command);
    render->callback([command] { run_render(*command); });
}

}  // namespace zoq
