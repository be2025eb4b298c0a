#include "modules/tws/tws.h"

namespace android {

void factory_contents(parameterTWS*) {}

void TWSmobile_freq(const float*, const parameterTWS*, float*) {}

}  // namespace android
