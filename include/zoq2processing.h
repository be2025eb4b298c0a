// libzoq2processing: audio output post-processing for phones. What a host may see: entry points, settings,
// globals.
//
// One engine per process. A host calls ZOQ_OUTPROC_PLAY_INIT once, then hands every block of interleaved
// 16-bit PCM it plays to ZOQ_OUTPROC_PLAY_SAMPLES, which processes it in place. Settings arrive as parameter
// strings.
//
// Threads. Audio thread: ZOQ_OUTPROC_PLAY_SAMPLES, and ZOQ_OUTPROC_PLAY_INIT, never the two at once. Any
// thread: ZOQ_PARAMS_SET, ZOQ_PARAMS_GET, ZOQ_update_volume. No entry point returns a status; nothing is
// logged. The audio path allocates nothing and takes one lock for the time of two assignments.
#pragma once

#include <pthread.h>
#include <system/audio.h>
#include <utils/String8.h>

#include "chain/chain_initialization.h"
#include "chain/frame_chain.h"
#include "dsp/fft.h"
#include "dsp/frame.h"
#include "dsp/grid.h"
#include "dsp/section.h"
#include "modules/den/den.h"
#include "modules/drc/drc.h"
#include "modules/eq/eq.h"
#include "modules/geq/geq.h"
#include "modules/tws/tws.h"
#include "modules/vb/vb.h"
#include "modules/x2b/x2b.h"

// --- Entry points ---

extern "C" {

// Validates the engine state, gives all records their factory contents, applies "/etc/zoq/zoq_config.txt" if
// it can be read, resets every module and empties the sample rings. May be called again at any time between
// two blocks; the queue of a stream that stays the same is then 2048 sample frames long, zeros at first, and the
// volume index is 15 again.
void ZOQ_OUTPROC_PLAY_INIT();

// Processes one block in place.
//        samples     interleaved signed 16-bit PCM       in/out
//        bytes       length of the block; at most 73728 (18432 stereo sample frames)
//        sampleRate  Hz; only a change of it matters, the modules are tuned for 48000
//        channels    interleaved channels; the driver is built for 2
// After a change of rate, block size or output class blocks pass through untouched until 6000 sample frames are
// full; then the output is the processed input, delayed by one hop and by (values per block) mod 1024 values,
// faded in over 5120 sample frames. A block that cannot be processed (no samples, too long, channels outside
// 1..6) comes back untouched.
void ZOQ_OUTPROC_PLAY_SAMPLES(int16_t* samples, int bytes, int sampleRate, int channels);

// Applies key=value pairs joined by ";". Unknown keys are ignored; values are stored unchecked.
void ZOQ_PARAMS_SET(const android::String8& keyValuePairs);

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"  // hosts bind to the plain name
#endif
// Answers keys joined by ";" with their current values, sorted by key; "" when no key is known.
android::String8 ZOQ_PARAMS_GET(const android::String8& keys);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif
}

namespace android {

// Volume notification: the index selects the loudspeaker's compression factor; the stream type is ignored.
void ZOQ_update_volume(int index, audio_stream_type_t stream);

// --- Steps of the entry points, for hosts that drive them one by one ---

// Processes one frame in place: 512 sample frames of `channels` (1..6) interleaved values. enable, length and
// sampleRate are not consulted. Output comes in pairs, so that with one channel the pair of the last sample frame
// reaches value 512 as well: the frame needs room for 513 values then.
void widening_frame(int enable, int headphone, int16_t* frame, int length, int sampleRate, int channels);

// Factory contents, defaults, module reset and configuration file.
void widening_initilization();

// 1 when value < lo or value > hi, else 0; not-a-number counts as in range.
int parameter_out_of_range(float value, float lo, float hi);

// --- Engine state ---

inline constexpr int kMaxHostChannels = 6;
inline constexpr int kRingValues = 40960;      // int16 values in each ring
inline constexpr int kMaxBlockValues = 36864;  // int16 values in a block

struct parameterMEM {
    // Settings as the host gave them, in percent unless noted; ZOQ_PARAMS_SET and the configuration file.
    int32_t stereoWidenEnable;             // 1: processing on, 0: off
    int32_t headphoneMode;                 // 1: headphone route; recomputed at every block
    int32_t prevHeadphoneMode;             // its value one block earlier
    float compressionGain;                 // loudspeaker, of 18 or 21 dB; 0..100
    float headphoneCompressionGain;        // headphones, of 20 dB
    float vbBoostlin;                      // virtual bass; 0..100
    float eqTrebleBoost;                   // treble; 0..100
    float dsStereoWidth;                   // loudspeaker width; 0..100
    float hpSurroundWidth;                 // headphone width
    float denCentSpeechGain;               // dialogue; 0..100
    float eqBandGain[kGeqBands];           // dB, loudspeaker
    float headphoneEqBandGain[kGeqBands];  // dB, headphones

    // Frame buffers, one row per channel.
    float frameHistory[kMaxHostChannels][kFrameSamples];  // previous hop, newest hop
    float frameIn[kMaxHostChannels][kFrameSamples];       // the chain's input and work space
    float frameOut[kMaxHostChannels][kHopSamples];        // the chain's output

    // Interleaved PCM, oldest value first.
    int16_t inRing[kRingValues];   // received, not yet processed
    int16_t outRing[kRingValues];  // waiting to be returned

    // Stream bookkeeping.
    int32_t sampleRate;         // Hz, of the last block
    int32_t blockBytes;         // of the last block
    int32_t settleCountdown;    // sample frames still to pass through
    int32_t inFill;             // values in inRing
    int32_t outFill;            // values in outRing
    int32_t mixRamp;            // crossfade position, 0 (dry) .. 5120 (wet)
    int32_t volumeIndex;        // last index given to ZOQ_update_volume
    int32_t volumeIndexSwitch;  // above it the loudspeaker's full compression is 21 dB, else 18 dB
};
// 3 flags, 7 settings, 18 band gains and 8 counters around the buffers, without padding.
static_assert(sizeof(parameterMEM) ==
              36 * 4 + kMaxHostChannels * (2 * kFrameSamples + kHopSamples) * sizeof(float) +
                  2 * kRingValues * sizeof(int16_t));

// --- Globals ---

extern parameterDEN b_parameterDEN;
extern parameterTWS b_parameterTWS;
extern parameterEQ b_parameterEQ;
extern parameterDRC b_parameterDRC;
extern parameterVB b_parameterVB;
extern parameterX2B b_parameterX2B;
extern parameterGEQ b_parameterGEQ;
extern parameterMEM b_parameterMEM;

extern pthread_mutex_t
    glock_ZOQ;  // held while a parameter string is applied, and around the output-class update
extern const char* zoq_switch;    // the key of the on/off switch
extern int32_t gCurOutputDevice;  // the platform's output-device mask; 2, the loudspeaker, at load

}  // namespace android
