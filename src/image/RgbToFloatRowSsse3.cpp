// The RGB888 to float row kernel for x86-64 with SSSE3: one byte shuffle per four output samples
// both reorders the channels and widens the bytes to 32-bit lanes.
#include "image/RgbGroupsSsse3.h"
#include "image/RgbToFloatKernel.h"

namespace tivora::image {

TVR_SSSE3 void rgbRowToFloatSsse3(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale,
                                  bool reverse) {
  const ssse3::Masks m = ssse3::interleavedMasks(reverse);
  const __m128i vmean = _mm_set1_epi32(mean);
  const __m128 vscale = _mm_set1_ps(scale);
  uint32_t p = 0;
  for (; p + 16 <= pixels; p += 16, src += 48, dst += 48) {
    const ssse3::Groups g = ssse3::loadGroups(src);
    for (int group = 0; group < 4; ++group) {
      for (int k = 0; k < 3; ++k) {
        const __m128i lanes = _mm_sub_epi32(_mm_shuffle_epi8(g.group[group], m.part[k]), vmean);
        _mm_storeu_ps(dst + 12 * group + 4 * k, _mm_mul_ps(vscale, _mm_cvtepi32_ps(lanes)));
      }
    }
  }
  rgbRowToFloatC(src, dst, pixels - p, mean, scale, reverse);
}

}  // namespace tivora::image
