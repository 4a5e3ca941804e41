// The image operations hand their arguments to libyuv rightly: widths of interleaved rows count
// CbCr pairs, every stride is used, turns go clockwise, and nothing is written outside the rows.
#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <vector>

#include "Images.h"
#include "fastcv.h"

namespace {

using tivora::test::Plane;

// Y = 81 with the chroma of red (Cb 90, Cr 240) or of blue (240, 110) makes red or blue pixels;
// the canary as chroma makes neither.
TEST(ArgumentMapping, ColourIsRedFirstAndTakesEachPixelsChromaBlock) {
  const uint32_t width = 5, height = 5;  // odd: the last column and row reuse the last pair and row
  Plane y(width, height), c(4, 2), rgb(3 * width, height);
  for (uint32_t i = 0; i < width * height; ++i) y.at(i % width, i / width) = 81;
  const uint8_t chroma[2][4] = {{240, 110, 90, 240}, {90, 240, 240, 110}};  // blue, red / red, blue
  for (uint32_t i = 0; i < 8; ++i) c.at(i % 4, i / 4) = chroma[i / 4][i % 4];
  fcvColorYCbCr420PseudoPlanarToRGB888u8(y.data(), c.data(), width, height, y.stride(), c.stride(), rgb.data(),
                                         rgb.stride());
  for (uint32_t i = 0; i < width * height; ++i) {
    const uint32_t x = i % width, r = i / width;
    const bool red = chroma[r < 2 ? 0 : 1][x < 2 ? 0 : 2] == 90;
    EXPECT_EQ(red, rgb.at(3 * x, r) > 200 && rgb.at(3 * x + 2, r) < 60) << x << ", " << r;
    EXPECT_EQ(!red, rgb.at(3 * x + 2, r) > 200 && rgb.at(3 * x, r) < 60) << x << ", " << r;
  }
  EXPECT_TRUE(rgb.untouchedAround());
}

using ScaleFn = void (*)(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t, uint32_t, uint32_t);
struct ScaleCase {
  ScaleFn scale;
  uint32_t channels, srcHeight, dstWidth, dstHeight;
};
class ScaleMapping : public ::testing::TestWithParam<ScaleCase> {};

// Eight samples a row, 40 on the left half and 120 on the right (Cb), Cr a flat 200: every output
// row runs from 40 to 120 without a step back, and Cr stays 200 in every pair.
TEST_P(ScaleMapping, WholeRowsInPairsAndStridesUsed) {
  const ScaleCase s = GetParam();
  Plane src(8 * s.channels, s.srcHeight), dst(s.dstWidth * s.channels, s.dstHeight);
  for (uint32_t i = 0; i < 8 * s.srcHeight; ++i) {
    src.at(i % 8 * s.channels, i / 8) = i % 8 < 4 ? 40 : 120;
    if (s.channels == 2) src.at(i % 8 * 2 + 1, i / 8) = 200;
  }
  s.scale(src.data(), 8, s.srcHeight, src.stride(), dst.data(), s.dstWidth, s.dstHeight, dst.stride());
  for (uint32_t r = 0; r < s.dstHeight; ++r) {
    EXPECT_EQ(dst.at(0, r), 40) << r;
    EXPECT_EQ(dst.at((s.dstWidth - 1) * s.channels, r), 120) << r;
    for (uint32_t x = 1; x < s.dstWidth; ++x) EXPECT_LE(dst.at((x - 1) * s.channels, r), dst.at(x * s.channels, r));
    for (uint32_t x = 0; s.channels == 2 && x < s.dstWidth; ++x) EXPECT_EQ(dst.at(2 * x + 1, r), 200) << x << ", " << r;
  }
  EXPECT_TRUE(dst.untouchedAround());
}

INSTANTIATE_TEST_SUITE_P(Stages, ScaleMapping,
                         ::testing::Values(ScaleCase{fcvScaleDownMNu8, 1, 4, 4, 2},
                                           ScaleCase{fcvScaleDownMNInterleaveu8, 2, 4, 4, 2},
                                           ScaleCase{fcvScaleUpPolyu8, 1, 3, 13, 7},
                                           ScaleCase{fcvScaleUpPolyInterleaveu8, 2, 3, 13, 7}));

// Bytes per sample (1 luma, 2 a CbCr pair), degree.
class RotateMapping : public ::testing::TestWithParam<std::tuple<uint32_t, fcvRotateDegree>> {};

TEST_P(RotateMapping, SamplesLandWhereAClockwiseTurnPutsThem) {
  const auto [size, degree] = GetParam();
  const uint32_t width = 3, height = 2, rowBytes = width * size;
  const bool quarter = degree != FASTCV_ROTATE_180;
  Plane src(rowBytes, height), dst((quarter ? height : width) * size, quarter ? width : height);
  for (uint32_t i = 0; i < rowBytes * height; ++i) src.at(i % rowBytes, i / rowBytes) = static_cast<uint8_t>(i);
  const auto rotate = size == 1 ? fcvRotateImageu8 : fcvRotateImageInterleavedu8;
  ASSERT_EQ(rotate(src.data(), width, height, src.stride(), dst.data(), dst.stride(), degree), FASTCV_SUCCESS);
  for (uint32_t i = 0; i < width * height; ++i) {
    const uint32_t x = i % width, y = i / width;
    uint32_t column = width - 1 - x, row = height - 1 - y;  // a half turn
    if (degree == FASTCV_ROTATE_90) column = height - 1 - y, row = x;
    if (degree == FASTCV_ROTATE_270) column = y, row = width - 1 - x;
    for (uint32_t b = 0; b < size; ++b) EXPECT_EQ(dst.at(column * size + b, row), src.at(x * size + b, y)) << x << y;
  }
  EXPECT_TRUE(dst.untouchedAround());
}

INSTANTIATE_TEST_SUITE_P(Turns, RotateMapping,
                         ::testing::Combine(::testing::Values(1u, 2u),
                                            ::testing::Values(FASTCV_ROTATE_90, FASTCV_ROTATE_180, FASTCV_ROTATE_270)));

}  // namespace
