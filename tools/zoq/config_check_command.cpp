#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>

#include "tools/zoq/config_command.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/file_names.h"
#include "tools/zoq/text_file.h"
#include "tools/zoq/tuning/config_check.h"
#include "tools/zoq/tuning/config_fix.h"
#include "tools/zoq/tuning/config_write.h"
#include "tools/zoq/tuning/reports.h"

namespace zoq {

namespace {

constexpr char kCheckFooter[] =
    "Prints what is ignored, what is read otherwise than it looks, and the value that every setting ends up\n"
    "with. With FILE and --string the string is taken to arrive after the file has been read.\n"
    "\n"
    "--fix writes the settings as they were meant, one 'key = value' a line; the file has no comment syntax, "
    "so\n"
    "comments are left out. Every other word that is not carried over is named, and so is every value that "
    "is\n"
    "moved into its range; the engine itself would use such a value as it stands.\n"
    "\n"
    "Exit code: 0 nothing to say (with --fix: everything carried over); 1 warnings (with --fix: something "
    "left\n"
    "out or moved into its range); 2 errors, or the text cannot be read.";

constexpr size_t kMostDiagnostics = 100;

struct CheckCommand {
    std::string file, string, output;
    bool hasFile = false, hasString = false, json = false, all = false, fix = false, inPlace = false;
};

void check_options(const CheckCommand& command) {
    if (!command.hasFile && !command.hasString) {
        throw UsageFailure("config check needs FILE or --string TEXT");
    }
    if ((command.inPlace || !command.output.empty()) && !command.fix) {
        throw UsageFailure("--output and --in-place need --fix");
    }
    if (command.fix && command.hasFile && command.hasString) {
        throw UsageFailure("--fix takes either FILE or --string");
    }
    check_kept({{"FILE (--in-place replaces it)", command.file}}, {{"--output", command.output}});
    if (command.inPlace && (!command.hasFile || command.file == "-")) {
        throw UsageFailure("--in-place needs a FILE");
    }
}

// What is not as it was: at most so many of the words left out, 0 for all.
void print_losses(std::ostream& out, const Meant& meant, size_t most) {
    for (const auto& [row, line] : meant.changed) {
        out << "zoq: " << line << "\n";
    }
    const size_t shownCount = most == 0 ? meant.dropped.size() : std::min(most, meant.dropped.size());
    for (size_t i = 0; i < shownCount; ++i) {
        out << "zoq: " << meant.dropped[i] << "\n";
    }
    if (shownCount < meant.dropped.size()) {
        out << "zoq: " << meant.dropped.size() - shownCount << " more are left out\n";
    }
}

int fix(const CheckCommand& command, const std::string& fileText, const std::string& file) {
    const Dialect dialect = command.hasString ? Dialect::kString : Dialect::kFile;
    const std::string& text = command.hasString ? command.string : fileText;
    if (dialect == Dialect::kFile && is_utf16(text)) {
        throw Failure(file + " is UTF-16 text: save it as UTF-8 first");
    }
    const Meant meant = command.hasString ? meant_by_parameter_string(text) : meant_by_file(text);
    std::ostringstream remarks;
    print_diagnostics(remarks, command.hasString ? check_parameter_string(text) : check_file(text),
                      command.hasString ? "string" : file, command.all ? 0 : kMostDiagnostics);
    print_losses(remarks, meant, command.all ? 0 : kMostDiagnostics);
    std::cerr << remarks.str();
    const std::string end = command.hasString && command.output.empty() ? "\n" : "";
    write_text(command.inPlace ? command.file : command.output, checked_text(meant.settings, dialect) + end);
    return meant.dropped.empty() && meant.changed.empty() ? 0 : 1;
}

int check(const CheckCommand& command) {
    check_options(command);
    const std::string file = command.file == "-" ? "standard input" : command.file;
    const std::string fileText = command.hasFile ? read_text(command.file) : "";
    if (command.fix) {
        return fix(command, fileText, file);
    }
    const size_t most = command.all ? 0 : kMostDiagnostics;
    const CheckResult fileResult = check_file(fileText);
    const CheckResult stringResult = check_parameter_string(command.string, fileText);
    std::vector<NamedResult> results;
    if (command.hasFile) {
        results.push_back({file, &fileResult});
    }
    if (command.hasString) {
        results.push_back({"string", &stringResult});
    }
    std::ostringstream text;
    if (command.json) {
        print_check_json(text, results);
    } else {
        for (const NamedResult& checked : results) {
            print_diagnostics(text, *checked.result, checked.name, most);
        }
        print_prediction(text, *results.back().result);
    }
    write_text("-", text.str());
    int code = 0;
    for (const NamedResult& checked : results) {
        code = std::max(code, checked.result->exit_code());
    }
    return code;
}

}  // namespace

void add_config_check_command(CLI::App& config) {
    CLI::App* app =
        config.add_subcommand("check", "Tell what the engine really does with a text of settings");
    app->footer(kCheckFooter);
    const auto command = std::make_shared<CheckCommand>();
    app->add_option("FILE", command->file, "a configuration file, or - for standard input");
    app->add_option("--string", command->string, "a parameter string, key=value pairs joined by ';'")
        ->option_text("TEXT");
    CLI::Option* json = app->add_flag("--json", command->json, "for scripts");
    app->add_flag("--all", command->all, "every remark, not only 100, errors first");
    app->add_flag("--fix", command->fix, "write a corrected text instead")->excludes(json);
    CLI::Option* output =
        app->add_option("-o,--output", command->output, "where it goes (default: standard output)");
    output->option_text("FILE");
    app->add_flag("--in-place", command->inPlace, "replace FILE by it")->excludes(output);
    app->callback([command, app] {
        command->hasFile = app->count("FILE") > 0;
        command->hasString = app->count("--string") > 0;
        int code = 2;
        try {
            code = check(*command);
        } catch (const Failure& failure) {
            std::cerr << "zoq: " << failure.what() << "\n";
        }
        if (code != 0) {
            throw ExitCode{code};
        }
    });
}

}  // namespace zoq
