// Where the time of `tvrtool run` went.
#pragma once

#include <string>

#include "FrameTimings.h"

namespace tvrtool {

// One row per stage the processing reported and one for the whole apply: median and 95th
// percentile per frame, in milliseconds.
std::string timingTable(const FrameTimings& timings);

}  // namespace tvrtool
