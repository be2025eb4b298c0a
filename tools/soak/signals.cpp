#include "tools/soak/signals.h"

#include <array>
#include <cmath>
#include <numbers>

#include "tools/soak/random.h"

namespace soak {

namespace {

constexpr int kLoop = 1 << 17;  // sample frames, 2.7 s
constexpr int kKinds = static_cast<int>(Signal::kCount);

struct Pair {
    int16_t value[2];
};
using Loop = std::vector<Pair>;

// A chord and a kick with some noise, near -15 dB, on all the time.
Pair music(int i, Random& random) {
    const double t = i / 48000.0, tau = 2.0 * std::numbers::pi;
    const double kick = 0.3 * std::exp(-8.0 * std::fmod(t, 0.45)) * std::sin(tau * 62.0 * t);
    const double chord =
        0.1 * (std::sin(tau * 220.0 * t) + std::sin(tau * 554.0 * t) + std::sin(tau * 3100.0 * t));
    Pair pair{};
    for (int c = 0; c < 2; ++c) {
        const double side = 0.06 * std::sin(tau * (c == 0 ? 440.0 : 659.0) * t);
        pair.value[c] = static_cast<int16_t>(32767.0 * (kick + chord + side) + random.between(-300, 300));
    }
    return pair;
}

Pair sample(Signal signal, int i, Random& random) {
    const auto any = [&] { return static_cast<int16_t>(random.between(-32768, 32767)); };
    const auto square = [i](int half) { return i / half % 2 == 0 ? int16_t{32767} : int16_t{-32768}; };
    switch (signal) {
        case Signal::kMusic:
            return music(i, random);
        case Signal::kNoise:
            return {any(), any()};
        case Signal::kSquare:
            return {square(50), square(387)};
        case Signal::kImpulses:
            return {i % 4801 == 7 ? int16_t{32767} : int16_t{0},
                    i % 911 == 99 ? int16_t{-32768} : int16_t{0}};
        case Signal::kConstant:
            return {32767, -32768};
        case Signal::kLeastBit:
            return {static_cast<int16_t>(random.between(-1, 1)), static_cast<int16_t>(random.between(-1, 1))};
        case Signal::kSilence:
        case Signal::kCount:
            break;
    }
    return {};
}

const Loop& loop(Signal signal) {
    static const std::array<Loop, kKinds> loops = [] {
        std::array<Loop, kKinds> made;
        Random random(1);
        for (int kind = 0; kind < kKinds; ++kind) {
            for (int i = 0; i < kLoop; ++i) {
                made[static_cast<size_t>(kind)].push_back(sample(static_cast<Signal>(kind), i, random));
            }
        }
        return made;
    }();
    return loops[static_cast<size_t>(signal)];
}

}  // namespace

void fill(Signal signal, int64_t position, int channels, std::vector<int16_t>& block) {
    const Loop& pairs = loop(signal);
    for (size_t i = 0; i < block.size(); ++i) {
        const auto channel = i % static_cast<size_t>(channels);
        const auto frame = (static_cast<size_t>(position) + i / static_cast<size_t>(channels)) % kLoop;
        block[i] = pairs[frame].value[channel % 2];
    }
}

}  // namespace soak
