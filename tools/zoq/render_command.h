// "zoq render".
#pragma once

namespace CLI {
class App;
}

namespace zoq {

void add_render_command(CLI::App& app);

}  // namespace zoq
