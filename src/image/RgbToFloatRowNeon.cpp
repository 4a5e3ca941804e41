// The RGB888 to float row kernel for arm64: NEON de-interleaves 16 pixels into R, G and B lanes
// on load and interleaves them again on store, so the channel order costs nothing.
#include <arm_neon.h>

#include "image/RgbToFloatKernel.h"

namespace tivora::image {

namespace {

// Four lanes of samples (already widened to 32 bits) to floats: scale x (float)(in - mean).
inline float32x4_t toFloat(uint32x4_t in, int32x4_t mean, float32x4_t scale) {
  return vmulq_f32(scale, vcvtq_f32_s32(vsubq_s32(vreinterpretq_s32_u32(in), mean)));
}

// Sixteen samples of one channel as four vectors of four floats.
struct Channel {
  float32x4_t lane[4];
};

inline Channel convert(uint8x16_t in, int32x4_t mean, float32x4_t scale) {
  const uint16x8_t low = vmovl_u8(vget_low_u8(in));
  const uint16x8_t high = vmovl_u8(vget_high_u8(in));
  return Channel{{toFloat(vmovl_u16(vget_low_u16(low)), mean, scale),
                  toFloat(vmovl_u16(vget_high_u16(low)), mean, scale),
                  toFloat(vmovl_u16(vget_low_u16(high)), mean, scale),
                  toFloat(vmovl_u16(vget_high_u16(high)), mean, scale)}};
}

// The order is a template argument so that the loop picks its lanes by constant index (a run-time
// index would send the de-interleaved vectors through the stack).
template <bool kReverse>
uint32_t convertBlocks(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale) {
  const int32x4_t vmean = vdupq_n_s32(mean);
  const float32x4_t vscale = vdupq_n_f32(scale);
  uint32_t p = 0;
  for (; p + 16 <= pixels; p += 16, src += 48, dst += 48) {
    const uint8x16x3_t rgb = vld3q_u8(src);
    const Channel first = convert(rgb.val[kReverse ? 2 : 0], vmean, vscale);
    const Channel second = convert(rgb.val[1], vmean, vscale);
    const Channel third = convert(rgb.val[kReverse ? 0 : 2], vmean, vscale);
    vst3q_f32(dst, (float32x4x3_t{{first.lane[0], second.lane[0], third.lane[0]}}));
    vst3q_f32(dst + 12, (float32x4x3_t{{first.lane[1], second.lane[1], third.lane[1]}}));
    vst3q_f32(dst + 24, (float32x4x3_t{{first.lane[2], second.lane[2], third.lane[2]}}));
    vst3q_f32(dst + 36, (float32x4x3_t{{first.lane[3], second.lane[3], third.lane[3]}}));
  }
  return p;
}

}  // namespace

void rgbRowToFloatNeon(const uint8_t* src, float* dst, uint32_t pixels, int32_t mean, float scale, bool reverse) {
  const uint32_t done = reverse ? convertBlocks<true>(src, dst, pixels, mean, scale)
                                : convertBlocks<false>(src, dst, pixels, mean, scale);
  rgbRowToFloatC(src + 3 * done, dst + 3 * done, pixels - done, mean, scale, reverse);
}

}  // namespace tivora::image
