// The fast forms of the conversions in pcm.cpp. A sample frame of two channels is one 32-bit word: the left value in
// its lower half, on every target there is.
#include "dsp/pcm.h"

#include <bit>

#include "dsp/lanes.h"

namespace android::ZOQ_LEVEL {

static_assert(std::endian::native == std::endian::little);

namespace {

// Of the results only the low 16 bits count. Those of the highest integer are ones, those of the lowest zeros.
ZOQ_INLINE IntLanes to_int(Lanes x) {
    const Lanes limit = broadcast(0x1p31f), value = x * broadcast(kToInt16);
    const IntLanes inside = less(absolute(value), limit), above = at_most(limit, value);
    return truncated(select(inside, value, broadcast(0.0f))) | above;
}

}  // namespace

void from_pcm(const int16_t* values, float* left, float* right) {
    const Lanes scale = broadcast(kFromInt16);
    for (int i = 0; i < kHopSamples; i += kLanes) {
        const IntLanes frames = load_bits(values + 2 * i);
        store(left + i, floats_of(frames << 16 >> 16) * scale);
        store(right + i, floats_of(frames >> 16) * scale);
    }
}

void to_pcm(const float* left, const float* right, int16_t* values) {
    for (int i = 0; i < kHopSamples; i += kLanes) {
        store_bits(values + 2 * i, (to_int(load(left + i)) & 0xFFFF) | to_int(load(right + i)) << 16);
    }
}

}  // namespace android::ZOQ_LEVEL
