// Heads written as SOFA files, right or wrong in one place.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tables/head.h"

namespace sofa {

struct Content {
    zoq::tables::Head head;
    std::string convention = "SimpleFreeFieldHRIR";
    std::string dataType = "FIR";
    size_t receivers = 2;  // the ears' responses repeat
    std::string positionType = "spherical", positionUnits = "degree, degree, metre";
    std::vector<double> view = {1, 0, 0};  // where the listener looks
    std::string without;                   // name of a variable to leave out
    std::string title = "a ball", comment;
    bool compressed = false;  // as measuring laboratories' files are
};

// Throws std::runtime_error if the file cannot be written.
void write(const std::string& path, const Content& content);

}  // namespace sofa
