// tvrtool's conversion of each layout to 8-bit pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "DisplayImage.h"

// Found by argument-dependent lookup, so in the namespace of Rgb.
namespace tvrtool {
bool operator==(const Rgb& a, const Rgb& b) { return a.r == b.r && a.g == b.g && a.b == b.b; }
std::ostream& operator<<(std::ostream& os, const Rgb& c) { return os << +c.r << "," << +c.g << "," << +c.b; }
}  // namespace tvrtool

namespace {

using tvrtool::DisplayImage;
using tvrtool::Layout;
using tvrtool::PixelFormat;
using tvrtool::Rgb;

Rgb pixel(const DisplayImage& image, uint32_t x, uint32_t y) {
  const uint8_t* p = &image.pixels[(static_cast<size_t>(y) * image.width + x) * 3];
  return {p[0], p[1], p[2]};
}

// The BT.601 video-range equations in floating point.
int referenceChannel(double value) { return static_cast<int>(std::clamp(std::lround(value), 0L, 255L)); }

TEST(YuvToRgbTest, MatchesTheBt601EquationsWithinOne) {
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
  EXPECT_EQ(tvrtool::yuvToRgb(16, 128, 128), (Rgb{0, 0, 0}));
  EXPECT_EQ(tvrtool::yuvToRgb(235, 128, 128), (Rgb{255, 255, 255}));
}

// A 4x2 frame of stride 6 with 4 luma rows allocated: two chroma blocks of different colours,
// and padding and spare rows that must not show.
std::vector<uint8_t> paddedFrame() {
  std::vector<uint8_t> bytes(6 * 4 * 3 / 2, 0xEE);
  for (int row = 0; row < 2; ++row) std::memset(&bytes[static_cast<size_t>(row) * 6], 100, 4);
  const uint8_t pairs[] = {64, 200, 200, 64};
  std::memcpy(&bytes[6 * 4], pairs, sizeof pairs);
  return bytes;
}

TEST(DisplayImageTest, Nv12SharesEachChromaPairOverTwoByTwoPixels) {
  const std::vector<uint8_t> bytes = paddedFrame();
  const DisplayImage image = tvrtool::toDisplayImage({PixelFormat::Nv12, 4, 2, 6, 4}, bytes.data());
  ASSERT_EQ(image.channels, 3u);
  ASSERT_EQ(image.pixels.size(), 4u * 2 * 3);
  const Rgb left = tvrtool::yuvToRgb(100, 64, 200), right = tvrtool::yuvToRgb(100, 200, 64);
  for (uint32_t y = 0; y < 2; ++y) {
    EXPECT_EQ(pixel(image, 0, y), left);
    EXPECT_EQ(pixel(image, 1, y), left);
    EXPECT_EQ(pixel(image, 2, y), right);
    EXPECT_EQ(pixel(image, 3, y), right);
  }
}

TEST(DisplayImageTest, Nv21TakesCrFirst) {
  const std::vector<uint8_t> bytes = paddedFrame();
  const DisplayImage image = tvrtool::toDisplayImage({PixelFormat::Nv21, 4, 2, 6, 4}, bytes.data());
  EXPECT_EQ(pixel(image, 0, 0), tvrtool::yuvToRgb(100, 200, 64));
  EXPECT_EQ(pixel(image, 3, 1), tvrtool::yuvToRgb(100, 64, 200));
}

TEST(DisplayImageTest, LumaAndRgbRowsDropTheirPadding) {
  const std::vector<uint8_t> bytes = {1, 2, 3, 0xEE, 4, 5, 6, 0xEE};
  const DisplayImage gray = tvrtool::toDisplayImage({PixelFormat::Luma, 3, 2, 4, 2}, bytes.data());
  EXPECT_EQ(gray.channels, 1u);
  EXPECT_EQ(gray.pixels, (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
  const DisplayImage rgb = tvrtool::toDisplayImage({PixelFormat::Rgb888, 1, 2, 4, 2}, bytes.data());
  EXPECT_EQ(rgb.channels, 3u);
  EXPECT_EQ(rgb.pixels, (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
}

std::vector<uint8_t> floatBytes(const std::vector<float>& values) {
  std::vector<uint8_t> bytes(values.size() * sizeof(float));
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

TEST(DisplayImageTest, FloatsAreStretchedFromTheirSmallestToTheirLargestFiniteValue) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  // Two pixels a row, then one padding float that must not count.
  const auto bytes = floatBytes({-1, 0, 1, 3, nan, kInf, 1e30f,  //
                                 -kInf, 2, 1, 1, 1, 1, -1e30f});
  const DisplayImage image = tvrtool::toDisplayImage({PixelFormat::RgbFloat, 2, 2, 7, 2}, bytes.data());
  EXPECT_EQ(image.pixels, (std::vector<uint8_t>{0, 64, 128, 255, 0, 255, 0, 191, 128, 128, 128, 128}));
}

TEST(DisplayImageTest, ConstantFloatsShowBlack) {
  const auto bytes = floatBytes({5, 5, 5});
  EXPECT_EQ(tvrtool::toDisplayImage({PixelFormat::RgbFloat, 1, 1, 3, 1}, bytes.data()).pixels,
            (std::vector<uint8_t>{0, 0, 0}));
}

}  // namespace
