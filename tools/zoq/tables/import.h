// Room responses from another measured head.
#pragma once

#include <string>
#include <vector>

#include "tables/head.h"
#include "tables/properties.h"

namespace zoq {

// A head from a file. Throws tables::HeadError, Interrupted.
tables::Head load_interruptible(const std::string& path);

struct ImportOptions {
    std::string head;    // a SOFA file
    std::string output;  // a file, or a folder that gets x2b_tables.cpp
    bool check = false;  // measure alone, write nothing
};

struct ImportResult {
    std::string written;  // empty if nothing was
    std::vector<tables::TableReport> reports;
};

// Makes the responses, measures them against the same head and writes them as source text. They are written even
// if a property fails: the caller says so.
ImportResult import_rooms(const ImportOptions& options);

}  // namespace zoq
