// fcvScaleDownMN* and fcvScaleUpPoly*: libyuv's box filter (area averaging) down, its bilinear
// filter, the best it has, up. Widths of the interleaved variants count CbCr pairs.
//
// Interleaved CbCr is split into planes, scaled as luma is and merged again: libyuv's own
// interleaved scaler stops on an assertion for some box ratios (4:1 across with another ratio
// down), and its bilinear filter moves a flat 240 to 238 where the plane filter keeps it.
#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <cstddef>

#include "LibyuvArguments.h"
#include "StubState.h"
#include "fastcv.h"

namespace {

using fastcv_stub::detail::toInt;

struct Scaling {
  const uint8_t* src;
  uint32_t srcWidth, srcHeight, srcStride;
  uint8_t* dst;
  uint32_t dstWidth, dstHeight, dstStride;

  void plane(libyuv::FilterMode filter) const {
    libyuv::ScalePlane(src, toInt(srcStride), toInt(srcWidth), toInt(srcHeight), dst, toInt(dstStride), toInt(dstWidth),
                       toInt(dstHeight), filter);
  }

  void interleaved(libyuv::FilterMode filter) const {
    const std::size_t in = std::size_t{srcWidth} * srcHeight;
    const std::size_t out = std::size_t{dstWidth} * dstHeight;
    uint8_t* cb = fastcv_stub::detail::scratch(2 * (in + out));
    uint8_t* cr = cb + in;
    uint8_t* scaledCb = cr + in;
    uint8_t* scaledCr = scaledCb + out;
    libyuv::SplitUVPlane(src, toInt(srcStride), cb, toInt(srcWidth), cr, toInt(srcWidth), toInt(srcWidth),
                         toInt(srcHeight));
    Scaling{cb, srcWidth, srcHeight, srcWidth, scaledCb, dstWidth, dstHeight, dstWidth}.plane(filter);
    Scaling{cr, srcWidth, srcHeight, srcWidth, scaledCr, dstWidth, dstHeight, dstWidth}.plane(filter);
    libyuv::MergeUVPlane(scaledCb, toInt(dstWidth), scaledCr, toInt(dstWidth), dst, toInt(dstStride), toInt(dstWidth),
                         toInt(dstHeight));
  }
};

// Journals the call; null planes, empty sizes and sizes libyuv cannot take write nothing.
void scale(const char* name, const Scaling& s, bool interleaved, libyuv::FilterMode filter) {
  fastcv_stub::detail::journalCall(name, static_cast<const void*>(s.src), s.srcWidth, s.srcHeight, s.srcStride,
                                   static_cast<const void*>(s.dst), s.dstWidth, s.dstHeight, s.dstStride);
  if (s.src == nullptr || s.dst == nullptr || s.srcWidth == 0 || s.srcHeight == 0 || s.dstWidth == 0 ||
      s.dstHeight == 0 ||
      !fastcv_stub::detail::fitLibyuv(uint64_t{s.srcWidth} * 2, s.srcHeight, s.srcStride, uint64_t{s.dstWidth} * 2,
                                      s.dstHeight, s.dstStride)) {
    return;
  }
  if (interleaved) {
    s.interleaved(filter);
  } else {
    s.plane(filter);
  }
}

}  // namespace

// The four entry points share their eight parameters and differ in layout and filter only.
#define TVR_SCALE_ENTRY(name, interleaved, filter)                                                                  \
  extern "C" void name(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst, \
                       uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride) {                                 \
    scale(#name, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, interleaved, filter);  \
  }

TVR_SCALE_ENTRY(fcvScaleDownMNu8, false, libyuv::kFilterBox)
TVR_SCALE_ENTRY(fcvScaleDownMNInterleaveu8, true, libyuv::kFilterBox)
TVR_SCALE_ENTRY(fcvScaleUpPolyu8, false, libyuv::kFilterBilinear)
TVR_SCALE_ENTRY(fcvScaleUpPolyInterleaveu8, true, libyuv::kFilterBilinear)
