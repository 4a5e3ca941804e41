// The RGB888 to normalised float row kernels: out = (float(in) - mean) x scale per tensor channel,
// one row of whole pixels, into an interleaved row or three planar rows.
//
// normaliseRow*C are the references: plain C++, one sample at a time. The per-architecture kernels
// (NEON on arm64, SSSE3 on x86-64) compute the very same float operations lane by lane, a
// subtraction and then a multiplication, each rounded once: nothing is multiplied and then added,
// so no compiler can fuse a multiply-add into one kernel and not the other. They convert blocks of
// 16 pixels and leave the rest of the row to the reference.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tivora::image {

// Indexed by tensor channel. `reverse`: tensor channel 0 is the third sample of a pixel (BGR).
struct RowNormalisation {
  float mean[3];
  float scale[3];
  bool reverse;
};

using NormaliseInterleavedFn = void (*)(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n);
// planes[k]: the row of tensor channel k.
using NormalisePlanarFn = void (*)(const uint8_t* src, float* const planes[3], uint32_t pixels,
                                   const RowNormalisation& n);

inline float normalised(uint8_t in, float mean, float scale) { return (static_cast<float>(in) - mean) * scale; }

// The sample of a pixel that tensor channel k holds (and, the swap being its own inverse, the
// tensor channel that sample k goes to).
inline int sampleOf(int k, bool reverse) { return reverse ? 2 - k : k; }

inline void normaliseInterleavedC(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n) {
  for (uint32_t p = 0; p < pixels; ++p, src += 3, dst += 3) {
    for (int k = 0; k < 3; ++k) dst[k] = normalised(src[sampleOf(k, n.reverse)], n.mean[k], n.scale[k]);
  }
}

// Pixels [first, pixels) of a planar row: the reference does a whole row, the vector kernels the
// end of one.
inline void normalisePlanarFrom(uint32_t first, const uint8_t* src, float* const planes[3], uint32_t pixels,
                                const RowNormalisation& n) {
  for (uint32_t p = first; p < pixels; ++p) {
    const uint8_t* pixel = src + 3 * std::size_t{p};
    for (int k = 0; k < 3; ++k) planes[k][p] = normalised(pixel[sampleOf(k, n.reverse)], n.mean[k], n.scale[k]);
  }
}

inline void normalisePlanarC(const uint8_t* src, float* const planes[3], uint32_t pixels, const RowNormalisation& n) {
  normalisePlanarFrom(0, src, planes, pixels, n);
}

#if defined(__aarch64__)
void normaliseInterleavedNeon(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n);
void normalisePlanarNeon(const uint8_t* src, float* const planes[3], uint32_t pixels, const RowNormalisation& n);
#endif
#if defined(__x86_64__)
void normaliseInterleavedSsse3(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n);
void normalisePlanarSsse3(const uint8_t* src, float* const planes[3], uint32_t pixels, const RowNormalisation& n);
#endif

struct NormaliseKernels {
  NormaliseInterleavedFn interleaved;
  NormalisePlanarFn planar;
};

// The fastest kernels this processor runs (chosen once).
const NormaliseKernels& normaliseKernels();

}  // namespace tivora::image
