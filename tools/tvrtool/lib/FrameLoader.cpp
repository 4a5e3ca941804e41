#include "FrameLoader.h"

#include <cstring>

#include "ColourChart.h"
#include "Nv12File.h"
#include "PngFile.h"
#include "RgbToNv12.h"

namespace tvrtool {

namespace {

std::string sizeText(uint32_t width, uint32_t height) { return std::to_string(width) + "x" + std::to_string(height); }

// NV12 halves both sides for chroma: an odd last column or row of a picture is left out.
void cropToEven(DisplayImage& image) {
  const uint32_t width = image.width & ~1u, height = image.height & ~1u;
  for (uint32_t row = 0; row < height; ++row) {
    std::memmove(image.pixels.data() + size_t{row} * width * 3, image.pixels.data() + size_t{row} * image.width * 3,
                 size_t{width} * 3);
  }
  image.width = width;
  image.height = height;
  image.pixels.resize(size_t{width} * height * 3);
}

std::optional<Nv12Frame> loadPng(const std::string& path, std::string& description, std::string& error) {
  DisplayImage image;
  error = readPng(path, image);
  if (!error.empty()) {
    error = "cannot read it as a PNG picture: " + error;
    return std::nullopt;
  }
  description = path + ", PNG " + sizeText(image.width, image.height);
  if (image.width < 2 || image.height < 2) {
    error = "the picture is " + sizeText(image.width, image.height) + ": it needs at least 2x2 pixels";
    return std::nullopt;
  }
  if ((image.width | image.height) & 1u) {
    cropToEven(image);
    description += " cut to " + sizeText(image.width, image.height);
  }
  description += " as NV12 (BT.601 video range)";
  return rgbToNv12(image);
}

}  // namespace

std::optional<Nv12Frame> loadFrame(const RunOptions& options, std::string& description, std::string& error) {
  switch (options.source) {
    case FrameSource::Chart:
      description = "built-in colour chart, NV12 " + sizeText(kChartWidth, kChartHeight);
      return rgbToNv12(colourChart(kChartWidth, kChartHeight));
    case FrameSource::PngFile:
      return loadPng(options.sourcePath, description, error);
    case FrameSource::Nv12File: {
      const LayoutRequest request{std::nullopt, options.width, options.height, options.stride, options.scanline};
      std::optional<Nv12Frame> frame = readNv12File(options.sourcePath, request, error);
      if (frame) {
        description = options.sourcePath + ", NV12 " + sizeText(frame->width, frame->height) + ", stride " +
                      std::to_string(frame->stride) + ", scanline " + std::to_string(frame->scanline);
      }
      return frame;
    }
  }
  return std::nullopt;
}

}  // namespace tvrtool
