// Memories that a hostile setting has poisoned, told from those that audio can leave.
//
// Settings are stored unchecked, so an absurd gain or a not-a-number can reach a recursive memory, where it would
// stay after the setting is gone. Each module looks at its own memories at the end of its hop and resets them
// when they are poisoned. Memories that are overwritten within a few hops whatever they hold need no look.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace android {

// Magnitude of a sample, delay or envelope that nothing but poison reaches, 240 dB above full scale. The loudest
// that settings in their ranges can make lies below 1e11: the envelope of the virtual bass, which squares, behind
// nine bands at +24 dB, which add up to some 95 dB where they overlap.
inline constexpr float kPoisonedSample = 1e12f;

// How often a reset was needed since the library was loaded, for tests; the audio thread counts.
inline uint32_t poisonResets = 0;

// Whether any float of a memory, a plain struct or array of nothing but floats, is not finite or larger than the
// bound in magnitude. Magnitudes order like their bits, with infinity and not-a-number above all others; two floats
// are looked at as one word, where the sum with the gap to the largest 31-bit number carries into the sign bit.
template <typename Memory>
bool is_poisoned(const Memory& memory, float bound) {
    static_assert(std::is_trivially_copyable_v<Memory> && sizeof(Memory) % sizeof(float) == 0);
    constexpr size_t kWord = sizeof(uint64_t), kWords = sizeof(Memory) / kWord;
    constexpr uint64_t kMagnitudes = 0x7FFFFFFF7FFFFFFFu, kSigns = ~kMagnitudes;
    const char* bytes = reinterpret_cast<const char*>(&memory);
    const uint64_t gap = 0x7FFFFFFFu - std::bit_cast<uint32_t>(bound), gaps = gap << 32 | gap;
    uint64_t above = 0;
    for (size_t i = 0; i < kWords; ++i) {
        uint64_t word;
        std::memcpy(&word, bytes + i * kWord, kWord);
        above |= (word & kMagnitudes) + gaps;
    }
    uint64_t last = 0;
    std::memcpy(&last, bytes + kWords * kWord, sizeof(Memory) % kWord);
    above |= (last & kMagnitudes) + gaps;
    return (above & kSigns) != 0;
}

}  // namespace android
