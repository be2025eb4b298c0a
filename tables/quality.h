// Measures what the generated filters, room responses and sections are to achieve, from data in the shape of
// the records.
//
// Nothing here knows how the data was made: sets from elsewhere are measured alike.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "modules/x2b/x2b.h"
#include "tables/head.h"
#include "tables/signal.h"

namespace zoq::tables {

using Bins = std::span<const android::creal32_T>;

// The impulse response of a half spectrum of 513 bins, 1024 samples.
Signal impulse_response(Bins filter);
double magnitude(Bins filter, int bin);

// Thirds of an octave from 125 Hz to 16 kHz.
inline constexpr int kThirds = 22, kThirdAt500Hz = 6;
// Mean power per bin in each third of a response at 48 kHz, of up to 4096 samples.
std::array<double, kThirds> third_powers(const Signal& response);

// ---- Widening filters

struct WideningQuality {
    int sameSidePeak, crossFeedPeak;  // samples
    double sameSideAtPeak, crossFeedAtPeak;
    double outsideDb;  // energy outside samples 7..466 against all, the worse of the two
    double midGainDb;  // highest |same + cross| of all bins: what the centre may gain
    int midGainBin;
    std::array<double, kThirds> midThirdsDb;  // the same by thirds
    double edgeImaginary;                     // largest imaginary part at bins 0 and 512
};
WideningQuality measure_widening(Bins sameSide, Bins crossFeed);

// A left-only input through filters and two loudspeakers at +-speakerDegrees: level of the far ear against
// the near one, by thirds of an octave from 500 Hz to 2 kHz.
std::array<double, 7> far_ear_db(Bins sameSide, Bins crossFeed, const Head& head, double speakerDegrees);

// ---- Sections

// Power that the first sections of a section matrix (dsp/section.h) pass at one frequency.
double cascade_power(const float* sos, int sections, double hz);

// ---- Room responses

// The two tables of parameterX2B: [partition][response][bin].
struct RoomTables {
    Bins sameSide, oppositeSide;
};
// Where the spectrum of partition p and response r begins in a table.
inline size_t first_bin(int p, int r) {
    return (size_t(p) * android::kX2bResponses + size_t(r)) * android::kBins;
}
inline constexpr int kRoomTaps = android::kX2bPartitions * android::kHopSamples;

enum Side { kSameSide, kOppositeSide };
// The taps of response r, 0..3.
Signal room_response(const RoomTables& rooms, int side, int r);

inline constexpr std::array<double, 5> kLevelOctavesHz = {500, 1000, 2000, 4000, 8000};

struct Interaural {
    double delaySamples;            // at 48 kHz, below 1.5 kHz; the far ear later
    std::array<double, 5> levelDb;  // near ear over far ear, in octaves
};
// near, far: half spectra at 48 kHz, of any equal length.
Interaural interaural(const Spectrum& near, const Spectrum& far);
Interaural interaural(const Head& head, const Direction& direction);

struct ResponseQuality {
    std::array<int, 2> arrival;                  // first tap of partition 0 above a tenth of its peak
    std::array<double, 2> bin0;                  // of partition 0
    std::array<double, 2> energy;                // of all taps
    double energyRatio;                          // opposite side over same side
    std::array<std::array<double, 4>, 2> share;  // of a side's energy in each partition
    Interaural ears;
    double tailT60Seconds;  // above 300 Hz, from 10 to 36 ms
    double tailCoherence;   // highest correlation of the ears within 1 ms, above 1 kHz, same time
    double wrapAroundDb;    // energy in the second half of the inverse transforms, against all
    double edgeImaginary;   // largest imaginary part at bins 0 and 512
};
// r: 0..3
ResponseQuality measure_response(const RoomTables& rooms, int r);

// What a listener gets of one channel, pink, at one width of 0.2 or more, both ears' power summed.
struct RenderingQuality {
    double levelDb;        // against the dry path of 0.707 per channel and ear, 125 Hz..16 kHz
    double colourationDb;  // standard deviation by thirds of an octave, same range
    double rangeDb;        // highest third over lowest
};
RenderingQuality measure_lateral(const RoomTables& rooms, double width);
RenderingQuality measure_centre(const RoomTables& rooms, double width);

// Energy of the first 2.5 ms against what follows, of one channel at one width of 0.2 or more; same side, other ear.
std::array<double, 2> direct_to_reverberant_db(const RoomTables& rooms, double width);

}  // namespace zoq::tables
