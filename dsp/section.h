// Second-order sections over one hop, transposed direct form II.
//
// Reentrant: nothing but the arguments is touched.
#pragma once

#include "dsp/frame.h"

namespace android {

// One section over 512 samples, starting from and returning its two delays.
//        b, a     3 floats        in/out  when a[0] is neither 0 nor 1, all six are divided by a[0] in place
//        first x        512 samples     in zi       2 floats        in      delays before the hop y 512
//        samples     out     may be x itself zf       2 floats        out     delays after the hop; may be zi
//        itself
void filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf);
void b_filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf);

// A section matrix holds up to three sections as 18 floats, coefficient-major: coefficient j (b0 b1 b2 a0 a1
// a2) of section s at element 3 j + s.
inline constexpr int kMaxSections = 3;
inline constexpr int kSectionMatrixFloats = 6 * kMaxSections;

// How many sections a record's float count asks for: truncated toward zero and kept within 0..3.
int section_count(float count);

// Runs section s of a matrix in place over one hop.
//        matrix   18 floats       in      never changed
//        io       512 samples     in/out
//        delays   2 floats        in/out
void filter_matrix_section(const float* matrix, int s, float* io, float* delays);

}  // namespace android
