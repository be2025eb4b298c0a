#include "modules/vb/vb.h"

namespace android {

void factory_contents(float, parameterVB*) {}

void virtualbassFunction_monoLC(float*, float, const parameterVB*) {}

void virtualbassFunction_monoLC_init() {}

}  // namespace android
