// A whole NV12 frame in memory, laid out as a camera host hands it over: luma rows `stride` bytes
// apart, then interleaved Cb/Cr rows for every second luma row, after `scanline` luma rows.
#pragma once

#include <cstdint>
#include <vector>

namespace tvrtool {

struct Nv12Frame {
  uint32_t width = 0;   // pixels, even
  uint32_t height = 0;  // rows, even
  uint32_t stride = 0;    // bytes from one row to the next, >= width
  uint32_t scanline = 0;  // luma rows allocated, >= height
  std::vector<uint8_t> bytes;  // stride x scanline x 3/2

  uint32_t chromaOffset() const { return stride * scanline; }
};

}  // namespace tvrtool
