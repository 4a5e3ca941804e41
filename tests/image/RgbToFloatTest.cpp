// RGB888 to float: exact arithmetic, channel order, row layout, and refusals that write nothing.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "LogCapture.h"
#include "RecordingProcessing.h"

namespace {

using tivora::TivoraBase;
using tivora::test::LogCapture;
using tivora::test::RecordingProcessing;

constexpr float kCanary = -12345.5f;

tvr_image_buf_t image(void* memory, uint32_t w, uint32_t h, uint32_t stride) {
  tvr_image_buf_t buf{};
  buf.buf.p_base = static_cast<uint8_t*>(memory);
  buf.size = {w, h};
  buf.stride = stride;
  return buf;
}

// The formula, one sample at a time: the reference every output must match bit for bit.
float reference(uint8_t value, int mean, int divisor) {
  const float scale = static_cast<float>(1.0 / divisor);
  return scale * static_cast<float>(static_cast<int32_t>(value) - mean);
}

bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

class RgbToFloatTest : public ::testing::Test {
 protected:
  RecordingProcessing processing;
};

TEST_F(RgbToFloatTest, KnownValues) {
  uint8_t rgb[3] = {10, 20, 30};
  float out[3];
  tvr_image_buf_t src = image(rgb, 3, 1, 3), dst = image(out, 3, 1, 3);

  ASSERT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, 1, TivoraBase::RGB_ORDER_KEEP), 0);
  EXPECT_EQ(std::vector<float>(out, out + 3), (std::vector<float>{10, 20, 30}));

  ASSERT_EQ(processing.convertRGB888ToFloat(&src, &dst, 128, 128, TivoraBase::RGB_ORDER_REVERSE), 0);
  EXPECT_EQ(std::vector<float>(out, out + 3), (std::vector<float>{-0.765625f, -0.84375f, -0.921875f}));

  rgb[0] = 255;
  ASSERT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, -255, TivoraBase::RGB_ORDER_KEEP), 0);
  EXPECT_EQ(out[0], -1.0f);
  ASSERT_EQ(processing.convertRGB888ToFloat(&src, &dst, 128, 128, static_cast<TivoraBase::RgbOrder>(7)), 0);
  EXPECT_EQ(out[0], 0.9921875f) << "orders other than 1 keep the channels";
}

// Many widths, strides wider than the row, an unaligned source, odd heights; canaries after each
// destination row catch writes beyond the pixels a row owns.
TEST_F(RgbToFloatTest, MatchesTheFormulaBitForBitAndStaysInItsRows) {
  std::mt19937 random(7);
  for (uint32_t pixels : {1u, 2u, 5u, 15u, 16u, 17u, 33u, 640u}) {
    for (bool reverse : {false, true}) {
      const uint32_t w = pixels * 3, h = 3, srcStride = w + 5, dstStride = w + 4;
      std::vector<uint8_t> srcMemory(1 + srcStride * h);
      for (auto& byte : srcMemory) byte = static_cast<uint8_t>(random());
      std::vector<float> dstMemory(dstStride * h, kCanary);
      tvr_image_buf_t src = image(srcMemory.data() + 1, w, h, srcStride),
                      dst = image(dstMemory.data(), w, h, dstStride);
      const int mean = static_cast<int>(random() % 256), divisor = 1 + static_cast<int>(random() % 300);
      ASSERT_EQ(processing.convertRGB888ToFloat(&src, &dst, mean, divisor,
                                                reverse ? TivoraBase::RGB_ORDER_REVERSE : TivoraBase::RGB_ORDER_KEEP),
                0);
      for (uint32_t r = 0; r < h; ++r) {
        for (uint32_t c = 0; c < dstStride; ++c) {
          const float got = dstMemory[r * dstStride + c];
          if (c >= w) {
            ASSERT_TRUE(sameBits(got, kCanary)) << "wrote past row " << r << " at " << c;
            continue;
          }
          const uint32_t pixelStart = c - c % 3, k = c % 3;
          const uint8_t in = src.buf.p_base[r * srcStride + pixelStart + (reverse ? 2 - k : k)];
          ASSERT_TRUE(sameBits(got, reference(in, mean, divisor)))
              << "pixels " << pixels << " row " << r << " sample " << c << " reverse " << reverse;
        }
      }
    }
  }
}

TEST_F(RgbToFloatTest, WidthNotAMultipleOfThreeConvertsItsLastPixelWhole) {
  std::vector<uint8_t> rgb(8, 100);
  std::vector<float> out(8, kCanary);
  tvr_image_buf_t src = image(rgb.data(), 4, 1, 8), dst = image(out.data(), 4, 1, 8);
  ASSERT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, 1, TivoraBase::RGB_ORDER_KEEP), 0);
  EXPECT_EQ(out[5], 100.0f);
  EXPECT_TRUE(sameBits(out[6], kCanary));
}

TEST_F(RgbToFloatTest, EmptyImageWritesNothing) {
  uint8_t rgb[3] = {1, 2, 3};
  float out[3] = {kCanary, kCanary, kCanary};
  tvr_image_buf_t src = image(rgb, 0, 1, 3), dst = image(out, 0, 1, 3);
  EXPECT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, 1, TivoraBase::RGB_ORDER_KEEP), 0);
  src.size = dst.size = {3, 0};
  EXPECT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, 1, TivoraBase::RGB_ORDER_KEEP), 0);
  EXPECT_TRUE(sameBits(out[0], kCanary));
}

TEST_F(RgbToFloatTest, RefusalsAreCheckedInOrderAndWriteNothing) {
  tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_INFO);
  uint8_t rgb[6] = {};
  float out[6] = {kCanary, kCanary, kCanary, kCanary, kCanary, kCanary};
  tvr_image_buf_t src = image(rgb, 3, 1, 3), dst = image(out, 6, 1, 6);
  LogCapture capture;
  EXPECT_EQ(processing.convertRGB888ToFloat(nullptr, &dst, 0, 0, TivoraBase::RGB_ORDER_KEEP), 12);
  EXPECT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, 0, TivoraBase::RGB_ORDER_KEEP), 12);
  dst.size = src.size;
  EXPECT_EQ(processing.convertRGB888ToFloat(&src, &dst, 0, 0, TivoraBase::RGB_ORDER_KEEP), 12);
  const auto records = capture.records();
  ASSERT_EQ(records.size(), 3u);
  char nullMessage[128];
  std::snprintf(nullMessage, sizeof nullMessage,
                "[TVR ERROR] RecordingProcessing.convertRGB888ToFloat: Source image(%p) or destination(%p) is null",
                static_cast<void*>(nullptr), static_cast<void*>(&dst));
  EXPECT_EQ(records[0].text, nullMessage);
  EXPECT_EQ(
      records[1].text,
      "[TVR ERROR] RecordingProcessing.convertRGB888ToFloat: Source image size(3 x 1) and destination size(6 x 1) "
      "not equal");
  EXPECT_EQ(records[2].text, "[TVR ERROR] RecordingProcessing.convertRGB888ToFloat: Divisor(0) is zero");
  for (const auto& record : records) EXPECT_EQ(record.priority, 6);
  for (float value : out) EXPECT_TRUE(sameBits(value, kCanary));
}

}  // namespace
