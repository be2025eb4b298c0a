// The fast forms of the routines in grid.cpp.
#include "dsp/frame.h"
#include "dsp/lanes.h"

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
    for (int i = 0; i < kLast; i += kLanes) {
        const int k = i < kLast - kLanes ? i : kLast - kLanes;  // the last ones once more
        const Lanes a = load(x + k), b = load(x + k + 1);
        store_thirds(y + kGridStep * k, {{a, (two * a + b) * third, (two * b + a) * third}});
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

}  // namespace android::ZOQ_LEVEL
