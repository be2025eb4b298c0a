#include "chain/chain_initialization.h"

namespace android {

void stereoWidening_initialization(float bassCutoff, parameterDEN* den, parameterTWS* tws, parameterEQ* eq,
                                   parameterDRC* drc, parameterVB* vb, parameterX2B* x2b, parameterGEQ* geq) {
    factory_contents(den);
    factory_contents(tws);
    factory_contents(eq);
    factory_contents(drc);
    factory_contents(bassCutoff, vb);
    factory_contents(x2b);
    factory_contents(geq);
}

}  // namespace android
