#include "tables/bass_sections.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zoq::tables {

namespace {

using Section = std::array<double, 6>;    // b0 b1 b2 a0 a1 a2
using Sections = std::array<Section, 3>;  // of one stage; unused ones are 0

struct Set {
    int cutoffHz;
    Sections lowpass, inputHighpass, bandHighpass, outputHighpass;
};

enum Kind { kLowpass, kHighpass };

struct Corner {
    int cutoffHz, bandHz;
};
constexpr Corner kCorners[] = {{60, 30},  {70, 30},  {80, 30},  {100, 50}, {120, 50},
                               {150, 70}, {180, 80}, {200, 80}, {220, 80}, {250, 80}};
constexpr double kHarmonicsHz = 420.0;

// The set that every factory setting runs is given number by number: three of its values lie one unit in the
// last place from the formula's.
constexpr Set kGivenSet = {
    80,
    {{{7.41426642e-10, 1.48285328e-09, 7.41426642e-10, 1, -1.98072743, 0.980836093},
      {1, 1.99999988, 1, 1, -1.99190795, 0.99201721}}},
    {{{0.986410797, -1.97282171, 0.986410797, 1, -1.98072743, 0.980836093},
      {1, -1.99999988, 1, 1, -1.99190795, 0.99201721}}},
    {{{0.997227073, -1.99445415, 0.997227073, 1, -1.9944464, 0.994461775}}},
    {{{0.986410797, -1.97282159, 0.986410797, 1, -1.98072743, 0.980836093},
      {1, -2, 1, 1, -1.99190795, 0.99201721}}},
};

// Input high-passes with given numerators, whose zeros lie just inside z = 1.
struct Numerators {
    int cutoffHz;
    double first[3], second[3];
};
constexpr Numerators kGivenNumerators[] = {
    {100, {0.98304242, -1.9663692, 0.98332673}, {1, -1.9997108, 0.99971086}},
    {120, {0.97968549, -1.9596826, 0.9799971}, {1, -1.9996819, 0.99968201}},
    {200, {0.96637154, -1.932963, 0.96659148}, {1, -1.9997724, 0.99977249}},
    {220, {0.96307129, -1.9264299, 0.96335864}, {1, -1.9997017, 0.99970174}},
};

constexpr const char* kComment =
    R"(The section sets of the virtual bass. Made by "zoq-make-tables --source ." (tables/bass_sections.cpp).
Formula: Butterworth filters by the bilinear transform with prewarping at 48000 Hz.
    With K = tan(pi f / 48000) and n = 1 + K/Q + K^2 a section is a0 = 1, a1 = 2 (K^2 - 1) / n,
    a2 = (1 - K/Q + K^2) / n.
    Order 2: Q = 1/sqrt 2; numerator K^2/n {1, 2, 1} for a low-pass, 1/n {1, -2, 1} for a high-pass.
    Order 4: Q = 1/(2 cos(pi/8)) and 1/(2 cos(3 pi/8)); section 0 carries the gain of both, K^4/(n0 n1)
    {1, 2, 1} or 1/(n0 n1) {1, -2, 1}, and section 1 has the bare {1, 2, 1} or {1, -2, 1}.
    Order 4 at the cutoff; order 2 for the band high-pass (30, 50, 70 or 80 Hz) and the harmonics (420 Hz).
Source: the formula in double precision, rounded once to float. Given values instead of the formula's:
    80 Hz, b1 of the low-pass's section 1 and of both sections of the input high-pass, each one unit in the
    last place off; 100, 120, 200 and 220 Hz, the numerators of the input high-pass, whose zeros lie just
    inside z = 1 (no factory setting runs that stage).
Worst error: half a unit in the last place (6e-8 of the value) against the formula, given values apart.)";

// Denominator by the bilinear transform; the numerator is bare, the gain that belongs to it is returned.
double design(Kind kind, double hz, double Q, Section& section) {
    const double K = std::tan(std::numbers::pi * hz / android::kSampleRateHz);
    const double norm = 1.0 + K / Q + K * K;
    section = {1.0, kind == kLowpass ? 2.0 : -2.0, 1.0,
               1.0, 2.0 * (K * K - 1.0) / norm,    (1.0 - K / Q + K * K) / norm};
    return kind == kLowpass ? K * K / norm : 1.0 / norm;
}

void scale_numerator(Section& section, double gain) {
    std::transform(section.begin(), section.begin() + 3, section.begin(),
                   [gain](double b) { return gain * b; });
}

Sections second_order(Kind kind, double hz) {
    Sections sections{};
    scale_numerator(sections[0], design(kind, hz, 1.0 / std::numbers::sqrt2, sections[0]));
    return sections;
}

// The first section carries the gain of both.
Sections fourth_order(Kind kind, double hz) {
    Sections sections{};
    const double first = design(kind, hz, 0.5 / std::cos(std::numbers::pi / 8.0), sections[0]);
    const double second = design(kind, hz, 0.5 / std::cos(3.0 * std::numbers::pi / 8.0), sections[1]);
    scale_numerator(sections[0], first * second);
    return sections;
}

Set make_set(const Corner& corner) {
    const Sections highpass = fourth_order(kHighpass, corner.cutoffHz);
    Set set = {corner.cutoffHz, fourth_order(kLowpass, corner.cutoffHz), highpass,
               second_order(kHighpass, corner.bandHz), highpass};
    for (const Numerators& given : kGivenNumerators) {
        if (given.cutoffHz == corner.cutoffHz) {
            std::copy(given.first, given.first + 3, set.inputHighpass[0].begin());
            std::copy(given.second, given.second + 3, set.inputHighpass[1].begin());
        }
    }
    return corner.cutoffHz == kGivenSet.cutoffHz ? kGivenSet : set;
}

// One coefficient per line, the sections across, as the record holds them.
void add_stage(SourceText& text, const Sections& sections, const std::string& end) {
    for (size_t j = 0; j < 6; ++j) {
        std::string row = j == 0 ? "     {" : "      ";
        for (size_t s = 0; s < sections.size(); ++s) {
            row += shortest(float(sections[s][j]));
            row += s + 1 < sections.size() ? ", " : "";
        }
        row += j + 1 < 6 ? "," : "}" + end;
        text.line(row);
    }
}

}  // namespace

GeneratedFile bass_sections_file() {
    SourceText text("modules/vb/vb_tables.h", kComment);
    text.line(
        "// Per cutoff: low-pass, input high-pass, band high-pass, output high-pass. In each, one "
        "coefficient");
    text.line("// (b0 b1 b2 a0 a1 a2) per line, sections 0..2 across.");
    text.line("const VbSections kVbSections[kVbSets] = {");
    for (const Corner& corner : kCorners) {
        const Set set = make_set(corner);
        text.line("    {" + std::to_string(set.cutoffHz) + ",");
        add_stage(text, set.lowpass, ",");
        add_stage(text, set.inputHighpass, ",");
        add_stage(text, set.bandHighpass, ",");
        add_stage(text, set.outputHighpass, "},");
    }
    text.line("};\n\nconst float kVbHarmonicLowpassSos[kSectionMatrixFloats] =");
    add_stage(text, second_order(kLowpass, kHarmonicsHz), ";");
    return {"modules/vb/vb_tables.cpp", text.finish(), {.ulps = 1}};
}

}  // namespace zoq::tables
