// Any number of channels to two.
#pragma once

#include <string>
#include <vector>

namespace zoq {

inline constexpr int kMaxSourceChannels = 8;

// Mono goes to both sides, stereo stays bit for bit; more channels are folded down with the weights of
// ITU-R BS.775: front 1, centre and surround 0.7071, rear centre 0.5, the low-frequency channel left out; all
// of it scaled so that full scale in every channel cannot clip.
class Downmix {
  public:
    Downmix() : weights_(2) {}  // stereo

    // Where each channel plays, as values of libsndfile's channel map; empty for the order usual for that
    // count, which the Ogg formats have their own of. Throws Failure when the layout is not known.
    Downmix(int channels, const std::vector<int>& map, bool oggOrder);

    //        interleaved    frames x channels    in
    //        stereo         frames x 2           out; samples that are no number become 0
    void to_stereo(const float* interleaved, int frames, float* stereo) const;

    // What happens to the channels, for a message; empty for stereo.
    std::string description() const;

  private:
    struct Weights {
        double left;
        double right;
    };
    static Weights weights_of(int position);

    std::vector<Weights> weights_;
    double scale_ = 1.0;
};

}  // namespace zoq
