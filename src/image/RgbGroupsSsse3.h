// RGB888 pixels in groups of four for the SSSE3 kernels: one byte shuffle per four output samples
// both picks the samples and widens the bytes to 32-bit lanes.
#pragma once

#include <tmmintrin.h>

#include <cstdint>

#define TVR_SSSE3 __attribute__((target("ssse3")))

namespace tivora::image::ssse3 {

// A group is 4 pixels = 12 bytes: R0 G0 B0 R1 | G1 B1 R2 G2 | B2 R3 G3 B3. Each mask picks four
// bytes of a group into the low byte of four 32-bit lanes (-1 clears the other bytes).
#define TVR_LANES(a, b, c, d) _mm_setr_epi8(a, -1, -1, -1, b, -1, -1, -1, c, -1, -1, -1, d, -1, -1, -1)

struct Masks {
  __m128i part[3];
};

// The group's 12 samples in order, four a part; `reverse` swaps the first and third of each pixel.
TVR_SSSE3 inline Masks interleavedMasks(bool reverse) {
  if (reverse) return Masks{{TVR_LANES(2, 1, 0, 5), TVR_LANES(4, 3, 8, 7), TVR_LANES(6, 11, 10, 9)}};
  return Masks{{TVR_LANES(0, 1, 2, 3), TVR_LANES(4, 5, 6, 7), TVR_LANES(8, 9, 10, 11)}};
}

// Part k: sample k of each of the group's four pixels.
TVR_SSSE3 inline Masks planarMasks() {
  return Masks{{TVR_LANES(0, 3, 6, 9), TVR_LANES(1, 4, 7, 10), TVR_LANES(2, 5, 8, 11)}};
}

#undef TVR_LANES

// 16 pixels = 48 bytes = three loads, as four groups in the low 12 bytes of each vector.
struct Groups {
  __m128i group[4];
};

TVR_SSSE3 inline Groups loadGroups(const uint8_t* src) {
  const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
  const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 16));
  const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 32));
  return Groups{{a, _mm_alignr_epi8(b, a, 12), _mm_alignr_epi8(c, b, 8), _mm_srli_si128(c, 4)}};
}

}  // namespace tivora::image::ssse3
