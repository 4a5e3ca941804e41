#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <tuple>

#include "Image.h"
#include "fastcv.h"

namespace imagelib {
namespace {

using Rgb = std::array<int, 3>;

Rgb convertOne(uint8_t y, uint8_t cb, uint8_t cr) {
  const uint8_t luma[1] = {y};
  const uint8_t chroma[2] = {cb, cr};
  uint8_t rgb[3] = {};
  fcvColorYCbCr420PseudoPlanarToRGB888u8(luma, chroma, 1, 1, 1, 2, rgb, 3);
  return {rgb[0], rgb[1], rgb[2]};
}

// BT.601 video-range colours: Y, Cb, Cr and the RGB they stand for, within 1 per channel.
struct Colour {
  const char* name;
  uint8_t y, cb, cr;
  Rgb rgb;
};

class ColourValueTest : public ::testing::TestWithParam<Colour> {};

TEST_P(ColourValueTest, ConvertsToRgbRedFirst) {
  const Colour& c = GetParam();
  const Rgb rgb = convertOne(c.y, c.cb, c.cr);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(rgb[i], c.rgb[i], 1) << c.name << " channel " << i;
}

INSTANTIATE_TEST_SUITE_P(
    Bt601VideoRange, ColourValueTest,
    ::testing::Values(Colour{"black", 16, 128, 128, {0, 0, 0}}, Colour{"white", 235, 128, 128, {255, 255, 255}},
                      Colour{"grey", 126, 128, 128, {128, 128, 128}}, Colour{"red", 82, 90, 240, {255, 0, 0}},
                      Colour{"green", 145, 54, 34, {0, 255, 0}}, Colour{"blue", 41, 240, 110, {0, 0, 255}},
                      Colour{"below black clamps", 0, 128, 128, {0, 0, 0}},
                      Colour{"above white clamps", 255, 128, 128, {255, 255, 255}},
                      Colour{"extreme chroma clamps", 128, 255, 0, {0, 185, 255}}),
    [](const auto& test) {
      std::string name = test.param.name;
      for (char& ch : name) ch = ch == ' ' ? '_' : ch;
      return name;
    });

// Width, height.
class ColourPlaneTest : public ::testing::TestWithParam<std::tuple<uint32_t, uint32_t>> {};

// Every pixel takes its own luma and the chroma of its 2x2 block; with an odd size the last column
// or row shares the chroma of the block before it.
TEST_P(ColourPlaneTest, EachPixelUsesItsBlockChroma) {
  const auto [width, height] = GetParam();
  const uint32_t pairs = width / 2 > 0 ? width / 2 : 1;
  const uint32_t chromaRows = height / 2 > 0 ? height / 2 : 1;
  Plane y(width, height, 3);
  Plane c(pairs * 2, chromaRows, 9);
  fillNatural(y, width, 80);
  fillNatural(c, height, 80);
  Plane rgb(width * 3, height, 4);
  fcvColorYCbCr420PseudoPlanarToRGB888u8(y.data(), c.data(), width, height, y.stride(), c.stride(), rgb.data(),
                                         rgb.stride());
  EXPECT_TRUE(rgb.canariesIntact());
  for (uint32_t row = 0; row < height; ++row) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t pair = std::min(x / 2, pairs - 1);
      const uint32_t chromaRow = std::min(row / 2, chromaRows - 1);
      const Rgb expected = convertOne(y.at(x, row), c.at(2 * pair, chromaRow), c.at(2 * pair + 1, chromaRow));
      for (uint32_t i = 0; i < 3; ++i) {
        ASSERT_EQ(rgb.at(3 * x + i, row), expected[i]) << x << ", " << row << " channel " << i;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ColourPlaneTest,
                         ::testing::Combine(::testing::ValuesIn(testWidths()), ::testing::ValuesIn(testHeights())));

}  // namespace
}  // namespace imagelib
