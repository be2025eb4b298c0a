// Settings far outside their ranges. Settings are stored and used unchecked; this only tells which hops were
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

// Whether a setting that the route uses lies beyond twice its range or is not a number.
bool headphone_settings_absurd(const parameterDEN& den, const parameterX2B& x2b, const parameterGEQ& geq);
bool speaker_settings_absurd(const parameterDEN& den, const parameterTWS& tws, const parameterEQ& eq,
                             const parameterDRC& drc, const parameterVB& vb, const parameterGEQ& geq);

}  // namespace android
