// PLACEHOLDER: all zero until the generated tables replace this file.
#include "modules/tws/tws_tables.h"

namespace android {

const creal32_T kSameSideFilter[kBins] = {};
const creal32_T kCrossFeedFilter[kBins] = {};

}  // namespace android
