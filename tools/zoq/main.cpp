// zoq: the engine on a desk.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "tools/zoq/config_command.h"
#include "tools/zoq/descriptor.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/interruption.h"
#include "tools/zoq/measure_command.h"
#include "tools/zoq/params_command.h"
#include "tools/zoq/render_command.h"
#include "tools/zoq/simulate/command.h"
#include "tools/zoq/tables/command.h"

namespace {

constexpr char kFooter[] =
    "'zoq COMMAND --help' says more. Exit code: 0 done, 1 failed while running, 2 wrong command line.";

int fail(std::string message, int code) {
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::fprintf(stderr, "zoq: %s\n", message.c_str());
    return code;
}

// Help and version text; what cannot be printed is a failure.
int print(const std::string& text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
        return fail("cannot write standard output", zoq::kExitFailure);
    }
    return zoq::kExitOk;
}

// The word that stands where a command is due and names none; "" for none.
std::string unknown_command(const CLI::App& app, int argc, char** argv) {
    const CLI::App* chosen = &app;
    for (int i = 1; i < argc && chosen->get_require_subcommand_min() > 0; ++i) {
        if (chosen->get_subcommands().empty()) {
            return argv[i][0] != '-' ? argv[i] : "";
        }
        chosen = chosen->get_subcommands().front();
    }
    return "";
}

// The words that chose the command: "zoq tables import".
std::string chosen_command(const CLI::App& app) {
    std::string words = app.get_name();
    for (const CLI::App* chosen = &app; !chosen->get_subcommands().empty();) {
        chosen = chosen->get_subcommands().front();
        words += " " + chosen->get_name();
    }
    return words;
}

int run(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
        return zoq::kExitOk;
    } catch (const CLI::CallForHelp&) {
        return print(app.help());
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        const std::string unknown = unknown_command(app, argc, argv);
        const std::string message = unknown.empty() ? error.what() : "unknown command '" + unknown + "'";
        return fail(message + " (" + chosen_command(app) + " --help)", zoq::kExitUsage);
    }
}

}  // namespace

int main(int argc, char** argv) {
    zoq::occupy_standard_descriptors();
    zoq::watch_signals();
    try {
        CLI::App app("Processes sound with libzoq2processing as a phone would.", "zoq");
        app.footer(kFooter);
        app.set_version_flag("--version", "zoq " ZOQ_VERSION);
        app.require_subcommand(1);
        zoq::add_render_command(app);
        zoq::add_measure_command(app);
        zoq::add_simulate_command(app);
        zoq::add_params_command(app);
        zoq::add_config_command(app);
        zoq::add_tables_command(app);
        return run(app, argc, argv);
    } catch (const zoq::ExitCode& exit) {
        return exit.code;
    } catch (const zoq::UsageFailure& failure) {
        return fail(failure.what(), zoq::kExitUsage);
    } catch (const zoq::Interrupted& interrupted) {
        fail("interrupted", zoq::kExitFailure);
        zoq::end_by_signal(interrupted.signal);
    } catch (const std::bad_alloc&) {
        return fail("out of memory", zoq::kExitFailure);
    } catch (const std::exception& failure) {
        return fail(failure.what(), zoq::kExitFailure);
    }
}
