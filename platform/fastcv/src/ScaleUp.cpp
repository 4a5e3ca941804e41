// fcvScaleUpPolyu8 and fcvScaleUpPolyInterleaveu8: Catmull-Rom cubic interpolation.
//
// Pixel centres are aligned (output i samples the input at (i + 0.5) * N / M - 0.5), the position is
// held inside the input so that edges are repeated rather than extrapolated, rows are filtered
// first, then columns, and the result is rounded and clamped to 0..255 once. Weights are fixed
// point and sum to exactly one, so that equal inputs give exactly equal outputs.
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "StubState.h"
#include "fastcv.h"

namespace {

constexpr int kTaps = 4;
constexpr int kWeightBits = 14;
constexpr int32_t kOne = 1 << kWeightBits;

struct Axis {
  std::vector<std::array<uint32_t, kTaps>> index;
  std::vector<std::array<int32_t, kTaps>> weight;
};

// Fills `axis` (cleared first; its capacity is kept for the next frame).
void cubicAxis(uint32_t in, uint32_t out, Axis& axis) {
  axis.index.clear();
  axis.weight.clear();
  const double scale = static_cast<double>(in) / out;
  const double last = in - 1.0;
  for (uint32_t i = 0; i < out; ++i) {
    double position = (i + 0.5) * scale - 0.5;
    position = position < 0 ? 0 : (position > last ? last : position);
    const double base = std::floor(position);
    const double t = position - base;
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double exact[kTaps] = {(-t + 2 * t2 - t3) / 2, (2 - 5 * t2 + 3 * t3) / 2, (t + 4 * t2 - 3 * t3) / 2,
                                 (t3 - t2) / 2};
    std::array<int32_t, kTaps> weight{};
    int32_t sum = 0;
    for (std::size_t k = 0; k < kTaps; ++k) {
      weight[k] = static_cast<int32_t>(std::lround(exact[k] * kOne));
      sum += weight[k];
    }
    weight[t < 0.5 ? 1 : 2] += kOne - sum;  // the largest weight absorbs the rounding
    axis.weight.push_back(weight);
    std::array<uint32_t, kTaps> index{};
    for (int k = 0; k < kTaps; ++k) {
      const double at = base - 1 + k;
      index[static_cast<std::size_t>(k)] = static_cast<uint32_t>(at < 0 ? 0 : (at > last ? last : at));
    }
    axis.index.push_back(index);
  }
}

// One input row filtered to the output width, scaled by kOne: out[i * channels + c].
void cubicRow(const uint8_t* src, const Axis& axis, uint32_t channels, int32_t* out) {
  const std::size_t outputs = axis.index.size();
  for (std::size_t i = 0; i < outputs; ++i) {
    for (uint32_t c = 0; c < channels; ++c) {
      int32_t sum = 0;
      for (std::size_t k = 0; k < kTaps; ++k) {
        sum += axis.weight[i][k] * src[axis.index[i][k] * channels + c];
      }
      out[i * channels + c] = sum;
    }
  }
}

// A value scaled by kOne * kOne, rounded to nearest and clamped.
uint8_t toByte(int64_t scaled) {
  constexpr int shift = 2 * kWeightBits;
  if (scaled <= 0) return 0;
  const int64_t value = (scaled + (int64_t{1} << (shift - 1))) >> shift;
  return static_cast<uint8_t>(value > 255 ? 255 : value);
}

void cubicScalePlane(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t channels) {
  if (src == nullptr || dst == nullptr || srcWidth == 0 || srcHeight == 0 || dstWidth == 0 || dstHeight == 0) {
    return;
  }
  // Scratch per thread, as a real image library keeps it: a stream of frames allocates nothing.
  thread_local Axis columns;
  thread_local Axis rows;
  thread_local std::vector<int32_t> filtered;
  cubicAxis(srcWidth, dstWidth, columns);
  cubicAxis(srcHeight, dstHeight, rows);
  const std::size_t samples = std::size_t{dstWidth} * channels;
  filtered.resize(samples * kTaps);
  for (uint32_t y = 0; y < dstHeight; ++y) {
    for (std::size_t k = 0; k < kTaps; ++k) {
      cubicRow(src + std::size_t{rows.index[y][k]} * srcStride, columns, channels, filtered.data() + k * samples);
    }
    uint8_t* out = dst + std::size_t{y} * dstStride;
    for (std::size_t i = 0; i < samples; ++i) {
      int64_t sum = 0;
      for (std::size_t k = 0; k < kTaps; ++k) {
        sum += int64_t{rows.weight[y][k]} * filtered[k * samples + i];
      }
      out[i] = toByte(sum);
    }
  }
}

}  // namespace

extern "C" void fcvScaleUpPolyu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride) {
  fastcv_stub::detail::journalCall("fcvScaleUpPolyu8", static_cast<const void*>(src), srcWidth, srcHeight, srcStride,
                                   static_cast<const void*>(dst), dstWidth, dstHeight, dstStride);
  cubicScalePlane(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, 1);
}

extern "C" void fcvScaleUpPolyInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                           uint32_t dstStride) {
  fastcv_stub::detail::journalCall("fcvScaleUpPolyInterleaveu8", static_cast<const void*>(src), srcWidth, srcHeight,
                                   srcStride, static_cast<const void*>(dst), dstWidth, dstHeight, dstStride);
  cubicScalePlane(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, 2);
}
