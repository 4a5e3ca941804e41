#include "RgbToNv12.h"

#include <algorithm>
#include <cmath>

namespace tvrtool {

namespace {

uint8_t rounded(double value, double low, double high) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, low, high)));
}

}  // namespace

Ycc rgbToYcc(Rgb rgb) {
  const double r = rgb.r, g = rgb.g, b = rgb.b;
  return {rounded(16 + (65.481 * r + 128.553 * g + 24.966 * b) / 255, 16, 235),
          rounded(128 + (-37.797 * r - 74.203 * g + 112.0 * b) / 255, 16, 240),
          rounded(128 + (112.0 * r - 93.786 * g - 18.214 * b) / 255, 16, 240)};
}

Nv12Frame rgbToNv12(const DisplayImage& image) {
  Nv12Frame frame;
  frame.width = image.width;
  frame.height = image.height;
  frame.stride = image.width;
  frame.scanline = image.height;
  frame.bytes.resize(static_cast<size_t>(frame.stride) * frame.height * 3 / 2);
  const size_t rowBytes = static_cast<size_t>(image.width) * 3;
  auto pixel = [&](uint32_t x, uint32_t y) {
    const uint8_t* p = image.pixels.data() + y * rowBytes + x * 3;
    return Rgb{p[0], p[1], p[2]};
  };
  for (uint32_t y = 0; y < frame.height; ++y) {
    for (uint32_t x = 0; x < frame.width; ++x) frame.bytes[size_t{y} * frame.stride + x] = rgbToYcc(pixel(x, y)).y;
  }
  uint8_t* chroma = frame.bytes.data() + frame.chromaOffset();
  for (uint32_t y = 0; y + 1 < frame.height; y += 2) {
    for (uint32_t x = 0; x + 1 < frame.width; x += 2) {
      const Rgb a = pixel(x, y), b = pixel(x + 1, y), c = pixel(x, y + 1), d = pixel(x + 1, y + 1);
      const auto mean = [](int p, int q, int r, int s) { return static_cast<uint8_t>((p + q + r + s + 2) / 4); };
      const Ycc ycc = rgbToYcc({mean(a.r, b.r, c.r, d.r), mean(a.g, b.g, c.g, d.g), mean(a.b, b.b, c.b, d.b)});
      uint8_t* pair = chroma + size_t{y / 2} * frame.stride + x;
      pair[0] = ycc.cb;
      pair[1] = ycc.cr;
    }
  }
  return frame;
}

}  // namespace tvrtool
