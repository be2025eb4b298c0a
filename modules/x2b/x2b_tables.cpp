// PLACEHOLDER: all zero until the generated tables replace this file.
#include "modules/x2b/x2b_tables.h"

namespace android {

const creal32_T kIpsiResponse[kX2bPartitions][kX2bResponses][kBins] = {};
const creal32_T kContraResponse[kX2bPartitions][kX2bResponses][kBins] = {};

}  // namespace android
