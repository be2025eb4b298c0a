// What a picture of a sound needs: the outline of its waveform and its average spectrum.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct kiss_fftr_state;

namespace zoq {

class Curve {
  public:
    Curve();

    void add(const int16_t* stereo, int frames);

    struct Span {
        float low;
        float high;
    };
    // The extremes of both channels over each hundredth of a second, full scale 1.
    const std::vector<Span>& outline() const { return outline_; }

    // Level within each of kBands bands a sixth of an octave wide, both channels together, in dB: a sine at
    // full scale on both channels reads 0. Every level is at least kFloorDb; sounds of less than one
    // transform (0.17 s) read that everywhere.
    std::vector<double> spectrum() const;

    static constexpr int kBands = 60;
    static constexpr double kFloorDb = -140.0;
    static double band_hz(int band);  // its centre, 20.6 Hz to 18.8 kHz

  private:
    static constexpr int kTransform = 8192;  // samples, 5.86 Hz per bin
    static constexpr int kSpanFrames = 480;

    struct Closer {
        void operator()(kiss_fftr_state* state) const;
    };

    void add_to_outline(const int16_t* frame);
    void add_transforms();

    std::unique_ptr<kiss_fftr_state, Closer> transform_;
    std::vector<float> window_;
    std::vector<float> history_[2];  // the newest samples, by channel, up to one transform
    std::vector<double> power_;      // by bin, summed over transforms and channels
    int64_t transforms_ = 0;
    std::vector<Span> outline_;
    int64_t frames_ = 0;
};

// Writes both as a table with two blocks for gnuplot: "seconds, before low, before high, after low, after
// high", then "Hz, before dB, after dB".
void write_curves(const std::string& path, const Curve& before, const Curve& after);

}  // namespace zoq
