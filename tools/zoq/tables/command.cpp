#include "tools/zoq/tables/command.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>

#include "tables/head_file.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/file_names.h"
#include "tools/zoq/tables/import.h"
#include "tools/zoq/tables/pictures.h"
#include "tools/zoq/tables/records.h"
#include "tools/zoq/tables/report.h"

namespace zoq {

namespace {

struct Command {
    std::string head = tables::kDefaultHeadFile;
    std::string plot;
    bool json = false;
    ImportOptions import;
    bool importJson = false;
};

constexpr char kFooter[] =
    "Measures the tables as the library fills them in: pan curves, widening filters, room responses and the\n"
    "virtual-bass sets, each property with its bound. What a measured head is needed for is left out, and "
    "said\n"
    "to be, when there is none.\n"
    "\n"
    "Exit code: 0 every property passes; 1 one fails, or a file cannot be read or written; 2 the command "
    "line\n"
    "is wrong.";

constexpr char kImportFooter[] =
    "Makes the room responses from another head: a SOFA file of the convention SimpleFreeFieldHRIR, with "
    "two\n"
    "ears, measurements all around and rates of 32 to 192 kHz. The source text replaces\n"
    "modules/x2b/x2b_tables.cpp; build the library with it. The report measures the new responses against "
    "the\n"
    "head that they were made from.\n"
    "\n"
    "Exit code: 0 every property passes; 1 one fails (the file is written all the same), the head cannot be\n"
    "used or the file not be written; 2 the command line is wrong.";

void print(const std::string& text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
        throw system_failure("cannot write", "the report", errno);
    }
}

// Prints the report and fails if a property does.
void conclude(const std::vector<tables::TableReport>& reports, bool json) {
    print(json ? tables_json(reports) : tables_text(reports));
    if (const int failed = tables::count(reports).failed; failed > 0) {
        throw Failure(std::to_string(failed) + (failed == 1 ? " property fails" : " properties fail"));
    }
}

// The room's loudspeakers, and the phone's two.
constexpr tables::NeededDirection kCompared[] = {{{0, 0}, 8.0},   {{30, 0}, 8.0}, {{60, 0}, 8.0},
                                                 {{130, 0}, 8.0}, {{10, 0}, 5.0}, {{350, 0}, 5.0}};

// The head, or why there is none. A head that the user names must be there.
std::optional<tables::Head> load_listener(const std::string& path, bool named, std::string& absent) {
    try {
        tables::Head head = load_interruptible(path);
        tables::require_directions(head, kCompared);
        return head;
    } catch (const tables::HeadError& error) {
        if (named) {
            throw;
        }
        absent = error.what();
        return std::nullopt;
    }
}

void run_report(const Command& command, bool headNamed) {
    if (!command.plot.empty()) {
        require_picture_or_folder(command.plot);
        check_kept({{"--head", command.head}}, {{"--plot", command.plot}});
    }
    tables::Listener listener;
    const std::optional<tables::Head> head = load_listener(command.head, headNamed, listener.absent);
    listener.head = head ? &*head : nullptr;
    const auto records = library_records();
    if (!command.plot.empty()) {
        plot_tables(*records, command.plot);
    }
    conclude(tables::check_all(*records, listener), command.json);
}

void run_import(const Command& command) {
    const ImportResult result = import_rooms(command.import);
    if (!result.written.empty()) {
        std::fprintf(stderr, "zoq: wrote %s\n", quoted(result.written).c_str());
    }
    conclude(result.reports, command.importJson);
}

void add_import_command(CLI::App& tables, const std::shared_ptr<Command>& command) {
    CLI::App* sub = tables.add_subcommand("import", "Make room responses from another measured head");
    sub->footer(kImportFooter);
    sub->add_option("FILE", command->import.head, "the head, a SOFA file")->required();
    command->import.output = ".";
    auto* output = sub->add_option("--output", command->import.output,
                                   "the file to write, or a folder for x2b_tables.cpp (default: this folder)")
                       ->option_text("FILE|DIR");
    sub->add_flag("--check", command->import.check, "write nothing")->excludes(output);
    sub->add_flag("--json", command->importJson, "print the report as JSON");
    sub->callback([command, &tables] {
        for (const char* option : {"--json", "--plot", "--head"}) {
            if (tables.count(option) > 0) {
                throw UsageFailure(std::string(option) +
                                   " stands ahead of import, which takes its options behind it");
            }
        }
        run_import(*command);
    });
}

}  // namespace

void add_tables_command(CLI::App& app) {
    CLI::App* tables =
        app.add_subcommand("tables", "Measure the library's tables, or make new room responses");
    tables->footer(kFooter);
    const auto command = std::make_shared<Command>();
    tables->add_flag("--json", command->json, "print the report as JSON");
    tables
        ->add_option("--plot", command->plot, "draw the tables: one picture (.svg, .png) or a folder of .svg")
        ->check([](const std::string& name) { return name.empty() ? "needs a name" : ""; })
        ->option_text("FILE|DIR");
    tables
        ->add_option("--head", command->head,
                     "the measured head to compare with (default: Debian's libmysofa1)")
        ->option_text("FILE.sofa");
    tables->require_subcommand(0, 1);
    add_import_command(*tables, command);
    tables->callback([command, tables] {
        if (tables->get_subcommands().empty()) {
            run_report(*command, tables->count("--head") > 0);
        }
    });
}

}  // namespace zoq
