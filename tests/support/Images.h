// Image records over memory a test owns: a single plane guarded by canaries, and a whole NV12 frame
// as a host sends it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tvr_types.h"

namespace tivora::test {

// `w` x `h` samples (size.w counts bytes for interleaved chroma and RGB), rows `stride` bytes apart
// (0: w + 3, so that a write past a row lands on a canary), memory for `rows` rows (0: h; a rotate
// record needs room for the turned picture) and one more, all holding kCanary.
struct Plane {
  static constexpr uint8_t kCanary = 0xEE;
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

  Plane(uint32_t w, uint32_t h, uint32_t stride = 0, uint32_t rows = 0) {
    stride = stride != 0 ? stride : w + 3;
    memory.assign(static_cast<size_t>(stride) * (std::max(rows, h) + 1), kCanary);
    record.buf.p_base = memory.data();
    record.buf.buf_size = static_cast<uint32_t>(memory.size());
    record.format = TVR_FORMAT_NV12;
    record.size = {w, h};
    record.stride = stride;
  }
  tvr_image_buf_t* get() { return &record; }
  uint8_t* data() { return memory.data(); }
  uint32_t stride() const { return record.stride; }
  const uint8_t* row(uint32_t r) const { return memory.data() + static_cast<size_t>(record.stride) * r; }
  uint8_t& at(uint32_t x, uint32_t r) { return memory[static_cast<size_t>(record.stride) * r + x]; }
  bool untouched() const {
    return std::all_of(memory.begin(), memory.end(), [](uint8_t byte) { return byte == kCanary; });
  }
  // Whether every byte outside the picture (size.w bytes of each of size.h rows) holds kCanary.
  bool untouchedAround() const {
    for (size_t i = 0; i < memory.size(); ++i) {
      const bool inside = i / record.stride < record.size.h && i % record.stride < record.size.w;
      if (!inside && memory[i] != kCanary) return false;
    }
    return true;
  }
};

// An NV12 frame in one allocation (chroma at offset[1]), of one colour (video-range Y, Cb, Cr),
// cropped to the whole picture.
struct Nv12Frame {
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

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
      std::fill(memory.begin() + r * record.stride + from, memory.begin() + r * record.stride + to, y);
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
