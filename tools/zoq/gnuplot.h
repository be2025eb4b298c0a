// Pictures by gnuplot.
#pragma once

#include <string>

namespace zoq {

// Whether a path's ending names a kind of picture that can be drawn: .svg or .png.
bool is_picture_path(const std::string& path);

// A text as gnuplot takes it, between quotation marks.
std::string gnuplot_text(const std::string& text);

// Runs a script behind "set terminal" for the path's kind, of that size in pixels, and writes the picture to path,
// complete or not at all. Throws Failure.
void draw_with_gnuplot(const std::string& script, int width, int height, const std::string& path);

}  // namespace zoq
