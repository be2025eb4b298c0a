// "zoq measure".
#pragma once

namespace CLI {
class App;
}

namespace zoq {

void add_measure_command(CLI::App& app);

}  // namespace zoq
