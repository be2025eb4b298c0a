// What follows from impulse responses: frequency response, latency, crosstalk.
#pragma once

#include "tools/zoq/measure/sweep.h"

namespace zoq {

Response response_of(const SweepResult& sweep);
LatencyFigures latency_of(const SweepResult& sweep);
Crosstalk crosstalk_of(const SweepResult& leftOnly);

}  // namespace zoq
