// The tables as the library hands them to a host.
#pragma once

#include <memory>

#include "tables/check.h"

namespace zoq {

// Fills the library's records with their factory contents, last with the cutoff that the engine runs, and copies
// them.
std::unique_ptr<tables::Records> library_records();

}  // namespace zoq
