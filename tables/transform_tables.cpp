#include "tables/transform_tables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace zoq::tables {

namespace {

using android::kBins;
using android::kFrameSamples;

double turn(int j) {
    return 2.0 * std::numbers::pi * j / kFrameSamples;
}

// The doubles nearest to pi/2 and pi are not those numbers: their cosine and sine are 1e-16 where a quarter
// turn's cosine and a half turn's sine are 0.
double cosine(int j) {
    return 4 * j == kFrameSamples ? 0.0 : std::cos(turn(j));
}

double sine(int j) {
    return 2 * j == kFrameSamples ? 0.0 : std::sin(turn(j));
}

// The twiddles of a stage that joins halves of `span` values stand side by side at the entries span..2 span - 1.
int twiddle_of_stage(int entry) {
    const int span = int(std::bit_floor(unsigned(entry)));
    return (entry - span) * (kFrameSamples / 2 / std::max(span, 1));
}

// Bits 1 and 2 exchanged.
int middle_pairs_exchanged(int entry) {
    return (entry & ~6) | (entry & 2) << 1 | (entry & 4) >> 1;
}

struct Table {
    const char* declaration;
    int size;
    double (*value)(int);
};

constexpr Table kTables[] = {
    {"kTwiddleCos[kBins]", kBins, cosine},
    {"kTwiddleForwardSin[kBins]", kBins, [](int j) { return 0.0 - sine(j); }},
    {"kTwiddleInverseSin[kBins]", kBins, sine},
    {"kStageCos[kFrameSamples]", kFrameSamples, [](int entry) { return cosine(twiddle_of_stage(entry)); }},
    {"kStageSin[kFrameSamples]", kFrameSamples,
     [](int entry) { return 0.0 - sine(twiddle_of_stage(entry)); }},
    {"kStageCosInPairs[kFrameSamples]", kFrameSamples,
     [](int entry) { return cosine(twiddle_of_stage(middle_pairs_exchanged(entry))); }},
    {"kStageSinInPairs[kFrameSamples]", kFrameSamples,
     [](int entry) { return 0.0 - sine(twiddle_of_stage(middle_pairs_exchanged(entry))); }},
    {"kSineWindow[kFrameSamples]", kFrameSamples,
     [](int n) { return std::sin(std::numbers::pi * n / kFrameSamples); }},
};

}  // namespace

GeneratedFile transform_tables_file() {
    double worst = 0.0;
    std::vector<std::vector<float>> tables;
    for (const Table& table : kTables) {
        std::vector<float> floats;
        for (int j = 0; j < table.size; ++j) {
            floats.push_back(float(table.value(j)));
            worst = std::max(worst, std::fabs(double(floats.back()) - table.value(j)));
        }
        tables.push_back(floats);
    }

    SourceText text(
        "dsp/fft_tables.h",
        R"(Twiddle factors and the analysis window. Made by "zoq-make-tables --source ." (tables/transform_tables.cpp).
Formula: sine and cosine in double precision, rounded to float; exactly 0 at quarter and half turns.
Worst error: )" +
            rounded(worst) + ", the rounding to float.");
    for (size_t i = 0; i < std::size(kTables); ++i) {
        text.line((i == 0 ? "" : "\n") + std::string("alignas(64) const float ") + kTables[i].declaration +
                  " = {");
        text.values(tables[i]);
        text.line("};");
    }
    return {"dsp/fft_tables.cpp", text.finish(), {.ulps = 1}};
}

}  // namespace zoq::tables
