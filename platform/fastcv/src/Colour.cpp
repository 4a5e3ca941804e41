// fcvColorYCbCr420PseudoPlanarToRGB888u8: NV12 to packed RGB888 (R first), BT.601 video range.
//
// With an odd width or height the chroma plane holds width / 2 pairs and height / 2 rows (at
// least one of each): the last luma column or row reuses the last chroma pair or row.
#include <cstddef>
#include <cstdint>

#include "StubState.h"
#include "fastcv.h"

namespace {

// BT.601 video range to full-range RGB, scaled by 2^16: 255/219 for Y and 255/224 times the
// chroma weights (1.402, 0.344136, 0.714136, 1.772) for C.
constexpr int32_t kY = 76309;
constexpr int32_t kCrToR = 104597;
constexpr int32_t kCbToG = 25675;
constexpr int32_t kCrToG = 53279;
constexpr int32_t kCbToB = 132201;

uint8_t toByte(int32_t scaled) {
  if (scaled <= 0) return 0;
  const int32_t value = (scaled + (1 << 15)) >> 16;
  return static_cast<uint8_t>(value > 255 ? 255 : value);
}

void nv12ToRgbRow(const uint8_t* y, const uint8_t* cbcr, uint32_t width, uint8_t* rgb) {
  const uint32_t lastPair = width / 2 > 0 ? width / 2 - 1 : 0;
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t pair = x / 2 < lastPair ? x / 2 : lastPair;
    const int32_t luma = kY * (int32_t{y[x]} - 16);
    const int32_t cb = int32_t{cbcr[2 * pair]} - 128;
    const int32_t cr = int32_t{cbcr[2 * pair + 1]} - 128;
    rgb[3 * x] = toByte(luma + kCrToR * cr);
    rgb[3 * x + 1] = toByte(luma - kCbToG * cb - kCrToG * cr);
    rgb[3 * x + 2] = toByte(luma + kCbToB * cb);
  }
}

}  // namespace

extern "C" void fcvColorYCbCr420PseudoPlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                       uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                       uint8_t* dst, uint32_t dstStride) {
  fastcv_stub::detail::journalCall("fcvColorYCbCr420PseudoPlanarToRGB888u8", static_cast<const void*>(srcY),
                                   static_cast<const void*>(srcC), srcWidth, srcHeight, srcYStride, srcCStride,
                                   static_cast<const void*>(dst), dstStride);
  if (srcY == nullptr || srcC == nullptr || dst == nullptr) return;
  const uint32_t lastChromaRow = srcHeight / 2 > 0 ? srcHeight / 2 - 1 : 0;
  for (uint32_t row = 0; row < srcHeight; ++row) {
    const uint32_t chromaRow = row / 2 < lastChromaRow ? row / 2 : lastChromaRow;
    nv12ToRgbRow(srcY + std::size_t{row} * srcYStride, srcC + std::size_t{chromaRow} * srcCStride, srcWidth,
                 dst + std::size_t{row} * dstStride);
  }
}
