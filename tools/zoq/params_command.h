// "zoq params".
#pragma once

namespace CLI {
class App;
}

namespace zoq {

void add_params_command(CLI::App& app);

}  // namespace zoq
