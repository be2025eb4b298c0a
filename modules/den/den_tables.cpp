// PLACEHOLDER: all zero until the generated tables replace this file.
#include "modules/den/den_tables.h"

namespace android {

const float kWideCurve[4][kDenCurveColumns] = {};

}  // namespace android
