// Stand-in for the platform's status values.
#pragma once

#include <cstdint>

namespace android {

using status_t = int32_t;

enum : status_t {
    NO_ERROR = 0,
    NO_MEMORY = -12,
    ALREADY_EXISTS = -17,
    BAD_VALUE = -22,
    INVALID_OPERATION = -38,
};

}  // namespace android
