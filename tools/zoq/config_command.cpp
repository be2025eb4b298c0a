#include "tools/zoq/config_command.h"

#include <CLI/CLI.hpp>

namespace zoq {

void add_config_command(CLI::App& app) {
    CLI::App* config = app.add_subcommand("config", "Check and write texts of settings");
    config->require_subcommand(1);
    add_config_check_command(*config);
    add_config_write_command(*config);
}

}  // namespace zoq
