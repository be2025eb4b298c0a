// Settings outside their ranges. Settings are stored and used unchecked; this only tells which hops were
// processed under such ones.
#pragma once

#include "modules/den/den.h"
#include "modules/drc/drc.h"
#include "modules/eq/eq.h"
#include "modules/geq/geq.h"
#include "modules/tws/tws.h"
#include "modules/vb/vb.h"
#include "modules/x2b/x2b.h"

namespace android {

// The user's settings as a hop finds them. Other threads may change them meanwhile; a hop that uses no others than
// those judged at its start can be told to have run under absurd ones, however soon these were withdrawn.
struct HopSettings {
    float centerSpeechGain, stereoWidth, surroundWidth, trebleGain, boostLin;
};

HopSettings hop_settings(const parameterDEN& den, const parameterTWS& tws, const parameterEQ& eq,
                         const parameterVB& vb, const parameterX2B& x2b);

// Whether a setting that the route uses lies beyond its range or is not a number.
bool headphone_settings_absurd(const HopSettings& hop, const parameterDRC& drc, const parameterGEQ& geq);
bool speaker_settings_absurd(const HopSettings& hop, const parameterDRC& drc, const parameterGEQ& geq);

}  // namespace android
