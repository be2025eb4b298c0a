// modules/den/den_tables.cpp: the cubic curves by which dialogue enhancement pushes panned bins outward.
#pragma once

#include <array>

#include "modules/den/den.h"
#include "tables/generated_file.h"

namespace zoq::tables {

// Coefficients of u^3, u^2, u and 1 for column K, which serves wideAmount = K / 25.
std::array<long double, 4> pan_curve(int K);
// What the cubic of column K follows, for u in 0..1.
long double pan_target(int K, long double u);

GeneratedFile pan_curves_file();

}  // namespace zoq::tables
