// The command line of "zoq tables".
#pragma once

namespace CLI {
class App;
}

namespace zoq {

void add_tables_command(CLI::App& app);

}  // namespace zoq
