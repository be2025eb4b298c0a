// Everything random comes from one generator, so that a seed is a whole run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace soak {

class Random {
  public:
    explicit Random(uint64_t seed) : generator_(seed) {}

    uint32_t below(uint32_t count) { return static_cast<uint32_t>(generator_() % count); }
    int between(int lo, int hi) { return lo + static_cast<int>(below(static_cast<uint32_t>(hi - lo + 1))); }
    bool chance(int percent) { return between(1, 100) <= percent; }

    template <typename Value, size_t count>
    Value pick(const Value (&values)[count]) {
        return values[below(count)];
    }

  private:
    std::mt19937_64 generator_;
};

}  // namespace soak
