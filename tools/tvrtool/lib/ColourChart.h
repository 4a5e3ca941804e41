// The built-in test picture of `tvrtool run`: a frame that needs no file, so the bare command works.
#pragma once

#include <cstdint>

#include "DisplayImage.h"

namespace tvrtool {

inline constexpr uint32_t kChartWidth = 1920;
inline constexpr uint32_t kChartHeight = 1080;

// Eight colour bars at 75% (gray, yellow, cyan, green, magenta, red, blue, black) over the top two
// thirds, and a ramp of eight gray patches from black to white below. Every border falls on an
// even column and row, so no NV12 chroma pair straddles two colours. Width and height even, >= 16.
DisplayImage colourChart(uint32_t width, uint32_t height);

}  // namespace tvrtool
