// "zoq config check" and "zoq config write".
#pragma once

namespace CLI {
class App;
}

namespace zoq {

void add_config_command(CLI::App& app);

// The two, added to "config".
void add_config_check_command(CLI::App& config);
void add_config_write_command(CLI::App& config);

}  // namespace zoq
