// The normalising row kernels for arm64: NEON de-interleaves 16 pixels into their three samples on
// load, converts, subtracts and multiplies four float lanes at a time, and interleaves again on
// store (or stores each sample's lanes to its plane).
#include <arm_neon.h>

#include "image/NormaliseKernel.h"

namespace tivora::image {

namespace {

// Sixteen samples of one channel, normalised, as four vectors of four floats.
struct Channel {
  float32x4_t lane[4];
};

inline float32x4_t normalise(uint16x4_t in, float32x4_t mean, float32x4_t scale) {
  return vmulq_f32(vsubq_f32(vcvtq_f32_u32(vmovl_u16(in)), mean), scale);
}

inline Channel normalise(uint8x16_t in, float mean, float scale) {
  const float32x4_t vmean = vdupq_n_f32(mean);
  const float32x4_t vscale = vdupq_n_f32(scale);
  const uint16x8_t low = vmovl_u8(vget_low_u8(in));
  const uint16x8_t high = vmovl_u8(vget_high_u8(in));
  return Channel{{normalise(vget_low_u16(low), vmean, vscale), normalise(vget_high_u16(low), vmean, vscale),
                  normalise(vget_low_u16(high), vmean, vscale), normalise(vget_high_u16(high), vmean, vscale)}};
}

// Named stores, not a loop over an array of channels: a run-time index would send the vectors
// through the stack.
inline void store(float* dst, const Channel& c) {
  vst1q_f32(dst, c.lane[0]);
  vst1q_f32(dst + 4, c.lane[1]);
  vst1q_f32(dst + 8, c.lane[2]);
  vst1q_f32(dst + 12, c.lane[3]);
}

// The order is a template argument so that the loop picks its lanes by constant index (a run-time
// index would send the de-interleaved vectors through the stack).
template <bool kReverse>
uint32_t interleavedBlocks(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n) {
  uint32_t p = 0;
  for (; p + 16 <= pixels; p += 16, src += 48, dst += 48) {
    const uint8x16x3_t rgb = vld3q_u8(src);
    const Channel c0 = normalise(rgb.val[kReverse ? 2 : 0], n.mean[0], n.scale[0]);
    const Channel c1 = normalise(rgb.val[1], n.mean[1], n.scale[1]);
    const Channel c2 = normalise(rgb.val[kReverse ? 0 : 2], n.mean[2], n.scale[2]);
    for (int i = 0; i < 4; ++i) vst3q_f32(dst + 12 * i, (float32x4x3_t{{c0.lane[i], c1.lane[i], c2.lane[i]}}));
  }
  return p;
}

}  // namespace

void normaliseInterleavedNeon(const uint8_t* src, float* dst, uint32_t pixels, const RowNormalisation& n) {
  const uint32_t done =
      n.reverse ? interleavedBlocks<true>(src, dst, pixels, n) : interleavedBlocks<false>(src, dst, pixels, n);
  normaliseInterleavedC(src + 3 * done, dst + 3 * done, pixels - done, n);
}

void normalisePlanarNeon(const uint8_t* src, float* const planes[3], uint32_t pixels, const RowNormalisation& n) {
  float* out[3];
  float mean[3], scale[3];
  for (int k = 0; k < 3; ++k) {  // by sample of the pixel
    const int channel = sampleOf(k, n.reverse);
    out[k] = planes[channel];
    mean[k] = n.mean[channel];
    scale[k] = n.scale[channel];
  }
  uint32_t p = 0;
  for (; p + 16 <= pixels; p += 16, src += 48) {
    const uint8x16x3_t rgb = vld3q_u8(src);
    store(out[0] + p, normalise(rgb.val[0], mean[0], scale[0]));
    store(out[1] + p, normalise(rgb.val[1], mean[1], scale[1]));
    store(out[2] + p, normalise(rgb.val[2], mean[2], scale[2]));
  }
  normalisePlanarFrom(p, src - 3 * p, planes, pixels, n);
}

}  // namespace tivora::image
