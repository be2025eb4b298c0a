#include "tools/zoq/params_command.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <sstream>

#include "tools/zoq/failure.h"
#include "tools/zoq/text_file.h"
#include "tools/zoq/tuning/key_names.h"
#include "tools/zoq/tuning/reports.h"

namespace zoq {

namespace {

struct ParamsCommand {
    std::string key;
    bool json = false;
};

void run_params(const ParamsCommand& command) {
    int row = -1;
    if (!command.key.empty()) {
        row = find_any_case(command.key);
        if (row < 0) {
            throw UsageFailure(unknown_key(command.key));
        }
    }
    std::ostringstream text;
    if (command.json) {
        print_settings_json(text, row);
    } else if (row >= 0) {
        print_setting(text, row);
    } else {
        print_settings(text);
    }
    write_text("-", text.str());
}

}  // namespace

void add_params_command(CLI::App& app) {
    CLI::App* params =
        app.add_subcommand("params", "Explain the settings: names, units, ranges, what the chain uses");
    const auto command = std::make_shared<ParamsCommand>();
    params->add_option("KEY", command->key,
                       "one setting, spelt as in strings or as in the file, in any letter case");
    params->add_flag("--json", command->json, "for scripts");
    params->callback([command] { run_params(*command); });
}

}  // namespace zoq
