// The stand-in against libyuv, an independent implementation of the same conversions.
#include <gtest/gtest.h>
#include <libyuv/convert_argb.h>
#include <libyuv/rotate.h>

#include <cstdint>
#include <cstdlib>
#include <tuple>

#include "Image.h"
#include "fastcv.h"

namespace imagelib {
namespace {

int stride(const Plane& plane) { return static_cast<int>(plane.stride()); }

// libyuv names byte orders after little-endian words: its "RAW" is R, G, B in memory, the order
// of our RGB888, and "RGB24" is B, G, R.
TEST(LibyuvReference, RawIsRedFirst) {
  const uint8_t y[2] = {82, 82};
  const uint8_t c[2] = {90, 240};  // BT.601 red
  uint8_t raw[6] = {};
  ASSERT_EQ(libyuv::NV12ToRAW(y, 2, c, 2, raw, 6, 2, 1), 0);
  EXPECT_GT(raw[0], 250);
  EXPECT_LT(raw[2], 5);
}

// Width, height.
class LibyuvColourTest : public ::testing::TestWithParam<std::tuple<uint32_t, uint32_t>> {};

TEST_P(LibyuvColourTest, Nv12ToRgbWithinTwoOfLibyuv) {
  const auto [width, height] = GetParam();
  // libyuv reads (width + 1) / 2 pairs and (height + 1) / 2 rows; the stand-in reads width / 2 and
  // height / 2 and lets the last column and row reuse them. Repeating the last pair and row in the
  // extra ones gives both the same input.
  const uint32_t pairs = (width + 1) / 2;
  const uint32_t chromaRows = (height + 1) / 2;
  Plane y(width, height, 11);
  Plane c(pairs * 2, chromaRows, 3);
  fillNatural(y, width * 3 + height, 20);
  fillNatural(c, width + height * 5, 20);
  for (uint32_t row = 0; row < chromaRows; ++row) {
    if (width % 2 == 1 && pairs > 1) {
      c.at(2 * pairs - 2, row) = c.at(2 * pairs - 4, row);
      c.at(2 * pairs - 1, row) = c.at(2 * pairs - 3, row);
    }
  }
  if (height % 2 == 1 && chromaRows > 1) {
    for (uint32_t x = 0; x < 2 * pairs; ++x) c.at(x, chromaRows - 1) = c.at(x, chromaRows - 2);
  }

  Plane ours(width * 3, height, 2);
  Plane theirs(width * 3, height, 2);
  fcvColorYCbCr420PseudoPlanarToRGB888u8(y.data(), c.data(), width, height, y.stride(), c.stride(), ours.data(),
                                         ours.stride());
  ASSERT_EQ(libyuv::NV12ToRAW(y.data(), stride(y), c.data(), stride(c), theirs.data(), stride(theirs),
                              static_cast<int>(width), static_cast<int>(height)),
            0);
  EXPECT_TRUE(ours.canariesIntact());
  for (uint32_t row = 0; row < height; ++row) {
    for (uint32_t x = 0; x < width * 3; ++x) {
      ASSERT_LE(std::abs(ours.at(x, row) - theirs.at(x, row)), 2)
          << "pixel " << x / 3 << ", " << row << " channel " << x % 3;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, LibyuvColourTest,
                         ::testing::Combine(::testing::Values(1u, 2u, 3u, 15u, 16u, 17u, 33u, 1921u),
                                            ::testing::ValuesIn(testHeights())));

// Width, height, degree.
class LibyuvRotateTest : public ::testing::TestWithParam<std::tuple<uint32_t, uint32_t, fcvRotateDegree>> {};

TEST_P(LibyuvRotateTest, PlaneEqualsLibyuv) {
  const auto [width, height, degree] = GetParam();
  const bool quarter = degree != FASTCV_ROTATE_180;
  Plane src(width, height, 7);
  fillNatural(src, width + height, 100);
  Plane ours(quarter ? height : width, quarter ? width : height, 5);
  Plane theirs(ours.rowBytes(), ours.rows(), 5);
  ASSERT_EQ(fcvRotateImageu8(src.data(), width, height, src.stride(), ours.data(), ours.stride(), degree),
            FASTCV_SUCCESS);
  const libyuv::RotationMode mode = degree == FASTCV_ROTATE_90    ? libyuv::kRotate90
                                    : degree == FASTCV_ROTATE_180 ? libyuv::kRotate180
                                                                  : libyuv::kRotate270;
  ASSERT_EQ(libyuv::RotatePlane(src.data(), stride(src), theirs.data(), stride(theirs), static_cast<int>(width),
                                static_cast<int>(height), mode),
            0);
  EXPECT_TRUE(ours.canariesIntact());
  EXPECT_EQ(ours.pixels(), theirs.pixels());
}

INSTANTIATE_TEST_SUITE_P(Sizes, LibyuvRotateTest,
                         ::testing::Combine(::testing::Values(1u, 2u, 3u, 15u, 16u, 17u, 33u, 64u),
                                            ::testing::Values(1u, 3u, 5u, 16u, 17u),
                                            ::testing::Values(FASTCV_ROTATE_90, FASTCV_ROTATE_180, FASTCV_ROTATE_270)));

}  // namespace
}  // namespace imagelib
