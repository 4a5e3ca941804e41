#include "Layout.h"

#include <cctype>

namespace tvrtool {

namespace {

uint32_t samplesPerPixel(PixelFormat format) {
  return format == PixelFormat::Rgb888 || format == PixelFormat::RgbFloat ? 3 : 1;
}

bool isYuv420(PixelFormat format) { return format == PixelFormat::Nv12 || format == PixelFormat::Nv21; }

std::string checkBounds(const Layout& layout) {
  const uint32_t samples = samplesPerPixel(layout.format);
  if (layout.stride > kMaxStride) return "the stride must be at most " + std::to_string(kMaxStride);
  if (static_cast<uint64_t>(layout.width) * samples > layout.stride) {
    return "a row of " + std::to_string(layout.width) + " pixels does not fit the stride " +
           std::to_string(layout.stride) + (samples == 3 ? " (3 samples per pixel)" : "");
  }
  if (isYuv420(layout.format)) {
    if (layout.width % 2 != 0 || layout.height % 2 != 0) {
      return std::string(nameOf(layout.format)) + " needs an even width and height";
    }
    if (layout.scanline < layout.height || layout.scanline > kMaxDimension) {
      return "the scanline must lie between the height and " + std::to_string(kMaxDimension);
    }
  } else if (layout.scanline != layout.height) {
    return "--scanline applies to nv12 and nv21 only";
  }
  return "";
}

}  // namespace

std::optional<PixelFormat> formatNamed(const std::string& name) {
  std::string lower;
  for (char c : name) lower.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
  if (lower == "nv12" || lower == "yuv") return PixelFormat::Nv12;
  if (lower == "nv21") return PixelFormat::Nv21;
  if (lower == "y") return PixelFormat::Luma;
  if (lower == "rgb" || lower == "raw") return PixelFormat::Rgb888;
  if (lower == "f32") return PixelFormat::RgbFloat;
  return std::nullopt;
}

const char* nameOf(PixelFormat format) {
  switch (format) {
    case PixelFormat::Nv12:
      return "nv12";
    case PixelFormat::Nv21:
      return "nv21";
    case PixelFormat::Luma:
      return "y";
    case PixelFormat::Rgb888:
      return "rgb";
    case PixelFormat::RgbFloat:
      return "f32";
  }
  return "?";
}

std::optional<Layout> resolveLayout(const FileName& name, const LayoutRequest& request, std::string& error) {
  const std::string formatName = request.format.value_or(name.extension);
  const std::optional<PixelFormat> format = formatNamed(formatName);
  if (!format) {
    error = request.format ? "unknown format '" + formatName + "' (known: " + kFormatNames + ")"
                           : "cannot tell the format from the name: give --format (" + std::string(kFormatNames) + ")";
    return std::nullopt;
  }
  const uint32_t samples = samplesPerPixel(*format);

  Layout layout{*format, 0, 0, 0, 0};
  const bool dump = name.kind == NameKind::Dump;
  const bool sized = name.kind == NameKind::Sized;
  layout.height = request.height.value_or(name.second);
  layout.stride = request.stride.value_or(dump ? name.first : 0);
  layout.width = request.width.value_or(sized ? name.first : 0);

  if (layout.width == 0 && layout.stride != 0) {
    // A dump tells the stride only; its rows are taken to be full.
    if (layout.stride % samples != 0) {
      error = "the stride " + std::to_string(layout.stride) + " is not a multiple of 3: give --width";
      return std::nullopt;
    }
    layout.width = layout.stride / samples;
  }
  if (layout.width == 0 || layout.height == 0) {
    error = name.kind == NameKind::Plain ? "cannot tell the size from the name: give --width and --height"
                                         : "the image is empty (width and height must be at least 1)";
    return std::nullopt;
  }
  if (layout.width > kMaxDimension || layout.height > kMaxDimension) {
    error = "width and height must be at most " + std::to_string(kMaxDimension);
    return std::nullopt;
  }
  if (layout.stride == 0) layout.stride = layout.width * samples;
  layout.scanline = request.scanline.value_or(layout.height);
  error = checkBounds(layout);
  if (!error.empty()) return std::nullopt;
  return layout;
}

uint64_t byteSize(const Layout& layout) {
  const uint64_t stride = layout.stride;
  switch (layout.format) {
    case PixelFormat::Nv12:
    case PixelFormat::Nv21:
      return stride * layout.scanline * 3 / 2;
    case PixelFormat::Luma:
    case PixelFormat::Rgb888:
      return stride * layout.height;
    case PixelFormat::RgbFloat:
      return stride * layout.height * sizeof(float);
  }
  return 0;
}

std::string checkFileSize(const Layout& layout, uint64_t actual) {
  if (actual == 0) return "the file is empty";
  const uint64_t expected = byteSize(layout);
  if (actual == expected) return "";
  std::string message = "the file has " + std::to_string(actual) + " bytes, but " + describe(layout) + " takes " +
                        std::to_string(expected) + (actual < expected ? " (truncated?)" : "");
  // A host frame often has more luma rows allocated than it shows.
  if (isYuv420(layout.format) && actual > expected && actual * 2 % (3ull * layout.stride) == 0) {
    message += "; it would fit --scanline " + std::to_string(actual * 2 / (3ull * layout.stride));
  }
  return message;
}

std::string describe(const Layout& layout) {
  std::string text = std::string(nameOf(layout.format)) + " " + std::to_string(layout.width) + "x" +
                     std::to_string(layout.height) + ", stride " + std::to_string(layout.stride);
  if (layout.scanline != layout.height) text += ", scanline " + std::to_string(layout.scanline);
  return text;
}

}  // namespace tvrtool
