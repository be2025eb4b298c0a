// The per-hop driver: overlap-add, route order and per-hop control values.
//
// Audio thread only; the three overlap buffers are process-wide. One hop (512 samples) of delay.
#pragma once

#include "modules/den/den.h"
#include "modules/drc/drc.h"
#include "modules/eq/eq.h"
#include "modules/geq/geq.h"
#include "modules/tws/tws.h"
#include "modules/vb/vb.h"
#include "modules/x2b/x2b.h"

namespace android {

inline constexpr int kChainChannels = 3;  // left, right, centre

// Processes one frame and returns the hop that became complete. The first hop whose settings are sane behind absurd
// ones (chain/absurd_settings.h) begins with a reset of every module, as below, and bands designed anew.
//        argument      shape         direction
//        frameIn       3 x 1024      in/out   left and right frame, or mono in block 0; work space for stereo input
//        channelCount  2.0: stereo   in       any other value: one channel, block 0
//        headphone     0: speaker    in
//        den, tws      record        in/out   wideAmount and widthGain are rewritten from the width settings
//        the others    record        in
//        frameOut      2 x 512       out      left, right; for one channel on the speaker route block 1 is not
//                                             processed
void stereoWidening_frame(float* frameIn, float channelCount, uint8_t headphone, parameterDEN* den,
                          parameterTWS* tws, const parameterEQ* eq, const parameterDRC* drc,
                          const parameterVB* vb, const parameterX2B* x2b, const parameterGEQ* geq,
                          float* frameOut);

// The overlap buffers go to zero.
void stereoWidening_frame_init();

// Every module's state and the overlap buffers go to their reset values; records stay.
void stereoWidening_frame_initialize();

}  // namespace android
