// Memory for image records that is exactly as large as the record claims, so that AddressSanitizer
// reports the first byte any operation touches beyond it.
//
// The library trusts a record's sizes (a host frame comes with its own). The image harness keeps
// that contract and fuzzes everything else; these are the rules by which a record's claim is read:
// - a plane of `rows` rows of `rowBytes` bytes, `stride` bytes apart, spans
//   (rows - 1) x stride + rowBytes bytes (nothing when either is 0);
// - an interleaved CbCr row holds whole pairs: the image library reads at least one pair;
// - a rotate record keeps the unturned size, and a quarter turn writes the turned picture into it:
//   its memory holds both shapes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "tvr_types.h"

namespace tivora::fuzz {

uint64_t extent(uint64_t rows, uint64_t rowBytes, uint64_t stride);

// Bytes of an interleaved CbCr row of `width` bytes as the image library reads it.
uint64_t chromaRowBytes(uint32_t width);

// A record over memory of exactly `bytes` bytes (aligned for floats), filled with a pattern.
struct Plane {
  std::unique_ptr<float[]> memory;
  size_t bytes = 0;
  tvr_image_buf_t record{};

  Plane(uint32_t width, uint32_t height, uint32_t stride, uint64_t bytes);
  uint8_t* base() const { return record.buf.p_base; }
};

}  // namespace tivora::fuzz
