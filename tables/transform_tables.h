// dsp/fft_tables.cpp: twiddle factors of the 1024-point transform and the analysis window.
#pragma once

#include "tables/generated_file.h"

namespace zoq::tables {

GeneratedFile transform_tables_file();

}  // namespace zoq::tables
