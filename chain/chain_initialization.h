// The one-call fill of all seven records with their factory contents.
//
// Start-up and control thread; no hop may be in process meanwhile.
#pragma once

#include "chain/frame_chain.h"

namespace android {

// Fills all seven records and touches nothing else. bassCutoff is the virtual bass' cutoff in Hz (see
// modules/vb).
void stereoWidening_initialization(float bassCutoff, parameterDEN* den, parameterTWS* tws, parameterEQ* eq,
                                   parameterDRC* drc, parameterVB* vb, parameterX2B* x2b, parameterGEQ* geq);

}  // namespace android
