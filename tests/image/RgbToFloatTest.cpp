// RGB888 to float, plain and normalised per channel: the reference row kernels against the formula
// or each other, and the per-architecture kernels bit for bit against the reference. The plain call
// runs this processor's fastest kernel (SSSE3 or NEON), so its rows cover every split of 16-pixel
// blocks and tail, unaligned rows, both orders and means that make the subtraction wrap; the
// normalising kernels are called one by one. (The NEON kernels' machine code: CheckNeonKernel.cmake.)
// Then the normalised tensor's layout and order through the public call, and refusals that write
// nothing.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "ChannelNormalisation.h"
#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "image/NormaliseKernel.h"
#include "image/RgbToFloatKernel.h"

namespace {

using namespace tivora;

constexpr float kCanary = -12345.5f;
constexpr std::size_t kGuard = 5;

bool sameBits(const float* a, const float* b, std::size_t n) { return std::memcmp(a, b, n * sizeof(float)) == 0; }

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
  image::rgbRowToFloatC(rgb, out, 2, 100, 0.5f, true);
  EXPECT_EQ(std::vector<float>(out, out + 6), (std::vector<float>{77.5f, 0.0f, -50.0f, -48.5f, -49.0f, -49.5f}));
}

// Widths around the kernels' 16-pixel blocks, also no multiple of 3 (the last pixel is converted
// whole), rows wider than their pixels and an unaligned source, every order value (only 1
// reverses); canaries after each row's pixels catch writes beyond them.
TEST(RgbToFloatTest, RowsAreTheReferencesBitForBitAndStayInPlace) {
  test::RecordingProcessing processing;
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
          image::rgbRowToFloatC(in.buf.p_base + r * srcStride, row.data(), pixels, mean,
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
  test::RecordingProcessing processing;
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

struct Kernels {
  const char* name;
  image::NormaliseKernels run;
};

std::vector<Kernels> allKernels() {
  std::vector<Kernels> all{{"selected", image::normaliseKernels()}};
#if defined(__aarch64__)
  all.push_back({"neon", {image::normaliseInterleavedNeon, image::normalisePlanarNeon}});
#endif
#if defined(__x86_64__)
  if (__builtin_cpu_supports("ssse3")) {
    all.push_back({"ssse3", {image::normaliseInterleavedSsse3, image::normalisePlanarSsse3}});
  }
#endif
  return all;
}

// Each output row (interleaved: one, planar: three) lies between canaries at a start shifted by
// `misalign` floats; the reference fills a copy of the same memory, and both must be equal.
TEST(RgbToFloatTest, NormalisingKernelsMatchTheReferenceBitForBitAndStayInTheirRows) {
  std::mt19937 random(5);
  std::uniform_real_distribution<float> value(-300.0f, 300.0f);
  for (const Kernels& kernels : allKernels()) {
    for (uint32_t pixels : {1u, 2u, 3u, 15u, 16u, 17u, 33u, 1921u}) {
      for (std::size_t misalign : {0u, 1u, 3u}) {
        for (int variant = 0; variant < 4; ++variant) {
          const bool planar = variant & 1, reverse = variant & 2;
          std::vector<uint8_t> src(3 * pixels + misalign);
          for (auto& byte : src) byte = static_cast<uint8_t>(random());
          const image::RowNormalisation n{
              {value(random), 123.675f, value(random)}, {1 / 58.395f, -value(random), 0.5f}, reverse};
          const std::size_t span = 3 * pixels + 2 * kGuard;
          std::vector<float> expected(3 * span + misalign, kCanary), got = expected;
          const auto run = [&](std::vector<float>& out, const image::NormaliseKernels& k) {
            float* const rows[3] = {&out[misalign + kGuard], &out[misalign + kGuard + span],
                                    &out[misalign + kGuard + 2 * span]};
            planar ? k.planar(src.data() + misalign, rows, pixels, n)
                   : k.interleaved(src.data() + misalign, rows[0], pixels, n);
          };
          run(expected, {image::normaliseInterleavedC, image::normalisePlanarC});
          run(got, kernels.run);
          ASSERT_TRUE(sameBits(got.data(), expected.data(), got.size()))
              << kernels.name << ": " << pixels << " pixels, misalign " << misalign << ", variant " << variant;
        }
      }
    }
  }
}

// A 3 x 2 image in a source with padded rows, into both layouts and orders: every float where the
// layout puts it, with its colour's mean and scale.
TEST(RgbToFloatTest, NormalisationPutsEachColourWhereTheLayoutAndOrderSay) {
  const uint32_t width = 3, height = 2, stride = 11;
  std::vector<uint8_t> rgb(stride * height);
  for (std::size_t i = 0; i < rgb.size(); ++i) rgb[i] = static_cast<uint8_t>(i * 37 + 11);
  const tvr_image_buf_t source = image(rgb.data(), 3 * width, height, stride);
  const ChannelNormalisation imageNet{{123.675f, 116.28f, 103.53f}, {1 / 58.395f, 1 / 57.12f, 1 / 57.375f}};
  for (TensorLayout layout : {TensorLayout::kInterleaved, TensorLayout::kPlanar}) {
    for (ChannelOrder order : {ChannelOrder::kRgb, ChannelOrder::kBgr}) {
      std::vector<float> tensor(3 * width * height + 1, kCanary);
      const FloatTensor floats{tensor.data(), 4 * (tensor.size() - 1), width, height, layout, order};
      ASSERT_EQ(convertRGB888ToNormalisedFloat(&source, floats, imageNet), TVR_OK);
      for (uint32_t i = 0; i < 3 * width * height; ++i) {
        const uint32_t k = i % 3, x = i / 3 % width, y = i / 3 / width;  // channel k of pixel (x, y)
        const uint32_t colour = order == ChannelOrder::kBgr ? 2 - k : k;
        const std::size_t at = layout == TensorLayout::kPlanar ? (k * height + y) * width + x : i;
        const float in = static_cast<float>(rgb[y * stride + 3 * x + colour]);
        const float want = (in - imageNet.mean[colour]) * imageNet.scale[colour];
        EXPECT_TRUE(sameBits(&tensor[at], &want, 1))
            << "layout " << static_cast<int>(layout) << " order " << static_cast<int>(order) << " at " << at;
      }
      EXPECT_TRUE(sameBits(&tensor.back(), &kCanary, 1));
    }
  }
}

TEST(RgbToFloatTest, NormalisationRefusalsNameTheFaultAndWriteNothing) {
  uint8_t rgb[12] = {};
  std::vector<float> memory(12, kCanary);
  const std::vector<float> untouched = memory;
  using Spoil = void (*)(tvr_image_buf_t&, FloatTensor&, ChannelNormalisation&);
  const std::vector<std::pair<const char*, Spoil>> cases{
      {"is null", [](auto& s, auto&, auto&) { s.buf.p_base = nullptr; }},
      {"is null", [](auto&, auto& t, auto&) { t.data = nullptr; }},
      {"no whole number", [](auto& s, auto&, auto&) { s.size.w = 5; }},
      {"not equal", [](auto&, auto& t, auto&) { t.height = 1; }},
      {"unknown", [](auto&, auto& t, auto&) { t.layout = static_cast<TensorLayout>(2); }},
      {"unknown", [](auto&, auto& t, auto&) { t.order = static_cast<ChannelOrder>(-1); }},
      {"smaller", [](auto&, auto& t, auto&) { t.bytes = 47; }},
      {"not finite", [](auto&, auto&, auto& n) { n.scale[1] = INFINITY; }}};
  for (const auto& [fault, spoil] : cases) {
    tvr_image_buf_t source = image(rgb, 6, 2, 6);
    FloatTensor tensor{memory.data(), 48, 2, 2, TensorLayout::kPlanar, ChannelOrder::kBgr};
    ChannelNormalisation n{{0, 0, 0}, {1, 1, 1}};
    spoil(source, tensor, n);
    test::LogCapture capture;
    EXPECT_EQ(convertRGB888ToNormalisedFloat(&source, tensor, n), TVR_ERR_INVALID_ARG) << fault;
    const auto texts = capture.texts();
    ASSERT_EQ(texts.size(), 1u) << fault;
    EXPECT_NE(texts[0].find("ERROR] TivoraUtil.convertRGB888ToNormalisedFloat: "), std::string::npos) << texts[0];
    EXPECT_NE(texts[0].find(fault), std::string::npos) << texts[0];
    EXPECT_TRUE(sameBits(memory.data(), untouched.data(), 12)) << fault;
  }
  const FloatTensor none{memory.data(), 0, 0, 0, TensorLayout::kInterleaved, ChannelOrder::kRgb};
  EXPECT_EQ(convertRGB888ToNormalisedFloat(nullptr, none, {}), TVR_ERR_INVALID_ARG);
  const tvr_image_buf_t empty = image(rgb, 0, 0, 0);
  EXPECT_EQ(convertRGB888ToNormalisedFloat(&empty, none, {}), TVR_OK);
  EXPECT_TRUE(sameBits(memory.data(), untouched.data(), 12));
}

}  // namespace
