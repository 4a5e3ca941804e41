// RGB888 to float: the reference row kernel against the formula, and the processing's call, row by
// row, bit for bit against the reference. The call runs this processor's fastest kernel (SSSE3 or
// NEON; the NEON kernel's machine code: CheckNeonKernel.cmake), so the rows cover every split of
// 16-pixel blocks and tail, unaligned rows, both orders and means that make the subtraction wrap.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <vector>

#include "RecordingProcessing.h"
#include "image/RgbToFloatKernel.h"

namespace {

using tivora::TivoraBase;

constexpr float kCanary = -12345.5f;

tvr_image_buf_t image(void* memory, uint32_t w, uint32_t h, uint32_t stride) {
  tvr_image_buf_t buf{};
  buf.buf.p_base = static_cast<uint8_t*>(memory);
  buf.size = {w, h};
  buf.stride = stride;
  return buf;
}

TEST(RgbToFloatTest, ReferenceIsTheFormula) {
  const uint8_t rgb[6] = {0, 100, 255, 1, 2, 3};
  float out[6];
  tivora::image::rgbRowToFloatC(rgb, out, 2, 100, 0.5f, true);
  EXPECT_EQ(std::vector<float>(out, out + 6), (std::vector<float>{77.5f, 0.0f, -50.0f, -48.5f, -49.0f, -49.5f}));
}

// Widths around the kernels' 16-pixel blocks, also no multiple of 3 (the last pixel is converted
// whole), rows wider than their pixels and an unaligned source, every order value (only 1
// reverses); canaries after each row's pixels catch writes beyond them.
TEST(RgbToFloatTest, RowsAreTheReferencesBitForBitAndStayInPlace) {
  tivora::test::RecordingProcessing processing;
  std::mt19937 random(7);
  for (uint32_t w : {1u, 4u, 5u, 45u, 47u, 48u, 49u, 51u, 93u, 96u, 99u, 5763u}) {
    for (int order : {0, 1, 7}) {
      for (int mean : {static_cast<int>(random() % 256), INT_MIN, INT_MAX}) {
        const uint32_t h = 2, pixels = (w + 2) / 3, srcStride = pixels * 3 + 5, dstStride = pixels * 3 + 4;
        std::vector<uint8_t> src(1 + srcStride * h);
        for (auto& byte : src) byte = static_cast<uint8_t>(random());
        std::vector<float> dst(dstStride * h, kCanary), row(pixels * 3);
        tvr_image_buf_t in = image(src.data() + 1, w, h, srcStride), out = image(dst.data(), w, h, dstStride);
        const int divisor = (static_cast<int>(random() % 300) - 150) | 1;
        ASSERT_EQ(processing.convertRGB888ToFloat(&in, &out, mean, divisor, static_cast<TivoraBase::RgbOrder>(order)),
                  0);
        for (uint32_t r = 0; r < h; ++r) {
          tivora::image::rgbRowToFloatC(in.buf.p_base + r * srcStride, row.data(), pixels, mean,
                                        static_cast<float>(1.0 / divisor), order == 1);
          ASSERT_EQ(std::memcmp(&dst[r * dstStride], row.data(), row.size() * sizeof(float)), 0)
              << "width " << w << " order " << order << " mean " << mean;
          for (uint32_t c = pixels * 3; c < dstStride; ++c) ASSERT_EQ(dst[r * dstStride + c], kCanary) << w;
        }
      }
    }
  }
}

TEST(RgbToFloatTest, EmptyImagesAndRefusalsWriteNothing) {
  tivora::test::RecordingProcessing processing;
  uint8_t rgb[6] = {1, 2, 3, 4, 5, 6};
  std::vector<float> out(6, kCanary);
  tvr_image_buf_t src = image(rgb, 6, 1, 6), dst = image(out.data(), 6, 1, 6), narrow = image(out.data(), 3, 1, 6);
  const auto convert = [&](const tvr_image_buf_t* s, tvr_image_buf_t* d, int divisor) {
    return processing.convertRGB888ToFloat(s, d, 0, divisor, TivoraBase::RGB_ORDER_KEEP);
  };
  EXPECT_EQ(convert(nullptr, &dst, 1), 12);
  EXPECT_EQ(convert(&src, nullptr, 1), 12);
  EXPECT_EQ(convert(&src, &narrow, 1), 12);
  EXPECT_EQ(convert(&src, &dst, 0), 12);
  src.size = dst.size = {0, 1};
  EXPECT_EQ(convert(&src, &dst, 1), 0);
  src.size = dst.size = {6, 0};
  EXPECT_EQ(convert(&src, &dst, 1), 0);
  EXPECT_EQ(out, std::vector<float>(6, kCanary));
}

}  // namespace
