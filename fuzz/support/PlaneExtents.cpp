#include "PlaneExtents.h"

#include <cstring>

namespace tivora::fuzz {

uint64_t extent(uint64_t rows, uint64_t rowBytes, uint64_t stride) {
  return rows == 0 || rowBytes == 0 ? 0 : (rows - 1) * stride + rowBytes;
}

uint64_t chromaRowBytes(uint32_t width) { return width == 1 ? 2 : width; }

Plane::Plane(uint32_t width, uint32_t height, uint32_t stride, uint64_t size) : bytes(static_cast<size_t>(size)) {
  // Float storage keeps float destinations aligned; a byte count that is no multiple of 4 still
  // ends where the record ends, because ASan tracks allocations to the byte.
  memory.reset(static_cast<float*>(::operator new[](bytes == 0 ? 1 : bytes)));
  auto* start = reinterpret_cast<uint8_t*>(memory.get());
  for (size_t i = 0; i < bytes; ++i) start[i] = static_cast<uint8_t>(i * 131u + 7u);
  record.buf.p_base = start;
  record.buf.buf_size = static_cast<uint32_t>(bytes);
  record.format = TVR_FORMAT_NV12;
  record.size = {width, height};
  record.stride = stride;
  record.scanline = height;
  record.crop = {{0, 0}, {width, height}};
}

}  // namespace tivora::fuzz
