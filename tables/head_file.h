// Heads from SOFA files.
#pragma once

#include "tables/head.h"

namespace zoq::tables {

inline constexpr const char* kDefaultHeadFile = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa";

// What the files of that head lack.
inline constexpr std::array kKemarCredit = {
    "Responses of a KEMAR dummy head, measured by Bill Gardner and Keith Martin, MIT Media Lab, 1994.",
    "Copyright 1994 by the MIT Media Laboratory; free with no restrictions on use, provided the authors",
    "are cited."};

// Reads and checks a head of the convention SimpleFreeFieldHRIR. Throws HeadError; in a build without libmysofa
// it does nothing else.
Head read_head(const std::string& path);

// Lets libmysofa read the file and let go of it again: what damaged files break. Throws HeadError.
void try_head_file(const std::string& path);

// Reads it after a child process has tried it, so that no file can break this process or keep it busy; the child has
// so many seconds of processor time. A signal that this process takes note of ends it with a HeadError.
Head load_head(const std::string& path, unsigned seconds = 30);

}  // namespace zoq::tables
