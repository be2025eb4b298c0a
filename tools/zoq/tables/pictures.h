// Pictures of the tables.
#pragma once

#include <string>

#include "tables/check.h"

namespace zoq {

// Refuses a name that can be neither a picture nor a folder.
void require_picture_or_folder(const std::string& path);

// Draws everything into one picture if the path ends in .svg or .png, else one .svg for each kind of table into the
// folder of that name, which is made if it is missing.
void plot_tables(const tables::Records& records, const std::string& path);

}  // namespace zoq
