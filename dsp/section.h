// Second-order sections over one hop, transposed direct form II.
//
// Reentrant: nothing but the arguments is touched.
#pragma once

#include "dsp/frame.h"

namespace android {

// One section over 512 samples, starting from and returning its two delays.
//        b, a     3 floats        in/out  when a[0] is neither 0 nor 1, all six are first divided by it in
//        place x        512 samples     in zi       2 floats        in      delays before the hop y 512
//        samples     out     may be x itself zf       2 floats        out     delays after the hop; may be zi
//        itself
void filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf);
void b_filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf);

// A section matrix holds up to three sections as 18 floats, coefficient-major: coefficient j
// (b0 b1 b2 a0 a1 a2) of section s at element 3 j + s.
inline constexpr int kMaxSections = 3;
inline constexpr int kSectionMatrixFloats = 6 * kMaxSections;

// What one section of one channel carries from hop to hop.
struct Delays {
    float z[2];
};

// Runs the first sections of a matrix in place over one hop, each on the output of the one before.
//        matrix   18 floats       in      never changed
//        count    -               in      sections to run, truncated toward zero and kept within 0..3
//        io       512 samples     in/out
//        delays   3               in/out  one per section; those of sections that do not run stay as they are
void filter_matrix(const float* matrix, float count, float* io, Delays* delays);

}  // namespace android
