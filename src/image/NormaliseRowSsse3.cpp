// The normalising row kernels for x86-64 with SSSE3: the shuffles of RgbGroupsSsse3.h pick and
// widen four samples at a time, then convert, subtract and multiply four float lanes.
#include "image/NormaliseKernel.h"
#include "image/RgbGroupsSsse3.h"

namespace tivora::image {

namespace {

TVR_SSSE3 inline __m128 normalise(__m128i group, __m128i mask, __m128 mean, __m128 scale) {
  return _mm_mul_ps(_mm_sub_ps(_mm_cvtepi32_ps(_mm_shuffle_epi8(group, mask)), mean), scale);
}

}  // namespace

// Interleaved, the tensor channels of a group's 12 outputs run 0 1 2 0 | 1 2 0 1 | 2 0 1 2: part k
// of each group starts at channel k.
TVR_SSSE3 void normaliseInterleavedSsse3(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n) {
  const ssse3::Masks m = ssse3::interleavedMasks(n.reverse);
  __m128 mean[3], scale[3];
  for (int k = 0; k < 3; ++k) {
    mean[k] = _mm_setr_ps(n.mean[k], n.mean[(k + 1) % 3], n.mean[(k + 2) % 3], n.mean[k]);
    scale[k] = _mm_setr_ps(n.scale[k], n.scale[(k + 1) % 3], n.scale[(k + 2) % 3], n.scale[k]);
  }
  uint32_t p = 0;
  for (; p + 16 <= pixels; p += 16, src += 48, dst += 48) {
    const ssse3::Groups g = ssse3::loadGroups(src);
    for (int group = 0; group < 4; ++group) {
      for (int k = 0; k < 3; ++k) {
        _mm_storeu_ps(dst + 12 * group + 4 * k, normalise(g.group[group], m.part[k], mean[k], scale[k]));
      }
    }
  }
  normaliseInterleavedC(src, dst, pixels - p, n);
}

TVR_SSSE3 void normalisePlanarSsse3(const uint8_t* src, float* const planes[3], uint32_t pixels,
                                    const RowNormalisation& n) {
  const ssse3::Masks m = ssse3::planarMasks();
  float* out[3];
  __m128 mean[3], scale[3];
  for (int k = 0; k < 3; ++k) {  // by sample of the pixel
    const int channel = sampleOf(k, n.reverse);
    out[k] = planes[channel];
    mean[k] = _mm_set1_ps(n.mean[channel]);
    scale[k] = _mm_set1_ps(n.scale[channel]);
  }
  uint32_t p = 0;
  for (; p + 16 <= pixels; p += 16, src += 48) {
    const ssse3::Groups g = ssse3::loadGroups(src);
    for (int group = 0; group < 4; ++group) {
      for (int k = 0; k < 3; ++k) {
        _mm_storeu_ps(out[k] + p + 4 * group, normalise(g.group[group], m.part[k], mean[k], scale[k]));
      }
    }
  }
  normalisePlanarFrom(p, src - 3 * p, planes, pixels, n);
}

}  // namespace tivora::image
