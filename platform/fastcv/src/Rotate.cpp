// fcvRotateImageu8 and fcvRotateImageInterleavedu8: clockwise quarter turns of one- or two-byte
// samples (an interleaved CbCr pair moves as one sample).
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "StubState.h"
#include "fastcv.h"

namespace {

// Input row y of a srcWidth x srcHeight image, written where the turn puts it: each sample x goes
// to output (column, row) = turned(x, y). `size` is the bytes per sample.
void rotateRow(const uint8_t* src, uint32_t y, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst, uint32_t dstStride,
               fcvRotateDegree degree, std::size_t size) {
  for (uint32_t x = 0; x < srcWidth; ++x) {
    std::size_t column = 0;
    std::size_t row = 0;
    switch (degree) {
      case FASTCV_ROTATE_90:
        column = srcHeight - 1 - y;
        row = x;
        break;
      case FASTCV_ROTATE_180:
        column = srcWidth - 1 - x;
        row = srcHeight - 1 - y;
        break;
      case FASTCV_ROTATE_270:
        column = y;
        row = srcWidth - 1 - x;
        break;
    }
    std::memcpy(dst + row * dstStride + column * size, src + x * size, size);
  }
}

fcvStatus rotatePlane(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride, fcvRotateDegree degree, std::size_t size) {
  if (src == nullptr || dst == nullptr) return FASTCV_EBADPARAM;
  if (degree != FASTCV_ROTATE_90 && degree != FASTCV_ROTATE_180 && degree != FASTCV_ROTATE_270) {
    return FASTCV_EBADPARAM;
  }
  for (uint32_t y = 0; y < srcHeight; ++y) {
    rotateRow(src + std::size_t{y} * srcStride, y, srcWidth, srcHeight, dst, dstStride, degree, size);
  }
  return FASTCV_SUCCESS;
}

}  // namespace

extern "C" fcvStatus fcvRotateImageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride, fcvRotateDegree degree) {
  fastcv_stub::detail::journalCall("fcvRotateImageu8", static_cast<const void*>(src), srcWidth, srcHeight, srcStride,
                                   static_cast<const void*>(dst), dstStride, degree);
  return rotatePlane(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree, 1);
}

extern "C" fcvStatus fcvRotateImageInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                                 fcvRotateDegree degree) {
  fastcv_stub::detail::journalCall("fcvRotateImageInterleavedu8", static_cast<const void*>(src), srcWidth, srcHeight,
                                   srcStride, static_cast<const void*>(dst), dstStride, degree);
  return rotatePlane(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree, 2);
}
