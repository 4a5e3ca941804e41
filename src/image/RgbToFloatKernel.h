// The RGB888 to float row kernels: out = scale x (float)(in - mean), one row of whole pixels.
//
// rgbRowToFloatC is the reference: plain C++, one sample at a time. The per-architecture kernels
// (NEON on arm64, SSSE3 on x86-64) compute the very same float operations lane by lane, so every
// output is bit-identical to the reference; they convert blocks of 16 pixels and leave the rest of
// the row to the reference.
#pragma once

#include <cstdint>

namespace tivora::image {

// `pixels` whole pixels (3 samples each); `reverse` swaps the first and third sample of each pixel.
using RgbRowToFloatFn = void (*)(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale,
                                 bool reverse);

// in - mean with two's complement wrap-around, as the vector lanes compute it, so that no mean
// makes the arithmetic undefined.
inline int32_t centred(uint8_t in, int32_t mean) {
  return static_cast<int32_t>(static_cast<uint32_t>(in) - static_cast<uint32_t>(mean));
}

inline void rgbRowToFloatC(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale, bool reverse) {
  const int first = reverse ? 2 : 0;
  for (uint32_t p = 0; p < pixels; ++p, src += 3, dst += 3) {
    dst[0] = scale * static_cast<float>(centred(src[first], mean));
    dst[1] = scale * static_cast<float>(centred(src[1], mean));
    dst[2] = scale * static_cast<float>(centred(src[2 - first], mean));
  }
}

#if defined(__aarch64__)
void rgbRowToFloatNeon(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale, bool reverse);
#endif
#if defined(__x86_64__)
void rgbRowToFloatSsse3(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale, bool reverse);
#endif

// The fastest kernel this processor runs (chosen once).
RgbRowToFloatFn rgbRowToFloatKernel();

}  // namespace tivora::image
