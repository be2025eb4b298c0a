// Pictures by the program gnuplot.
#pragma once

#include <string>

namespace zoq {

// Whether a path's ending names a kind of picture that can be drawn: .svg or .png.
bool is_picture_path(const std::string& path);

// A text as gnuplot takes it, between quotation marks.
std::string gnuplot_text(const std::string& text);

// The line that selects the format by the name's ending.
std::string terminal(const std::string& path, int width, int height);

// Runs a script and writes what it draws into a file, which appears complete or not at all. Throws Failure.
void draw(const std::string& script, const std::string& path);

// The same behind the line that selects the format, with texts taken as they are.
void draw_with_gnuplot(const std::string& script, int width, int height, const std::string& path);

}  // namespace zoq
