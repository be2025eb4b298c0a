// Sections in cascade as a wavefront: while section 0 works on sample n, section 1 works on a sample before it, and
// so on, both channels of all sections in one step. Each value is computed by the operations of filter().
#include "dsp/memory_lanes.h"
#include "dsp/section.h"

namespace android::ZOQ_LEVEL {

namespace {

// Two neighbouring lanes, left and right, belong to one section. Sections that follow one another lie in the same
// lanes of neighbouring vectors, so a sample needs no shuffle to reach the next one; from the last vector it moves
// down by two lanes into the first. The last section is in lanes 0 and 1.
constexpr int kPairs = kLanes / 2;
constexpr float kSilence = 0.0f;                                                       // behind the hop
constexpr int kLongest = kSectionVectors * kPairs < 9 ? kSectionVectors * kPairs : 9;  // sections in one pass

template <int kSections>
struct Layout {
    static constexpr int kVectors = (kSections + kPairs - 1) / kPairs;
    static constexpr int kPairsUsed = (kSections + kVectors - 1) / kVectors;
    static constexpr int kLast = (kSections - 1) % kVectors;  // the vector of the last section
    static constexpr int vector(int section) { return section % kVectors; }
    static constexpr int lane(int section) { return 2 * (kPairsUsed - 1 - section / kVectors); }

    // Samples by which a section is behind section 0. The move between lanes is given a step of its own, so that
    // nobody waits for it.
    static constexpr int lag(int section) { return section + section / kVectors; }
    static constexpr int kLag = lag(kSections - 1);
};

struct Sections {
    Lanes b0, b1, b2, a1, a2, z0, z1, out, lag;
};

template <int kSections>
struct Wavefront {
    Sections v[Layout<kSections>::kVectors];
    Lanes moving;  // on its way from the last vector to the first
};

// One vector of sections as floats.
struct Table {
    float b0[kLanes], b1[kLanes], b2[kLanes], a1[kLanes], a2[kLanes], z0[kLanes], z1[kLanes], lag[kLanes];
};

// With one channel both lanes of a pair do the same.
template <int kSections>
ZOQ_INLINE void set_up(Wavefront<kSections>& w, const SectionCoefficients* sections, int channels,
                       const StereoDelays* delays) {
    using L = Layout<kSections>;
    Table table[L::kVectors] = {};
    for (int s = 0; s < kSections; ++s) {
        const SectionCoefficients& section = sections[s];
        for (int c = 0; c < 2; ++c) {
            Table& t = table[L::vector(s)];
            const int i = L::lane(s) + c;
            const Delays& d = delays[s].channel[channels == 2 ? c : 0];
            t.b0[i] = section.b[0];
            t.b1[i] = section.b[1];
            t.b2[i] = section.b[2];
            t.a1[i] = section.a[1];
            t.a2[i] = section.a[2];
            t.z0[i] = d.z[0];
            t.z1[i] = d.z[1];
            t.lag[i] = float(L::lag(s));
        }
    }
    for (int k = 0; k < L::kVectors; ++k) {
        const Table& t = table[k];
        w.v[k] = {load(t.b0), load(t.b1), load(t.b2),      load(t.a1), load(t.a2),
                  load(t.z0), load(t.z1), broadcast(0.0f), load(t.lag)};
    }
    w.moving = broadcast(0.0f);
}

template <int kSections>
ZOQ_INLINE void put_away(const Wavefront<kSections>& w, int channels, StereoDelays* delays) {
    using L = Layout<kSections>;
    Table table[L::kVectors];
    for (int k = 0; k < L::kVectors; ++k) {
        store(table[k].z0, w.v[k].z0);
        store(table[k].z1, w.v[k].z1);
    }
    for (int s = 0; s < kSections; ++s) {
        for (int c = 0; c < channels; ++c) {
            const Table& t = table[L::vector(s)];
            const int i = L::lane(s) + c;
            delays[s].channel[c] = {{t.z0[i], t.z1[i]}};
        }
    }
}

// The first and the last steps of a hop, in which some sections have no sample, leave the delays of these alone.
template <bool kEdge>
ZOQ_INLINE void advance(Sections& s, Lanes in, [[maybe_unused]] int t) {
    const Lanes out = add_product(s.z0, s.b0, in);
    const Lanes z0 = subtract_product(add_product(s.z1, s.b1, in), s.a1, out);
    const Lanes z1 = subtract_product(s.b2 * in, s.a2, out);
    s.out = out;
    if constexpr (kEdge) {
        const Lanes n = broadcast(float(t)) - s.lag;
        const IntLanes busy = less(broadcast(-0.5f), n) & less(n, broadcast(float(kHopSamples)));
        s.z0 = select(busy, z0, s.z0);
        s.z1 = select(busy, z1, s.z1);
    } else {
        s.z0 = z0;
        s.z1 = z1;
    }
}

template <bool kEdge, int kSections>
ZOQ_INLINE void step(Wavefront<kSections>& w, const float* left, const float* right, int t) {
    using L = Layout<kSections>;
    const Lanes leaving = w.v[L::kVectors - 1].out;
    ZOQ_UNROLL
    for (int k = L::kVectors - 1; k > 0; --k) {
        advance<kEdge>(w.v[k], w.v[k - 1].out, t);
    }
    advance<kEdge>(w.v[0], with_pair<2 * (L::kPairsUsed - 1)>(w.moving, left, right), t);
    w.moving = down_by_two(leaving);
}

template <int kSections>
void run(const SectionCoefficients* sections, int channels, float* io, StereoDelays* delays) {
    using L = Layout<kSections>;
    float* left = io;
    float* right = channels == 2 ? io + kHopSamples : io;
    Wavefront<kSections> w;
    set_up(w, sections, channels, delays);
    int t = 0;
    for (; t < L::kLag; ++t) {
        step<true>(w, left + t, right + t, t);
    }
    for (; t < kHopSamples; ++t) {
        step<false>(w, left + t, right + t, t);
        store_pair(left + t - L::kLag, right + t - L::kLag, w.v[L::kLast].out);
    }
    for (; t < kHopSamples + L::kLag; ++t) {
        step<true>(w, &kSilence, &kSilence, t);
        store_pair(left + t - L::kLag, right + t - L::kLag, w.v[L::kLast].out);
    }
    put_away(w, channels, delays);
}

template <int... I>
ZOQ_INLINE void run_counted(int count, const SectionCoefficients* sections, int channels, float* io,
                            StereoDelays* delays, std::integer_sequence<int, I...>) {
    ((count == I + 1 ? run<I + 1>(sections, channels, io, delays) : void()), ...);
}

}  // namespace

void cascade(const SectionCoefficients* sections, int count, int channels, float* io, StereoDelays* delays) {
    while (count > 0) {
        const int now = count < kLongest ? count : kLongest;
        run_counted(now, sections, channels, io, delays, std::make_integer_sequence<int, kLongest>());
        sections += now;
        delays += now;
        count -= now;
    }
}

}  // namespace android::ZOQ_LEVEL
