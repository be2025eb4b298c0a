// modules/vb/vb_tables.cpp: the section sets of the virtual bass, one per cutoff.
#pragma once

#include "tables/generated_file.h"

namespace zoq::tables {

GeneratedFile bass_sections_file();

}  // namespace zoq::tables
