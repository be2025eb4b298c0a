#include "tools/zoq/downmix.h"

#include <sndfile.h>
#include <algorithm>
#include <cmath>

#include "tools/zoq/failure.h"
#include "tools/zoq/formatted.h"

namespace zoq {

namespace {

enum : int {
    kL = SF_CHANNEL_MAP_FRONT_LEFT,
    kR = SF_CHANNEL_MAP_FRONT_RIGHT,
    kC = SF_CHANNEL_MAP_FRONT_CENTER,
    kLfe = SF_CHANNEL_MAP_LFE,
    kLs = SF_CHANNEL_MAP_REAR_LEFT,
    kRs = SF_CHANNEL_MAP_REAR_RIGHT,
    kCs = SF_CHANNEL_MAP_REAR_CENTER,
    kSl = SF_CHANNEL_MAP_SIDE_LEFT,
    kSr = SF_CHANNEL_MAP_SIDE_RIGHT,
};

// The orders of WAV and FLAC, and of Vorbis and Opus, by channel count less one.
const std::vector<int> kWavOrder[kMaxSourceChannels] = {{SF_CHANNEL_MAP_MONO},
                                                        {kL, kR},
                                                        {kL, kR, kC},
                                                        {kL, kR, kLs, kRs},
                                                        {kL, kR, kC, kLs, kRs},
                                                        {kL, kR, kC, kLfe, kLs, kRs},
                                                        {kL, kR, kC, kLfe, kCs, kSl, kSr},
                                                        {kL, kR, kC, kLfe, kLs, kRs, kSl, kSr}};
const std::vector<int> kOggOrder[kMaxSourceChannels] = {{SF_CHANNEL_MAP_MONO},
                                                        {kL, kR},
                                                        {kL, kC, kR},
                                                        {kL, kR, kLs, kRs},
                                                        {kL, kC, kR, kLs, kRs},
                                                        {kL, kC, kR, kLs, kRs, kLfe},
                                                        {kL, kC, kR, kSl, kSr, kCs, kLfe},
                                                        {kL, kC, kR, kSl, kSr, kLs, kRs, kLfe}};

constexpr double kMinus3Db = 0.70710678118654752;

}  // namespace

Downmix::Weights Downmix::weights_of(int position) {
    switch (position) {
        case SF_CHANNEL_MAP_LEFT:
        case SF_CHANNEL_MAP_FRONT_LEFT:
        case SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER:
            return {1.0, 0.0};
        case SF_CHANNEL_MAP_RIGHT:
        case SF_CHANNEL_MAP_FRONT_RIGHT:
        case SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER:
            return {0.0, 1.0};
        case SF_CHANNEL_MAP_MONO:
        case SF_CHANNEL_MAP_CENTER:
        case SF_CHANNEL_MAP_FRONT_CENTER:
            return {kMinus3Db, kMinus3Db};
        case SF_CHANNEL_MAP_REAR_LEFT:
        case SF_CHANNEL_MAP_SIDE_LEFT:
            return {kMinus3Db, 0.0};
        case SF_CHANNEL_MAP_REAR_RIGHT:
        case SF_CHANNEL_MAP_SIDE_RIGHT:
            return {0.0, kMinus3Db};
        case SF_CHANNEL_MAP_REAR_CENTER:
            return {0.5, 0.5};
        case SF_CHANNEL_MAP_LFE:
            return {0.0, 0.0};
        default:
            throw Failure("holds a channel at a position that cannot be folded down to stereo");
    }
}

Downmix::Downmix(int channels, const std::vector<int>& map, bool oggOrder) {
    if (channels <= 2) {
        weights_.resize(static_cast<size_t>(channels));
        return;
    }
    if (channels > kMaxSourceChannels) {
        throw Failure("has " + std::to_string(channels) + " channels; at most " +
                      std::to_string(kMaxSourceChannels) + " can be folded down to stereo");
    }
    const auto& usual = (oggOrder ? kOggOrder : kWavOrder)[channels - 1];
    double left = 0.0;
    double right = 0.0;
    for (const int position : map.empty() ? usual : map) {
        weights_.push_back(weights_of(position));
        left += weights_.back().left;
        right += weights_.back().right;
    }
    scale_ = 1.0 / std::max({left, right, 1.0});
}

void Downmix::to_stereo(const float* interleaved, int frames, float* stereo) const {
    const size_t channels = weights_.size();
    for (int i = 0; i < frames; ++i, interleaved += channels, stereo += 2) {
        if (channels <= 2) {
            stereo[0] = interleaved[0];
            stereo[1] = interleaved[channels - 1];
        } else {
            double left = 0.0;
            double right = 0.0;
            for (size_t c = 0; c < channels; ++c) {
                left += weights_[c].left * static_cast<double>(interleaved[c]);
                right += weights_[c].right * static_cast<double>(interleaved[c]);
            }
            stereo[0] = static_cast<float>(left * scale_);
            stereo[1] = static_cast<float>(right * scale_);
        }
        for (int side = 0; side < 2; ++side) {
            if (!std::isfinite(stereo[side])) {
                stereo[side] = 0.0f;
            }
        }
    }
}

std::string Downmix::description() const {
    if (weights_.size() == 1) {
        return "mono goes to both sides";
    }
    if (weights_.size() == 2) {
        return "";
    }
    return formatted(
        "%zu channels folded down to stereo (front 1, centre and surround 0.707, low-frequency channel left "
        "out, "
        "all x %.3f)",
        weights_.size(), scale_);
}

}  // namespace zoq
