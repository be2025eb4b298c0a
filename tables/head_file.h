// Heads from SOFA files.
#pragma once

#include "tables/head.h"

namespace zoq::tables {

inline constexpr const char* kDefaultHeadFile = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa";

// Reads and checks a head of the convention SimpleFreeFieldHRIR. Throws HeadError; in a build without libmysofa
// it does nothing else.
Head load_head(const std::string& path);

}  // namespace zoq::tables
