// The same figures as text, as data and as a picture.
#pragma once

#include <string>

#include "bench/speed/comparisons.h"

namespace bench {

struct Machine {
    std::string processor, compiler, flags;
    std::string fftw;  // FFTW's own words about what it is
};

Machine this_machine();

// Tables in Markdown that read well as they are.
std::string text_report(const Speed& speed, const Machine& machine);

std::string json_report(const Speed& speed, const Machine& machine);

// Draws the time of the transform and of every module at every level. Throws zoq::Failure.
void draw(const Speed& speed, const Machine& machine, const std::string& path);

}  // namespace bench
