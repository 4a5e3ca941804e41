// NV12 frames for the sample processing's tests: a record over memory the test owns.
#pragma once

#include <cstdint>
#include <vector>

#include "tvr_types.h"

namespace tivora::test {

struct Nv12Frame {
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

  // A frame of one colour (video-range Y, Cb, Cr), stride and height as given, crop = whole frame.
  Nv12Frame(uint32_t w, uint32_t h, uint32_t stride, uint8_t y, uint8_t cb, uint8_t cr)
      : memory(static_cast<size_t>(stride) * h * 3 / 2) {
    record.buf.p_base = memory.data();
    record.buf.buf_size = static_cast<uint32_t>(memory.size());
    record.format = TVR_FORMAT_NV12;
    record.size = {w, h};
    record.offset[1] = stride * h;
    record.stride = stride;
    record.scanline = h;
    record.crop = {{0, 0}, {w, h}};
    paint(0, w, y, cb, cr);
  }

  // Paints columns [from, to) in one colour (even bounds keep the chroma pairs whole).
  void paint(uint32_t from, uint32_t to, uint8_t y, uint8_t cb, uint8_t cr) {
    for (uint32_t r = 0; r < record.size.h; ++r) {
      for (uint32_t x = from; x < to; ++x) memory[r * record.stride + x] = y;
    }
    for (uint32_t r = 0; r < record.size.h / 2; ++r) {
      uint8_t* row = memory.data() + record.offset[1] + r * record.stride;
      for (uint32_t x = from; x + 1 < to; x += 2) {
        row[x] = cb;
        row[x + 1] = cr;
      }
    }
  }
};

}  // namespace tivora::test
