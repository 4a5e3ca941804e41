#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <tuple>

#include "Image.h"
#include "fastcv.h"

namespace imagelib {
namespace {

// Width, height (in samples), degree, bytes per sample (1 plain, 2 interleaved CbCr pairs).
using RotateCase = std::tuple<uint32_t, uint32_t, fcvRotateDegree, uint32_t>;

class RotateTest : public ::testing::TestWithParam<RotateCase> {};

TEST_P(RotateTest, MatchesPlainTurn) {
  const auto [width, height, degree, size] = GetParam();
  const bool quarter = degree != FASTCV_ROTATE_180;
  const uint32_t dstWidth = quarter ? height : width;
  const uint32_t dstHeight = quarter ? width : height;
  Plane src(width * size, height);
  fillNatural(src, width * 7 + height, 120);
  Plane dst(dstWidth * size, dstHeight, 6);
  const auto rotate = size == 1 ? fcvRotateImageu8 : fcvRotateImageInterleavedu8;
  ASSERT_EQ(rotate(src.data(), width, height, src.stride(), dst.data(), dst.stride(), degree), FASTCV_SUCCESS);
  EXPECT_TRUE(dst.canariesIntact());
  // Where source sample (x, y) lands, by the definition of each clockwise turn.
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      uint32_t column = width - 1 - x;  // 180
      uint32_t row = height - 1 - y;
      if (degree == FASTCV_ROTATE_90) {
        column = height - 1 - y;
        row = x;
      } else if (degree == FASTCV_ROTATE_270) {
        column = y;
        row = width - 1 - x;
      }
      ASSERT_EQ(std::memcmp(dst.row(row) + column * size, src.row(y) + x * size, size), 0)
          << "source " << x << ", " << y;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, RotateTest,
                         ::testing::Combine(::testing::ValuesIn(testWidths()), ::testing::ValuesIn(testHeights()),
                                            ::testing::Values(FASTCV_ROTATE_90, FASTCV_ROTATE_180, FASTCV_ROTATE_270),
                                            ::testing::Values(1u, 2u)));

TEST(RotateDirection, QuarterTurnIsClockwise) {
  // 1 2 3      4 1
  // 4 5 6  ->  5 2
  //            6 3
  const uint8_t src[6] = {1, 2, 3, 4, 5, 6};
  uint8_t dst[6] = {};
  ASSERT_EQ(fcvRotateImageu8(src, 3, 2, 3, dst, 2, FASTCV_ROTATE_90), FASTCV_SUCCESS);
  const uint8_t expected[6] = {4, 1, 5, 2, 6, 3};
  EXPECT_EQ(std::memcmp(dst, expected, sizeof dst), 0);
}

TEST(RotateArguments, BadParametersAreRejectedWithoutWriting) {
  uint8_t src[16] = {};
  uint8_t dst[16];
  std::memset(dst, 0xEE, sizeof dst);
  for (auto rotate : {fcvRotateImageu8, fcvRotateImageInterleavedu8}) {
    EXPECT_EQ(rotate(nullptr, 2, 2, 4, dst, 4, FASTCV_ROTATE_90), FASTCV_EBADPARAM);
    EXPECT_EQ(rotate(src, 2, 2, 4, nullptr, 4, FASTCV_ROTATE_90), FASTCV_EBADPARAM);
    for (int degree : {0, 4, -1, 90}) {
      EXPECT_EQ(rotate(src, 2, 2, 4, dst, 4, static_cast<fcvRotateDegree>(degree)), FASTCV_EBADPARAM) << degree;
    }
  }
  for (uint8_t byte : dst) EXPECT_EQ(byte, 0xEE);
}

}  // namespace
}  // namespace imagelib
