// The RGB888 to float kernel: one row of pixels, out = scale x (float)(in - mean).
#pragma once

#include <cstdint>

namespace tivora::image {

// Converts `pixels` whole pixels (3 samples each) of one row. `reverse` swaps the first and third
// sample of each pixel. The keep-order case is one flat loop over the samples, which the compiler
// vectorises; every output is bit-identical to the scalar formula.
inline void rgbRowToFloat(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale, bool reverse) {
  const uint32_t samples = pixels * 3u;
  if (!reverse) {
    for (uint32_t i = 0; i < samples; ++i) dst[i] = scale * static_cast<float>(static_cast<int32_t>(src[i]) - mean);
    return;
  }
  for (uint32_t i = 0; i < samples; i += 3) {
    dst[i] = scale * static_cast<float>(static_cast<int32_t>(src[i + 2]) - mean);
    dst[i + 1] = scale * static_cast<float>(static_cast<int32_t>(src[i + 1]) - mean);
    dst[i + 2] = scale * static_cast<float>(static_cast<int32_t>(src[i]) - mean);
  }
}

}  // namespace tivora::image
