// One generated source file: how its text is built, and how a remade one is compared with the committed one.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "dsp/frame.h"

namespace zoq::tables {

// How far a committed number may be from the remade one; the larger of the two allowances counts. A maker
// states the least that other compilers' and C libraries' rounding needs.
struct Tolerance {
    int ulps = 1;         // units in the last place of the number itself
    double ofPeak = 0.0;  // share of the largest magnitude in the file
};

struct GeneratedFile {
    std::string path;  // below the source tree
    std::string text;
    Tolerance tolerance;
};

// Builds the text: a comment that names maker, source, formula and error; then arrays of numbers.
class SourceText {
  public:
    // include: the header that declares the tables; comment: lines without slashes.
    SourceText(const std::string& include, const std::string& comment);

    void line(const std::string& text);
    // Numbers in the shortest form that reads back to the same float, as many to the line as fit.
    void values(std::span<const float> numbers);
    void values(std::span<const android::creal32_T> numbers);
    // Closes the text and returns it.
    std::string finish();

  private:
    void items(const std::vector<std::string>& texts);

    std::string text;
};

std::string shortest(float value);  // "0.1f"
std::string rounded(double value);  // two significant digits, for comments

// Says where two texts differ by more than the tolerance, or nothing if they do not. Of the comment ahead
// every line must be there, but what follows "Worst error" may differ; comments further down are not compared.
std::string difference(const std::string& committed, const GeneratedFile& remade);

}  // namespace zoq::tables
