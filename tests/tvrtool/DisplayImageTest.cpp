// tvrtool's conversion of each layout to 8-bit pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "DisplayImage.h"

namespace {

using tvrtool::PixelFormat;
using tvrtool::Rgb;

// The BT.601 video-range equations in floating point.
int referenceChannel(double value) { return static_cast<int>(std::clamp(std::lround(value), 0L, 255L)); }

TEST(DisplayImageTest, YuvMatchesTheBt601EquationsWithinOne) {
  for (int y = 0; y < 256; y += 5) {
    for (int cb = 0; cb < 256; cb += 5) {
      for (int cr = 0; cr < 256; cr += 5) {
        const double luma = 1.164383 * (y - 16);
        const Rgb got = tvrtool::yuvToRgb(static_cast<uint8_t>(y), static_cast<uint8_t>(cb), static_cast<uint8_t>(cr));
        ASSERT_NEAR(got.r, referenceChannel(luma + 1.596027 * (cr - 128)), 1) << y << " " << cb << " " << cr;
        ASSERT_NEAR(got.g, referenceChannel(luma - 0.391762 * (cb - 128) - 0.812968 * (cr - 128)), 1);
        ASSERT_NEAR(got.b, referenceChannel(luma + 2.017232 * (cb - 128)), 1);
      }
    }
  }
}

// The values of NV12 pixels are ViewEndToEndTest's; here the layouts around them.
TEST(DisplayImageTest, Nv12SkipsPaddingAndSpareRowsAndNv21SwapsEachPair) {
  const std::vector<uint8_t> packed = {100, 100, 110, 110, 120, 120, 130, 130, 64, 200, 180, 90};
  std::vector<uint8_t> padded(6 * 4 * 3 / 2, 0xEE), swapped = packed;  // 4x2 in rows of 6, 4 rows allocated
  for (size_t row = 0; row < 3; ++row) std::copy_n(&packed[row * 4], 4, &padded[row < 2 ? row * 6 : 24]);
  for (size_t i = 8; i < 12; i += 2) std::swap(swapped[i], swapped[i + 1]);
  const auto nv12 = tvrtool::toDisplayImage({PixelFormat::Nv12, 4, 2, 4, 2}, packed.data()).pixels;
  EXPECT_EQ(tvrtool::toDisplayImage({PixelFormat::Nv12, 4, 2, 6, 4}, padded.data()).pixels, nv12);
  EXPECT_EQ(tvrtool::toDisplayImage({PixelFormat::Nv21, 4, 2, 4, 2}, swapped.data()).pixels, nv12);
  EXPECT_NE(tvrtool::toDisplayImage({PixelFormat::Nv21, 4, 2, 4, 2}, packed.data()).pixels, nv12);
}

TEST(DisplayImageTest, LumaIsGrayAndRgbRowsDropTheirPadding) {
  const std::vector<uint8_t> bytes = {1, 2, 3, 0xEE, 4, 5, 6, 0xEE};
  const auto gray = tvrtool::toDisplayImage({PixelFormat::Luma, 3, 2, 4, 2}, bytes.data());
  EXPECT_EQ(gray.channels, 1u);
  EXPECT_EQ(gray.pixels, (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(tvrtool::toDisplayImage({PixelFormat::Rgb888, 1, 2, 4, 2}, bytes.data()).pixels,
            (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
}

TEST(DisplayImageTest, FloatsAreStretchedFromTheirSmallestToTheirLargestFiniteValue) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  // Two pixels a row, then one padding float that must not count; then a constant image.
  const std::vector<float> values = {-1, 0, 1, 3, nan, kInf, 1e30f, -kInf, 2, 1, 1, 1, 1, -1e30f, 5, 5, 5};
  std::vector<uint8_t> bytes(values.size() * sizeof(float));
  std::memcpy(bytes.data(), values.data(), bytes.size());
  EXPECT_EQ(tvrtool::toDisplayImage({PixelFormat::RgbFloat, 2, 2, 7, 2}, bytes.data()).pixels,
            (std::vector<uint8_t>{0, 64, 128, 255, 0, 255, 0, 191, 128, 128, 128, 128}));
  EXPECT_EQ(tvrtool::toDisplayImage({PixelFormat::RgbFloat, 1, 1, 3, 1}, bytes.data() + 14 * sizeof(float)).pixels,
            (std::vector<uint8_t>{0, 0, 0}));
}

}  // namespace
