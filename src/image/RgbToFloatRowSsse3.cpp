// The RGB888 to float row kernel for x86-64 with SSSE3: one byte shuffle per four output samples
// both reorders the channels and widens the bytes to 32-bit lanes.
#include <tmmintrin.h>

#include "image/RgbToFloatKernel.h"

#define TVR_SSSE3 __attribute__((target("ssse3")))

namespace tivora::image {

namespace {

// A group is 4 pixels = 12 bytes: R0 G0 B0 R1 | G1 B1 R2 G2 | B2 R3 G3 B3. Each mask picks four
// bytes of a group into the low byte of four 32-bit lanes (-1 clears the other bytes).
#define TVR_LANES(a, b, c, d) _mm_setr_epi8(a, -1, -1, -1, b, -1, -1, -1, c, -1, -1, -1, d, -1, -1, -1)

struct Masks {
  __m128i part[3];
};

TVR_SSSE3 inline Masks masks(bool reverse) {
  if (reverse) return Masks{{TVR_LANES(2, 1, 0, 5), TVR_LANES(4, 3, 8, 7), TVR_LANES(6, 11, 10, 9)}};
  return Masks{{TVR_LANES(0, 1, 2, 3), TVR_LANES(4, 5, 6, 7), TVR_LANES(8, 9, 10, 11)}};
}

// The group in the low 12 bytes of `group` to 12 floats at dst.
TVR_SSSE3 inline void convertGroup(__m128i group, const Masks& m, __m128i mean, __m128 scale, float* dst) {
  for (int k = 0; k < 3; ++k) {
    const __m128i lanes = _mm_sub_epi32(_mm_shuffle_epi8(group, m.part[k]), mean);
    _mm_storeu_ps(dst + 4 * k, _mm_mul_ps(scale, _mm_cvtepi32_ps(lanes)));
  }
}

}  // namespace

TVR_SSSE3 void rgbRowToFloatSsse3(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale,
                                  bool reverse) {
  const Masks m = masks(reverse);
  const __m128i vmean = _mm_set1_epi32(mean);
  const __m128 vscale = _mm_set1_ps(scale);
  uint32_t p = 0;
  // 16 pixels = 48 bytes = three loads; the four groups start at bytes 0, 12, 24 and 36.
  for (; p + 16 <= pixels; p += 16, src += 48, dst += 48) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 16));
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 32));
    convertGroup(a, m, vmean, vscale, dst);
    convertGroup(_mm_alignr_epi8(b, a, 12), m, vmean, vscale, dst + 12);
    convertGroup(_mm_alignr_epi8(c, b, 8), m, vmean, vscale, dst + 24);
    convertGroup(_mm_srli_si128(c, 4), m, vmean, vscale, dst + 36);
  }
  rgbRowToFloatC(src, dst, pixels - p, mean, scale, reverse);
}

}  // namespace tivora::image
