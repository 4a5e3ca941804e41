#include "DumpDifference.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "Layout.h"

namespace tvrtool {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr uint32_t kMinHeatSide = 64;  // tiny pictures (a network's few outputs) are shown larger

double sampleAt(const DumpSamples& layout, const uint8_t* data, uint64_t at) {
  if (!layout.isFloat) return data[at];
  float value;
  std::memcpy(&value, data + at * sizeof(float), sizeof value);
  return value;
}

// Apart by how much: equal values (NaN and NaN included) by 0, a NaN and a number by infinity.
double distance(double a, double b) {
  if (a == b || (std::isnan(a) && std::isnan(b))) return 0;
  const double d = std::fabs(a - b);
  return std::isnan(d) ? kInfinity : d;
}

uint8_t clampByte(double value) { return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0)); }

// The picture of A dimmed to a quarter, from its first component (luma, red, c0), floats
// stretched from their smallest to their largest finite value.
void drawBackground(const DumpSamples& layout, const uint8_t* data, DisplayImage& heat, uint32_t zoom) {
  const SampleComponent& c = layout.components.front();
  double low = 0, high = 255;
  if (layout.isFloat) {
    low = kInfinity, high = -kInfinity;
    for (uint32_t y = 0; y < c.height; ++y) {
      for (uint32_t x = 0; x < c.width; ++x) {
        const double v = sampleAt(layout, data, c.offset + uint64_t{y} * c.rowStride + uint64_t{x} * c.step);
        if (std::isfinite(v)) low = std::min(low, v), high = std::max(high, v);
      }
    }
  }
  const double range = high > low ? high - low : 1;
  for (uint32_t y = 0; y < heat.height; ++y) {
    for (uint32_t x = 0; x < heat.width; ++x) {
      const uint64_t at = c.offset + uint64_t{y / zoom / c.scale} * c.rowStride + uint64_t{x / zoom / c.scale} * c.step;
      const double v = sampleAt(layout, data, at);
      const uint8_t gray = clampByte(std::isfinite(v) ? (v - low) / range * 64 : 0);
      std::fill_n(&heat.pixels[(size_t{y} * heat.width + x) * 3], 3, gray);
    }
  }
}

// Red for the smallest difference, through yellow, to white for the largest.
void paint(DisplayImage& heat, uint32_t x, uint32_t y, double share) {
  const double t = 0.25 + 0.75 * std::clamp(share, 0.0, 1.0);
  uint8_t* pixel = &heat.pixels[(size_t{y} * heat.width + x) * 3];
  pixel[0] = std::max(pixel[0], clampByte(3 * t * 255));
  pixel[1] = std::max(pixel[1], clampByte((3 * t - 1) * 255));
  pixel[2] = std::max(pixel[2], clampByte((3 * t - 2) * 255));
}

}  // namespace

std::optional<DumpSamples> dumpSamples(const FileName& name, uint64_t fileBytes, std::string& error) {
  const std::optional<PixelFormat> format = formatNamed(name.extension);
  DumpSamples samples;
  const uint32_t stride = name.first, height = name.second;
  if (!format || stride == 0 || height == 0) {
    error = !format ? "cannot compare the format '" + name.extension + "' (known: " + kFormatNames + ")"
                    : "an empty dump (" + std::to_string(stride) + "x" + std::to_string(height) + ")";
    return std::nullopt;
  }
  samples.isFloat = *format == PixelFormat::RgbFloat;
  const uint64_t plane = uint64_t{stride} * height;
  samples.bytes = plane * (samples.isFloat ? sizeof(float) : 1);
  samples.width = stride;
  samples.height = height;
  switch (*format) {
    case PixelFormat::Nv12:
    case PixelFormat::Nv21: {
      // The whole allocation: more luma rows than the picture has when the file says so.
      const uint64_t rows =
          fileBytes * 2 % (3ull * stride) == 0 ? std::max<uint64_t>(fileBytes * 2 / (3ull * stride), height) : height;
      samples.bytes = uint64_t{stride} * rows * 3 / 2;
      const bool nv12 = *format == PixelFormat::Nv12;
      samples.components = {{"Y", 0, stride, height, stride, 1, 1},
                            {nv12 ? "Cb" : "Cr", stride * rows, stride / 2, height / 2, stride, 2, 2},
                            {nv12 ? "Cr" : "Cb", stride * rows + 1, stride / 2, height / 2, stride, 2, 2}};
      break;
    }
    case PixelFormat::Luma:
      samples.components = {{"Y", 0, stride, height, stride, 1, 1}};
      break;
    case PixelFormat::Rgb888:
    case PixelFormat::RgbFloat:
      // A row of whole pixels reads as three channels; a float tensor of other rows as elements.
      if (stride % 3 != 0 && samples.isFloat) {
        samples.components = {{"element", 0, stride, height, stride, 1, 1}};
        break;
      }
      samples.width = stride / 3;
      for (uint32_t c = 0; c < 3; ++c) {
        const char* names[2][3] = {{"R", "G", "B"}, {"c0", "c1", "c2"}};
        samples.components.push_back({names[samples.isFloat][c], c, stride / 3, height, stride, 3, 1});
      }
      break;
  }
  if (fileBytes != samples.bytes) {
    error = (fileBytes < samples.bytes ? "truncated: " : "too large: ") + std::to_string(fileBytes) + " bytes, not " +
            std::to_string(samples.bytes);
    return std::nullopt;
  }
  return samples;
}

Difference compareDumps(const DumpSamples& layoutA, const uint8_t* a, const DumpSamples& layoutB, const uint8_t* b,
                        double tolerance) {
  Difference result;
  double sumSquares = 0, sumAbs = 0, low = kInfinity, high = -kInfinity;
  auto gapAt = [&](size_t component, uint32_t x, uint32_t y, double* valueA = nullptr) {
    const SampleComponent& ca = layoutA.components[component];
    const SampleComponent& cb = layoutB.components[component];
    const double va = sampleAt(layoutA, a, ca.offset + uint64_t{y} * ca.rowStride + uint64_t{x} * ca.step);
    if (valueA != nullptr) *valueA = va;
    return distance(va, sampleAt(layoutB, b, cb.offset + uint64_t{y} * cb.rowStride + uint64_t{x} * cb.step));
  };
  for (size_t i = 0; i < layoutA.components.size(); ++i) {
    const SampleComponent& c = layoutA.components[i];
    ComponentDifference d;
    d.name = c.name;
    d.samples = uint64_t{c.width} * c.height;
    for (uint32_t y = 0; y < c.height; ++y) {
      for (uint32_t x = 0; x < c.width; ++x) {
        double va = 0;
        const double gap = gapAt(i, x, y, &va);
        if (std::isfinite(va)) low = std::min(low, va), high = std::max(high, va);
        d.maxAbs = std::max(d.maxAbs, gap);
        d.sumAbs += gap;
        d.sumSquares += gap * gap;
        const uint64_t at = c.offset + uint64_t{y} * c.rowStride + uint64_t{x} * c.step;
        if (gap <= tolerance) continue;
        ++d.differing;
        if (at < d.firstAt) d.firstAt = at, d.firstX = x, d.firstY = y;
      }
    }
    result.maxAbs = std::max(result.maxAbs, d.maxAbs);
    result.samples += d.samples;
    result.differing += d.differing;
    sumAbs += d.sumAbs;
    sumSquares += d.sumSquares;
    result.components.push_back(d);
  }
  result.meanAbs = result.samples == 0 ? 0 : sumAbs / static_cast<double>(result.samples);
  const double peak = !layoutA.isFloat ? 255 : high > low ? high - low : 1;
  const double mse = result.samples == 0 ? 0 : sumSquares / static_cast<double>(result.samples);
  result.psnr = mse == 0 ? kInfinity : 10 * std::log10(peak * peak / mse);
  const auto first = std::min_element(result.components.begin(), result.components.end(),
                                      [](const auto& x, const auto& y) { return x.firstAt < y.firstAt; });
  if (first != result.components.end() && first->differing > 0) {
    result.first = "x " + std::to_string(first->firstX) + ", y " + std::to_string(first->firstY) + ", " + first->name;
  }

  const uint32_t zoom = std::max<uint32_t>(1, kMinHeatSide / std::max(layoutA.width, layoutA.height));
  result.heat = {layoutA.width * zoom, layoutA.height * zoom, 3, {}};
  result.heat.pixels.resize(size_t{result.heat.width} * result.heat.height * 3);
  drawBackground(layoutA, a, result.heat, zoom);
  for (uint32_t y = 0; y < result.heat.height && result.maxAbs > 0; ++y) {
    for (uint32_t x = 0; x < result.heat.width; ++x) {
      for (size_t i = 0; i < layoutA.components.size(); ++i) {
        const SampleComponent& c = layoutA.components[i];
        const uint32_t cx = x / zoom / c.scale, cy = y / zoom / c.scale;
        const double gap = cx < c.width && cy < c.height ? gapAt(i, cx, cy) : 0;
        if (gap > 0) paint(result.heat, x, y, std::isfinite(gap) ? gap / result.maxAbs : 1);
      }
    }
  }
  return result;
}

}  // namespace tvrtool
