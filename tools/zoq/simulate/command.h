// zoq simulate: what the engine does with a host's blocks over time.
#pragma once

namespace CLI {
class App;
}

namespace zoq {

void add_simulate_command(CLI::App& app);

}  // namespace zoq
