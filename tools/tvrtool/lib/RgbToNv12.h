// RGB pictures to NV12 frames, through BT.601 video-range coefficients (the inverse of yuvToRgb).
#pragma once

#include <cstdint>

#include "DisplayImage.h"
#include "Nv12Frame.h"

namespace tvrtool {

struct Ycc {
  uint8_t y, cb, cr;
};

// Luma 16..235, chroma 16..240, rounded.
Ycc rgbToYcc(Rgb rgb);

// An RGB picture (channels 3) of even width and height as a packed NV12 frame (stride = width);
// each chroma pair is the mean of the 2x2 pixels it covers, converted once.
Nv12Frame rgbToNv12(const DisplayImage& image);

}  // namespace tvrtool
