#include "modules/x2b/x2b.h"

namespace android {

void factory_contents(parameterX2B*) {}

void X2Binaural_v1(const float*, float, const parameterX2B*, float*) {}

void X2Binaural_v1_init() {}

}  // namespace android
