// The fast forms of the routines in grid.cpp.
#include "dsp/frame.h"
#include "dsp/memory_lanes.h"

namespace android::ZOQ_LEVEL {

void sum(const float* x, float* y) {
    for (int i = 0; i < kHopSamples; i += kLanes) {
        store(y + i, load(x + i) + load(x + kHopSamples + i));
    }
}

void interp1_fac3(const float* x, float* y) {
    constexpr float kThird = 1.0f / 3.0f;
    constexpr int kLast = kGridPoints - 1;
    const Lanes two = broadcast(2.0f), third = broadcast(kThird);
    // The last vector overlaps the one before it.
    for (int k = 0; k < kLast; k += kLanes) {
        const int from = k + kLanes <= kLast ? k : kLast - kLanes;
        const Lanes here = load(x + from), next = load(x + from + 1);
        const Lanes one = (two * here + next) * third, other = (two * next + here) * third;
        store_three(y + kGridStep * from, here, one, other);
    }
    const float beyond = x[kLast] + (x[kLast] - x[kLast - 1]);
    y[kGridStep * kLast] = x[kLast];
    y[kGridStep * kLast + 1] = (2.0f * x[kLast] + beyond) * kThird;
}

void add_scaled(const float* x, float gain, int count, float* y) {
    const Lanes factor = broadcast(gain);
    for (int i = 0; i < count; i += kLanes) {
        store(y + i, add_product(load(y + i), factor, load(x + i)));
    }
}

void scale(float gain, int count, float* x) {
    const Lanes factor = broadcast(gain);
    for (int i = 0; i < count; i += kLanes) {
        store(x + i, load(x + i) * factor);
    }
}

}  // namespace android::ZOQ_LEVEL
