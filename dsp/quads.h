// Vectors of four floats at every level, for what runs from point to point and has no more than four of its kind side
// by side. At 4 lanes they are the lanes themselves.
#pragma once

#include "dsp/lanes.h"

namespace android::ZOQ_LEVEL {

#if ZOQ_LANES == 4
using Quad = Lanes;
using IntQuad = IntLanes;
using QuadVector = FloatVector;
ZOQ_INLINE Quad quad_of(QuadVector v) {
    return lanes_of(v);
}
ZOQ_INLINE Quad load_quad(const float* x) {
    return load(x);
}
ZOQ_INLINE Quad broadcast_quad(float x) {
    return broadcast(x);
}
#else
typedef int32_t IntQuad __attribute__((vector_size(16)));
typedef float QuadVector __attribute__((vector_size(16)));
using Quad = QuadVector;
namespace unaligned {
typedef float FourFloats __attribute__((vector_size(16), aligned(4), may_alias));
}
ZOQ_INLINE Quad load_quad(const float* x) {
    return *reinterpret_cast<const unaligned::FourFloats*>(x);
}
ZOQ_INLINE void store(float* y, Quad a) {
    *reinterpret_cast<unaligned::FourFloats*>(y) = a;
}
ZOQ_INLINE Quad broadcast_quad(float x) {
    return Quad{x, x, x, x};
}
ZOQ_INLINE QuadVector vector_of(Quad a) {
    return a;
}
ZOQ_INLINE Quad quad_of(QuadVector v) {
    return v;
}
ZOQ_INLINE IntQuad less(Quad a, Quad b) {
    return a < b;
}
ZOQ_INLINE IntQuad at_most(Quad a, Quad b) {
    return a <= b;
}
ZOQ_INLINE Quad select(IntQuad mask, Quad a, Quad b) {
    return mask ? a : b;
}
ZOQ_INLINE Quad absolute(Quad a) {
    return Quad(IntQuad(a) & 0x7FFFFFFF);
}
#endif

ZOQ_INLINE Quad quad(float a, float b, float c, float d) {
    return quad_of(QuadVector{a, b, c, d});
}

// a[0] a[1] b[0] b[1]
ZOQ_INLINE Quad load_pairs(const float* a, const float* b) {
#ifdef ZOQ_NEON32
    return {vcombine_f32(vld1_f32(a), vld1_f32(b))};
#else
    // Moved as two words: of integers GCC would make a way through memory.
    typedef double Words __attribute__((vector_size(16)));
    typedef double Word __attribute__((aligned(4), may_alias));
    return quad_of(QuadVector(Words{*reinterpret_cast<const Word*>(a), *reinterpret_cast<const Word*>(b)}));
#endif
}

template <int... I>
ZOQ_INLINE Quad shuffle_quads(Quad a, Quad b) {
    return quad_of(__builtin_shufflevector(vector_of(a), vector_of(b), I...));
}

// Rows become columns.
ZOQ_INLINE void transpose(Quad (&q)[4]) {
    const Quad ab = shuffle_quads<0, 4, 1, 5>(q[0], q[1]), cd = shuffle_quads<0, 4, 1, 5>(q[2], q[3]);
    const Quad abUpper = shuffle_quads<2, 6, 3, 7>(q[0], q[1]),
               cdUpper = shuffle_quads<2, 6, 3, 7>(q[2], q[3]);
    q[0] = shuffle_quads<0, 1, 4, 5>(ab, cd);
    q[1] = shuffle_quads<2, 3, 6, 7>(ab, cd);
    q[2] = shuffle_quads<0, 1, 4, 5>(abUpper, cdUpper);
    q[3] = shuffle_quads<2, 3, 6, 7>(abUpper, cdUpper);
}

// One-pole smoothers with two speeds. In scalar form a step is
//     s = x > s ? attackInput * x + attack * s : s > floor ? releaseInput * x + release * s : 0
// and lanes that are all ones in noFloor take the second sum in any case.
struct Smoothers {
    Quad attackInput, attack, releaseInput, release, floor;
    IntQuad noFloor;
    Quad s;
};

// Four steps: x one after the other in, what s becomes out.
ZOQ_INLINE void smooth(Smoothers& p, Quad (&x)[4]) {
    ZOQ_UNROLL
    for (int i = 0; i < 4; ++i) {
        const Quad rising = p.attackInput * x[i] + p.attack * p.s;
        const Quad falling = p.releaseInput * x[i] + p.release * p.s;
        const Quad floored = select(less(p.floor, p.s) | p.noFloor, falling, broadcast_quad(0.0f));
        p.s = select(less(p.s, x[i]), rising, floored);
        x[i] = p.s;
    }
}

}  // namespace android::ZOQ_LEVEL
