// fcvColorYCbCr420PseudoPlanarToRGB888u8: NV12 to packed RGB888 (R first), BT.601 video range,
// through libyuv (its "RAW" is R, G, B in memory).
//
// With an odd width or height the chroma plane holds width / 2 pairs and height / 2 rows (at
// least one of each), and the last luma column or row reuses the last pair or row. libyuv reads
// (width + 1) / 2 pairs and (height + 1) / 2 rows, one more than there are: it converts the even
// part, and the odd column and row are converted on their own, pointed at the pair and row they
// reuse.
#include <libyuv/convert_argb.h>

#include <cstddef>

#include "LibyuvArguments.h"
#include "StubState.h"
#include "fastcv.h"

namespace {

using fastcv_stub::detail::toInt;

struct Nv12 {
  const uint8_t* y;
  const uint8_t* c;
  uint32_t yStride, cStride;
  uint8_t* rgb;
  uint32_t rgbStride;

  // Pixels [x, x + width) of rows [row, row + rows), with chroma from pair `pair` of chroma row
  // `chromaRow` on.
  void convert(uint32_t x, uint32_t row, uint32_t width, uint32_t rows, uint32_t pair, uint32_t chromaRow) const {
    if (width == 0 || rows == 0) return;
    libyuv::NV12ToRAW(y + std::size_t{row} * yStride + x, toInt(yStride),
                      c + std::size_t{chromaRow} * cStride + 2 * std::size_t{pair}, toInt(cStride),
                      rgb + std::size_t{row} * rgbStride + 3 * std::size_t{x}, toInt(rgbStride), toInt(width),
                      toInt(rows));
  }
};

}  // namespace

extern "C" void fcvColorYCbCr420PseudoPlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                       uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                       uint8_t* dst, uint32_t dstStride) {
  fastcv_stub::detail::journalCall("fcvColorYCbCr420PseudoPlanarToRGB888u8", static_cast<const void*>(srcY),
                                   static_cast<const void*>(srcC), srcWidth, srcHeight, srcYStride, srcCStride,
                                   static_cast<const void*>(dst), dstStride);
  if (srcY == nullptr || srcC == nullptr || dst == nullptr ||
      !fastcv_stub::detail::fitLibyuv(uint64_t{srcWidth} * 3, srcHeight, srcYStride, srcCStride, dstStride)) {
    return;
  }
  const Nv12 frame{srcY, srcC, srcYStride, srcCStride, dst, dstStride};
  const uint32_t evenWidth = srcWidth & ~1u;
  const uint32_t evenHeight = srcHeight & ~1u;
  const uint32_t lastPair = srcWidth / 2 > 0 ? srcWidth / 2 - 1 : 0;
  const uint32_t lastChromaRow = srcHeight / 2 > 0 ? srcHeight / 2 - 1 : 0;
  frame.convert(0, 0, evenWidth, evenHeight, 0, 0);
  if (srcWidth % 2 != 0) frame.convert(evenWidth, 0, 1, evenHeight, lastPair, 0);
  if (srcHeight % 2 != 0) {
    frame.convert(0, evenHeight, evenWidth, 1, 0, lastChromaRow);
    if (srcWidth % 2 != 0) frame.convert(evenWidth, evenHeight, 1, 1, lastPair, lastChromaRow);
  }
}
