// What the room maker needs of a head: the power of each direction without the measurement's own colour, and
// the times of arrival.
#pragma once

#include <array>
#include <vector>

#include "tables/head.h"

namespace zoq::tables {

// Spectra of the makers: 2049 bins, 11.7 Hz apart, of 4096 samples at 48 kHz.
inline constexpr size_t kGridSamples = 4096;
inline constexpr size_t kGridBins = kGridSamples / 2 + 1;
double grid_hz(size_t bin);

class HeadModel {
  public:
    // Throws HeadError if the head lacks directions that the rooms need.
    explicit HeadModel(const Head& head);

    struct Ears {
        std::array<Signal, 2> magnitude;       // [ear], on the grid
        std::array<double, 2> arrivalSamples;  // [ear], at 48 kHz, from the earliest arrival straight ahead
    };
    // The nearest measured direction. flattened: the share, 0..1, of the ears' common colour that is taken
    // out; the differences between the ears stay.
    Ears towards(const Direction& direction, double flattened) const;

  private:
    struct Measurement {
        std::array<Signal, 2> power;
        std::array<double, 2> onsetSamples;
    };

    const Head& head;
    std::vector<Measurement> measurements;
    double frontOnset;
};

}  // namespace zoq::tables
