#include "modules/eq/eq.h"

namespace android {

void factory_contents(parameterEQ*) {}

void equalization_peak(float*, float, float, const float*, float, const float*, float, const float*, float) {}

void equalization_peak_init() {}

}  // namespace android
