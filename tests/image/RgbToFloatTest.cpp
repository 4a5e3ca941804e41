// RGB888 to float. The per-architecture row kernels against the reference kernel, bit for bit, for
// every block/tail split, unaligned rows, both orders and means that make the subtraction wrap; the
// reference against the formula; and the processing's call row by row against the reference: the
// channel order, the row layout, and refusals that write nothing. (The NEON kernel's machine code:
// CheckNeonKernel.cmake.)
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <vector>

#include "RecordingProcessing.h"
#include "image/RgbToFloatKernel.h"

namespace {

constexpr float kCanary = -12345.5f;

using tivora::image::RgbRowToFloatFn;

struct Kernel {
  const char* name;
  RgbRowToFloatFn run;
};

std::vector<Kernel> kernels() {
  std::vector<Kernel> all{{"selected", tivora::image::rgbRowToFloatKernel()}};
#if defined(__aarch64__)
  all.push_back({"neon", tivora::image::rgbRowToFloatNeon});
#endif
#if defined(__x86_64__)
  if (__builtin_cpu_supports("ssse3")) all.push_back({"ssse3", tivora::image::rgbRowToFloatSsse3});
#endif
  return all;
}

constexpr size_t kGuard = 7;

TEST(RgbToFloatKernelTest, FastKernelsMatchTheReferenceBitForBit) {
  std::mt19937 random(11);
  const std::vector<Kernel> all = kernels();
  for (const Kernel& kernel : all) {
    for (uint32_t pixels : {1u, 2u, 3u, 15u, 16u, 17u, 31u, 32u, 33u, 1921u}) {
      for (size_t misalign : {size_t{0}, size_t{1}, size_t{3}}) {
        for (int32_t mean : {0, 128, -7, INT_MIN, INT_MAX}) {
          for (bool reverse : {false, true}) {
            const size_t samples = size_t{pixels} * 3;
            std::vector<uint8_t> src(samples + misalign);
            for (auto& byte : src) byte = static_cast<uint8_t>(random());
            const float scale = (random() % 2 ? 1.0f : -1.0f) / static_cast<float>(1 + random() % 255);
            std::vector<float> expected(samples), got(samples + misalign + 2 * kGuard, kCanary);
            tivora::image::rgbRowToFloatC(src.data() + misalign, expected.data(), pixels, mean, scale, reverse);
            float* out = got.data() + kGuard + misalign;
            kernel.run(src.data() + misalign, out, pixels, mean, scale, reverse);
            ASSERT_EQ(std::memcmp(out, expected.data(), samples * sizeof(float)), 0)
                << kernel.name << " pixels " << pixels << " misalign " << misalign << " mean " << mean << " reverse "
                << reverse;
            for (size_t i = 0; i < kGuard + misalign; ++i) ASSERT_EQ(got[i], kCanary) << kernel.name;
            for (size_t i = kGuard + misalign + samples; i < got.size(); ++i) ASSERT_EQ(got[i], kCanary) << kernel.name;
          }
        }
      }
    }
  }
}

TEST(RgbToFloatKernelTest, ReferenceIsTheFormula) {
  const uint8_t rgb[6] = {0, 100, 255, 1, 2, 3};
  float out[6];
  tivora::image::rgbRowToFloatC(rgb, out, 2, 100, 0.5f, true);
  EXPECT_EQ(std::vector<float>(out, out + 6), (std::vector<float>{77.5f, 0.0f, -50.0f, -48.5f, -49.0f, -49.5f}));
}

using tivora::TivoraBase;

tvr_image_buf_t image(void* memory, uint32_t w, uint32_t h, uint32_t stride) {
  tvr_image_buf_t buf{};
  buf.buf.p_base = static_cast<uint8_t*>(memory);
  buf.size = {w, h};
  buf.stride = stride;
  return buf;
}

// Widths around the kernels' 16-pixel blocks, also no multiple of 3 (the last pixel is converted
// whole); strides wider than the rows and an unaligned source; every order value (only 1 reverses).
// Canaries after each row's pixels catch writes beyond them.
TEST(RgbToFloatTest, RowsAreTheReferencesAndStayInPlace) {
  tivora::test::RecordingProcessing processing;
  std::mt19937 random(7);
  for (uint32_t w : {1u, 4u, 5u, 48u, 49u, 1921u}) {
    for (int order : {0, 1, 7}) {
      const uint32_t h = 3, pixels = (w + 2) / 3, srcStride = pixels * 3 + 5, dstStride = pixels * 3 + 4;
      std::vector<uint8_t> src(1 + srcStride * h);
      for (auto& byte : src) byte = static_cast<uint8_t>(random());
      std::vector<float> dst(dstStride * h, kCanary), row(pixels * 3);
      tvr_image_buf_t in = image(src.data() + 1, w, h, srcStride), out = image(dst.data(), w, h, dstStride);
      const int mean = static_cast<int>(random() % 256), divisor = (static_cast<int>(random() % 300) - 150) | 1;
      ASSERT_EQ(processing.convertRGB888ToFloat(&in, &out, mean, divisor, static_cast<TivoraBase::RgbOrder>(order)), 0);
      for (uint32_t r = 0; r < h; ++r) {
        tivora::image::rgbRowToFloatC(in.buf.p_base + r * srcStride, row.data(), pixels, mean,
                                      static_cast<float>(1.0 / divisor), order == 1);
        ASSERT_EQ(std::memcmp(&dst[r * dstStride], row.data(), row.size() * sizeof(float)), 0) << w << " " << order;
        for (uint32_t c = pixels * 3; c < dstStride; ++c) ASSERT_EQ(dst[r * dstStride + c], kCanary) << w;
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
