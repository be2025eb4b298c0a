// The measured properties of the tables, as text and as JSON.
#pragma once

#include <string>
#include <vector>

#include "tables/properties.h"

namespace zoq {

std::string tables_text(const std::vector<tables::TableReport>& reports);
std::string tables_json(const std::vector<tables::TableReport>& reports);

}  // namespace zoq
