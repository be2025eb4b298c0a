#include "modules/den/den.h"

namespace android {

void factory_contents(parameterDEN*) {}

void DialogueEnhancementWide(float*, float, float, float, float, float, const float*, const float*,
                             const float*) {}

void bdiff_sm_not_empty_init() {}

}  // namespace android
