// What `tvrtool run` tells at the end: where the time went, and what the network answered.
#pragma once

#include <string>

#include "DisplayImage.h"
#include "HostSession.h"

namespace tvrtool {

// One row per stage (split, NV12 to RGB, RGB to float, execute) and one for the whole apply:
// median and 95th percentile per frame, in milliseconds.
std::string timingTable(const FrameTimes& times);

// The network's normalised mean back in 0..255: value x divisor + mean, rounded and clamped.
Rgb meanColour(const float meanRgb[3], int mean, int divisor);

// "mean_rgb: 0.4912 0.4912 -0.3290 -> colour 191 191 86 (#BFBF56)".
std::string resultText(const tivora::examples::MeanColourOutput& output, const tivora::examples::MeanColourConfig& config);

}  // namespace tvrtool
