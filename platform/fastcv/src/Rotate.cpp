// fcvRotateImageu8 and fcvRotateImageInterleavedu8: clockwise turns through libyuv (an interleaved
// CbCr pair moves as one sample; widths count pairs).
#include <libyuv/planar_functions.h>
#include <libyuv/rotate.h>

#include <cstddef>

#include "LibyuvArguments.h"
#include "StubState.h"
#include "fastcv.h"

namespace {

using fastcv_stub::detail::toInt;

bool turnable(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, const uint8_t* dst,
              uint32_t dstStride, fcvRotateDegree degree) {
  return src != nullptr && dst != nullptr &&
         (degree == FASTCV_ROTATE_90 || degree == FASTCV_ROTATE_180 || degree == FASTCV_ROTATE_270) &&
         fastcv_stub::detail::fitLibyuv(uint64_t{srcWidth} * 2, srcHeight, srcStride, dstStride);
}

libyuv::RotationMode quarterTurns(fcvRotateDegree degree) {
  return degree == FASTCV_ROTATE_90 ? libyuv::kRotate90 : libyuv::kRotate270;
}

}  // namespace

// libyuv's half turn allocates a row per call; mirroring the rows read bottom-up (a negative
// height) is the same turn without it.
extern "C" fcvStatus fcvRotateImageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride, fcvRotateDegree degree) {
  fastcv_stub::detail::journalCall("fcvRotateImageu8", static_cast<const void*>(src), srcWidth, srcHeight, srcStride,
                                   static_cast<const void*>(dst), dstStride, degree);
  if (!turnable(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree)) return FASTCV_EBADPARAM;
  if (srcWidth == 0 || srcHeight == 0) return FASTCV_SUCCESS;
  if (degree == FASTCV_ROTATE_180) {
    libyuv::MirrorPlane(src, toInt(srcStride), dst, toInt(dstStride), toInt(srcWidth), -toInt(srcHeight));
  } else {
    libyuv::RotatePlane(src, toInt(srcStride), dst, toInt(dstStride), toInt(srcWidth), toInt(srcHeight),
                        quarterTurns(degree));
  }
  return FASTCV_SUCCESS;
}

// libyuv turns interleaved CbCr a quarter only into separate planes: turned into this thread's
// scratch, then merged again.
extern "C" fcvStatus fcvRotateImageInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                                 fcvRotateDegree degree) {
  fastcv_stub::detail::journalCall("fcvRotateImageInterleavedu8", static_cast<const void*>(src), srcWidth, srcHeight,
                                   srcStride, static_cast<const void*>(dst), dstStride, degree);
  if (!turnable(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree)) return FASTCV_EBADPARAM;
  if (srcWidth == 0 || srcHeight == 0) return FASTCV_SUCCESS;
  if (degree == FASTCV_ROTATE_180) {
    libyuv::MirrorUVPlane(src, toInt(srcStride), dst, toInt(dstStride), toInt(srcWidth), -toInt(srcHeight));
    return FASTCV_SUCCESS;
  }
  const std::size_t samples = std::size_t{srcWidth} * srcHeight;
  uint8_t* cb = fastcv_stub::detail::scratch(2 * samples);
  uint8_t* cr = cb + samples;
  // Turned a quarter, each plane is srcHeight wide and srcWidth tall.
  libyuv::SplitRotateUV(src, toInt(srcStride), cb, toInt(srcHeight), cr, toInt(srcHeight), toInt(srcWidth),
                        toInt(srcHeight), quarterTurns(degree));
  libyuv::MergeUVPlane(cb, toInt(srcHeight), cr, toInt(srcHeight), dst, toInt(dstStride), toInt(srcHeight),
                       toInt(srcWidth));
  return FASTCV_SUCCESS;
}
