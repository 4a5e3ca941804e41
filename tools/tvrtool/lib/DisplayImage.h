// Any layout as 8-bit pixels that a PNG can hold: RGB, or gray for a single luma plane.
#pragma once

#include <cstdint>
#include <vector>

#include "Layout.h"

namespace tvrtool {

struct DisplayImage {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t channels = 0;        // 3 (RGB) or 1 (gray)
  std::vector<uint8_t> pixels;  // packed rows of width x channels bytes
};

struct Rgb {
  uint8_t r, g, b;
};

// BT.601 video range (luma 16..235, chroma 16..240), rounded, clamped to 0..255.
Rgb yuvToRgb(uint8_t y, uint8_t cb, uint8_t cr);

// `data` holds byteSize(layout) bytes. Float RGB is stretched from its smallest to its largest
// finite value onto 0..255 (NaN and -inf show as 0, +inf as 255; a constant image as 0). Row
// padding beyond the width is ignored.
DisplayImage toDisplayImage(const Layout& layout, const uint8_t* data);

}  // namespace tvrtool
