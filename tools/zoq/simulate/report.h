// A simulation and a scan as text, as JSON and as a picture.
#pragma once

#include <string>

#include "tools/zoq/simulate/simulation.h"

namespace zoq {

// "volume=3"
std::string words_of(const HostEvent& event);

std::string text_report(const SimulationOptions& options, const Simulation& simulation);
std::string json_report(const SimulationOptions& options, const Simulation& simulation);
void draw_simulation(const Simulation& simulation, const std::string& path);

std::string text_report(const Scan& scan);
std::string json_report(const Scan& scan);

}  // namespace zoq
