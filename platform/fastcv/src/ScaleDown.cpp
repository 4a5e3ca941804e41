// fcvScaleDownMNu8 and fcvScaleDownMNInterleaveu8: area averaging.
//
// Along an axis of N input and M output samples, input j covers [j*M, (j+1)*M) and output i covers
// [i*N, (i+1)*N) on a common scale; output i is the sum of its inputs weighted by their overlap,
// divided by N. Rows are summed first, then columns, and the result is rounded once, so that an
// integer ratio gives exactly the rounded mean of each box.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "StubState.h"
#include "fastcv.h"

namespace {

// The inputs an output sample covers: inputs first .. first + count - 1, with their weights.
struct Axis {
  std::vector<uint32_t> first;
  std::vector<uint32_t> count;
  std::vector<uint32_t> offset;  // into weights
  std::vector<uint32_t> weights;
};

// Fills `axis` (cleared first; its capacity is kept for the next frame).
void areaAxis(uint32_t in, uint32_t out, Axis& axis) {
  axis.first.clear();
  axis.count.clear();
  axis.offset.clear();
  axis.weights.clear();
  for (uint64_t i = 0; i < out; ++i) {
    const uint64_t begin = i * in;
    const uint64_t end = begin + in;
    const uint64_t first = begin / out;
    const uint64_t last = (end - 1) / out;
    axis.first.push_back(static_cast<uint32_t>(first));
    axis.count.push_back(static_cast<uint32_t>(last - first + 1));
    axis.offset.push_back(static_cast<uint32_t>(axis.weights.size()));
    for (uint64_t j = first; j <= last; ++j) {
      const uint64_t from = j * out > begin ? j * out : begin;
      const uint64_t to = (j + 1) * out < end ? (j + 1) * out : end;
      axis.weights.push_back(static_cast<uint32_t>(to - from));
    }
  }
}

// Weighted sums of one input row: sums[i * channels + c] for every output sample i and channel c.
void areaSumRow(const uint8_t* src, const Axis& axis, uint32_t channels, uint64_t* sums) {
  const std::size_t outputs = axis.first.size();
  for (std::size_t i = 0; i < outputs; ++i) {
    for (uint32_t c = 0; c < channels; ++c) {
      uint64_t sum = 0;
      for (uint32_t k = 0; k < axis.count[i]; ++k) {
        sum += uint64_t{axis.weights[axis.offset[i] + k]} * src[(axis.first[i] + k) * channels + c];
      }
      sums[i * channels + c] = sum;
    }
  }
}

void areaScalePlane(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                    uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t channels) {
  if (src == nullptr || dst == nullptr || srcWidth == 0 || srcHeight == 0 || dstWidth == 0 || dstHeight == 0) {
    return;
  }
  // Scratch per thread, as a real image library keeps it: a stream of frames allocates nothing.
  thread_local Axis columns;
  thread_local Axis rows;
  thread_local std::vector<uint64_t> rowSums;
  thread_local std::vector<uint64_t> total;
  areaAxis(srcWidth, dstWidth, columns);
  areaAxis(srcHeight, dstHeight, rows);
  const std::size_t samples = std::size_t{dstWidth} * channels;
  const uint64_t divisor = uint64_t{srcWidth} * srcHeight;
  rowSums.resize(samples);
  for (uint32_t y = 0; y < dstHeight; ++y) {
    total.assign(samples, 0);
    for (uint32_t k = 0; k < rows.count[y]; ++k) {
      const uint32_t srcRow = rows.first[y] + k;
      areaSumRow(src + std::size_t{srcRow} * srcStride, columns, channels, rowSums.data());
      const uint64_t weight = rows.weights[rows.offset[y] + k];
      for (std::size_t i = 0; i < samples; ++i) total[i] += weight * rowSums[i];
    }
    uint8_t* out = dst + std::size_t{y} * dstStride;
    for (std::size_t i = 0; i < samples; ++i) {
      out[i] = static_cast<uint8_t>((total[i] + divisor / 2) / divisor);
    }
  }
}

}  // namespace

extern "C" void fcvScaleDownMNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride) {
  fastcv_stub::detail::journalCall("fcvScaleDownMNu8", static_cast<const void*>(src), srcWidth, srcHeight, srcStride,
                                   static_cast<const void*>(dst), dstWidth, dstHeight, dstStride);
  areaScalePlane(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, 1);
}

extern "C" void fcvScaleDownMNInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                           uint32_t dstStride) {
  fastcv_stub::detail::journalCall("fcvScaleDownMNInterleaveu8", static_cast<const void*>(src), srcWidth, srcHeight,
                                   srcStride, static_cast<const void*>(dst), dstWidth, dstHeight, dstStride);
  areaScalePlane(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, 2);
}
