// How the bytes of a file form an image, and how many bytes that takes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "DumpName.h"

namespace tvrtool {

enum class PixelFormat {
  Nv12,      // 8-bit luma plane, then Cb/Cr pairs of half the rows ("nv12", "yuv")
  Nv21,      // as Nv12 with Cr/Cb pairs ("nv21")
  Luma,      // one 8-bit luma plane ("y")
  Rgb888,    // packed 8-bit RGB ("rgb", "raw")
  RgbFloat,  // packed 32-bit float RGB ("f32")
};

// The names accepted by --format and as extensions, for messages.
inline constexpr const char kFormatNames[] = "nv12, nv21, yuv, y, rgb, raw, f32";

// Case-insensitive; "yuv" reads as nv12 and "raw" as rgb.
std::optional<PixelFormat> formatNamed(const std::string& name);
const char* nameOf(PixelFormat format);

struct Layout {
  PixelFormat format;
  uint32_t width;     // pixels
  uint32_t height;    // rows
  uint32_t stride;    // from one row to the next, in samples: bytes, or floats for RgbFloat
  uint32_t scanline;  // rows of the luma plane before the chroma plane (4:2:0 only; else = height)
};

// What the options ask for; each one overrides what the file name says.
struct LayoutRequest {
  std::optional<std::string> format;
  std::optional<uint32_t> width, height, stride, scanline;
};

// Upper bounds of the numbers a layout may hold, so that no size computation can overflow.
inline constexpr uint32_t kMaxDimension = 65535;
inline constexpr uint32_t kMaxStride = 3 * 4 * kMaxDimension;

// Decides the layout from the name and the request. On failure returns nothing and sets `error`
// to a message for the user.
std::optional<Layout> resolveLayout(const FileName& name, const LayoutRequest& request, std::string& error);

// Bytes the layout occupies in a file: the whole allocation, as the library dumps it.
uint64_t byteSize(const Layout& layout);

// Empty when a file of `actual` bytes holds the layout; else why not, for the user.
std::string checkFileSize(const Layout& layout, uint64_t actual);

// "nv12 1920x1080, stride 1920", for messages.
std::string describe(const Layout& layout);

}  // namespace tvrtool
