// Second-order sections over one hop, transposed direct form II: one section, and sections in cascade.
//
// Reentrant: nothing but the arguments is touched.
#pragma once

#include "dsp/frame.h"

namespace android {

// One section over 512 samples, starting from and returning its two delays.
//        b, a     3 floats        in/out  when a[0] is neither 0 nor 1, all six are first divided by it in place
//        x        512 samples     in
//        zi       2 floats        in      delays before the hop
//        y        512 samples     out     may be x itself
//        zf       2 floats        out     delays after the hop; may be zi itself
void filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf);
void b_filter(float* b, float* a, const float* x, const float* zi, float* y, float* zf);

struct SectionCoefficients {
    float b[3], a[3];
};

// What one section carries from hop to hop, for each channel.
struct Delays {
    float z[2];
};
struct StereoDelays {
    Delays channel[2];
};

// A section matrix holds up to three sections as 18 floats, coefficient-major: coefficient j
// (b0 b1 b2 a0 a1 a2) of section s at element 3 j + s.
inline constexpr int kMaxSections = 3;
inline constexpr int kSectionMatrixFloats = 6 * kMaxSections;

inline constexpr int kMaxCascade = 15;

// Sections that run one on the output of the other, collected and then run together: the bits are those of filter()
// for one section after the other, in a fraction of the time. Made for one hop and thrown away.
class Cascade {
  public:
    // channels     1 or 2     with one channel, nothing of the second is read or written
    explicit Cascade(int channels) : channels_(channels) {}

    // The delays are read and written by run(); no two sections may share them. What exceeds 15 sections is left out.
    void append(const SectionCoefficients& section, StereoDelays& delays);

    // The first sections of a matrix.
    //        matrix   18 floats       in      never changed
    //        count    -               in      sections to take, truncated toward zero and kept within 0..3
    //        delays   3               in/out  one per section
    void append_matrix(const float* matrix, float count, StereoDelays* delays);

    // io     channels x 512 samples     in/out
    void run(float* io) const;

  private:
    int channels_;
    int count_ = 0;
    SectionCoefficients sections_[kMaxCascade];  // a[0] is 0 or 1
    StereoDelays* delays_[kMaxCascade];
};

}  // namespace android
