#include "ColourChart.h"

namespace tvrtool {

namespace {

constexpr uint8_t kBar = 191;  // 75% of full scale
constexpr Rgb kBars[8] = {{kBar, kBar, kBar}, {kBar, kBar, 0}, {0, kBar, kBar}, {0, kBar, 0},
                          {kBar, 0, kBar},    {kBar, 0, 0},    {0, 0, kBar},    {0, 0, 0}};

// The patch of 8 that holds `position` of `length`, with borders rounded down to even.
uint32_t patchOf(uint32_t position, uint32_t length) {
  uint32_t patch = 0;
  while (patch < 7 && position >= (length * (patch + 1) / 8 & ~1u)) ++patch;
  return patch;
}

}  // namespace

DisplayImage colourChart(uint32_t width, uint32_t height) {
  DisplayImage image;
  image.width = width;
  image.height = height;
  image.channels = 3;
  image.pixels.resize(size_t{width} * height * 3);
  const uint32_t rampTop = height * 2 / 3 & ~1u;
  uint8_t* out = image.pixels.data();
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t patch = patchOf(x, width);
      const uint8_t gray = static_cast<uint8_t>(patch * 255 / 7);
      const Rgb rgb = y < rampTop ? kBars[patch] : Rgb{gray, gray, gray};
      *out++ = rgb.r;
      *out++ = rgb.g;
      *out++ = rgb.b;
    }
  }
  return image;
}

}  // namespace tvrtool
