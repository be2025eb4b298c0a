// A gnuplot script of several panels.
#pragma once

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace zoq {

inline constexpr char kLeftColour[] = "#c8501e";
inline constexpr char kRightColour[] = "#1f5fa8";
inline constexpr char kGrey[] = "#7f7f7f";
inline constexpr double kPlotFloorDb = -120.0;  // levels below are drawn there

class PlotScript {
  public:
    // A block of points, interrupted where y jumps by more than the gap. Returns the name that plots it.
    std::string add(const std::vector<double>& x, const std::vector<double>& y, double gap = HUGE_VAL);

    // The same for levels, of which some may not be finite.
    std::string add_levels(const std::vector<double>& x, const std::vector<double>& levels);

    // Starts a panel; its commands follow.
    std::ostream& panel(const std::string& title, const std::string& x, const std::string& y);
    std::ostream& frequency_panel(const std::string& title, const std::string& y);

    // Draws the panels in two columns under a common title.
    void draw(const std::string& title, const std::string& path) const;

  private:
    int blocks_ = 0;
    int panels_ = 0;
    std::ostringstream data_;
    std::ostringstream commands_;
};

// A curve for "plot".
std::string curve(const std::string& block, const char* colour, const std::string& title,
                  bool dashed = false);

// "set yrange": gains in steps of 5 dB, not less than 20 dB, and not more than 80 so that notches don't press
// everything else together.
std::string gain_range(const std::vector<const std::vector<double>*>& curves);

// A dashed line from bottom to top.
std::string vertical_line(double x);

}  // namespace zoq
