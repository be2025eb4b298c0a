#include "tools/zoq/level_match.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/zoq/audio_input.h"
#include "tools/zoq/audio_output.h"
#include "tools/zoq/interruption.h"
#include "tools/zoq/stereo_source.h"

namespace zoq {

namespace {

constexpr int kFrames = 4096;

int16_t scaled(int16_t sample, double gain, int64_t& clipped) {
    const double value = std::round(sample * gain);
    const double limited = std::clamp(value, -32768.0, 32767.0);
    clipped += limited != value ? 1 : 0;
    return static_cast<int16_t>(limited);
}

}  // namespace

LevelMatch write_level_matched(const std::string& input, const std::string& output,
                               const MatchTarget& target) {
    AudioInput audio(input);
    StereoSource source(audio);
    AudioOutput file(output);
    LevelMatch match;
    const double before = target.before.integratedLufs, after = target.after.integratedLufs;
    match.matched = std::isfinite(before) && std::isfinite(after);
    match.gainDb = match.matched ? after - before : 0.0;
    const double gain = std::pow(10.0, match.gainDb / 20.0);
    std::vector<int16_t> block(2 * kFrames);
    int64_t written = 0;
    for (int got = kFrames; got == kFrames; written += got) {
        throw_if_interrupted();
        got = source.read(block.data(), kFrames);
        std::transform(block.begin(), block.begin() + 2 * got, block.begin(),
                       [&](int16_t sample) { return scaled(sample, gain, match.clipped); });
        file.write(block.data(), got);
    }
    std::fill(block.begin(), block.end(), int16_t{0});
    for (int64_t left = target.frames - written; left > 0; left -= kFrames) {
        file.write(block.data(), static_cast<int>(std::min<int64_t>(left, kFrames)));
    }
    file.commit();
    return match;
}

}  // namespace zoq
