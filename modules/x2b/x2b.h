// Binaural rendering: each channel through a room response of 2048 taps per ear, by partitioned overlap-save.
//
// Where it runs: headphone route, after the overlap-add.
//   channels -> half spectra -> x responses of 4 partitions x 2 ears -> accumulator of 4 hops -> inverse ->
//   ears
// Latency: none beyond the hop; partition 0 acts on the current frame.
// Cost: two forward and one inverse transform, up to 24 spectral products.  Thread: audio thread only; the
// accumulator is process-wide.
#pragma once

#include "dsp/frame.h"
#include "modules/drc/drc.h"

namespace android {

inline constexpr int kX2bPartitions = 4;
inline constexpr int kX2bResponses = 4;

struct parameterX2B {
    float numPartitions;  // partitions in use, truncated and kept within 0..4; factory fill (4)
    // Half spectra of 512-tap segments padded to 1024 samples. Response 1 is straight ahead, 2 and 3 a
    // lateral source at a narrower and a wider angle; 4 is selected by no channel. Factory fill.
    creal32_T ipsiResponse[kX2bPartitions][kX2bResponses][kBins];    // to the ear on the source's side
    creal32_T contraResponse[kX2bPartitions][kX2bResponses][kBins];  // to the other ear
    parameterDRC headphoneDrc;  // the route's compressor settings; not read here
    float surroundWidth;        // the user's width, nominally 0..1; host, from "HP_SurroundWidth"
};
static_assert(sizeof(parameterX2B) == 32848 * sizeof(float));

// Factory contents, with the generated room responses.
void factory_contents(parameterX2B* record);

// Renders one hop.
//        argument    shape             direction
//        in          3 x 1024          in       left, right, centre: the previous hop and the current one
//        channels    1.0, 2.0 or 3.0   in       truncated and kept within 1..3
//        parameters  record            in
//        out         2 x 512           out      left ear, right ear; not in
// A width outside 0..1 is used as it is. Below 0.2 (compared in double precision) the rendering fades toward
// the plain input and the opposite ear's paths are off.
void X2Binaural_v1(const float* in, float channels, const parameterX2B* parameters, float* out);

// The same with a width of the caller's in place of the record's, which other threads may change.
void X2Binaural_v1(const float* in, float channels, const parameterX2B* parameters, float surroundWidth,
                   float* out);

// The accumulator goes to zero. Whatever it holds leaves it within four hops: it needs no other care.
void X2Binaural_v1_init();

}  // namespace android
