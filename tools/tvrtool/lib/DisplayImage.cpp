#include "DisplayImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace tvrtool {

namespace {

uint8_t clamp8(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

void yuv420ToRgb(const Layout& layout, const uint8_t* data, bool crFirst, DisplayImage& image) {
  const size_t stride = layout.stride;
  const uint8_t* chroma = data + stride * layout.scanline;
  for (uint32_t row = 0; row < layout.height; ++row) {
    const uint8_t* luma = data + stride * row;
    const uint8_t* pairs = chroma + stride * (row / 2);
    uint8_t* out = image.pixels.data() + static_cast<size_t>(row) * layout.width * 3;
    for (uint32_t column = 0; column < layout.width; ++column) {
      const uint8_t first = pairs[column / 2 * 2];
      const uint8_t second = pairs[column / 2 * 2 + 1];
      const Rgb rgb = crFirst ? yuvToRgb(luma[column], second, first) : yuvToRgb(luma[column], first, second);
      *out++ = rgb.r;
      *out++ = rgb.g;
      *out++ = rgb.b;
    }
  }
}

// Rows of `rowBytes` visible bytes, `stride` bytes apart, copied into packed rows.
void copyRows(const Layout& layout, const uint8_t* data, size_t rowBytes, DisplayImage& image) {
  for (uint32_t row = 0; row < layout.height; ++row) {
    std::memcpy(image.pixels.data() + rowBytes * row, data + static_cast<size_t>(layout.stride) * row, rowBytes);
  }
}

void floatRgbToRgb(const Layout& layout, const uint8_t* data, DisplayImage& image) {
  const size_t samples = static_cast<size_t>(layout.width) * 3;
  std::vector<float> values(samples * layout.height);
  for (uint32_t row = 0; row < layout.height; ++row) {
    std::memcpy(values.data() + samples * row, data + sizeof(float) * layout.stride * row, samples * sizeof(float));
  }
  float low = std::numeric_limits<float>::infinity();
  float high = -std::numeric_limits<float>::infinity();
  for (float value : values) {
    if (!std::isfinite(value)) continue;
    low = std::min(low, value);
    high = std::max(high, value);
  }
  const double range = static_cast<double>(high) - static_cast<double>(low);
  for (size_t i = 0; i < values.size(); ++i) {
    const float value = values[i];
    int shown = 0;
    if (std::isinf(value)) {
      shown = value > 0 ? 255 : 0;
    } else if (std::isfinite(value) && range > 0) {
      shown = static_cast<int>(std::lround((static_cast<double>(value) - low) / range * 255.0));
    }
    image.pixels[i] = clamp8(shown);
  }
}

}  // namespace

Rgb yuvToRgb(uint8_t y, uint8_t cb, uint8_t cr) {
  const int c = 298 * (y - 16) + 128;
  const int d = cb - 128;
  const int e = cr - 128;
  // Arithmetic shifts of negative sums floor, as the fixed-point coefficients assume.
  return Rgb{clamp8((c + 409 * e) >> 8), clamp8((c - 100 * d - 208 * e) >> 8), clamp8((c + 516 * d) >> 8)};
}

DisplayImage toDisplayImage(const Layout& layout, const uint8_t* data) {
  DisplayImage image;
  image.width = layout.width;
  image.height = layout.height;
  image.channels = layout.format == PixelFormat::Luma ? 1 : 3;
  image.pixels.resize(static_cast<size_t>(layout.width) * layout.height * image.channels);
  switch (layout.format) {
    case PixelFormat::Nv12:
    case PixelFormat::Nv21:
      yuv420ToRgb(layout, data, layout.format == PixelFormat::Nv21, image);
      break;
    case PixelFormat::Luma:
    case PixelFormat::Rgb888:
      copyRows(layout, data, static_cast<size_t>(layout.width) * image.channels, image);
      break;
    case PixelFormat::RgbFloat:
      floatRgbToRgb(layout, data, image);
      break;
  }
  return image;
}

}  // namespace tvrtool
