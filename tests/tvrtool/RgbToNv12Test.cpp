// RGB pictures to NV12 (PNG sources) and the built-in colour chart.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "ColourChart.h"
#include "RgbToNv12.h"

namespace {

using tvrtool::DisplayImage;
using tvrtool::Rgb;
using tvrtool::rgbToYcc;
using tvrtool::Ycc;

std::string text(Ycc ycc) { return std::to_string(ycc.y) + "," + std::to_string(ycc.cb) + "," + std::to_string(ycc.cr); }

TEST(RgbToNv12Test, ReferenceColoursHaveTheirBt601VideoRangeValues) {
  EXPECT_EQ(text(rgbToYcc({0, 0, 0})), "16,128,128");
  EXPECT_EQ(text(rgbToYcc({255, 255, 255})), "235,128,128");
  EXPECT_EQ(text(rgbToYcc({255, 0, 0})), "81,90,240");
  EXPECT_EQ(text(rgbToYcc({0, 255, 0})), "145,54,34");
  EXPECT_EQ(text(rgbToYcc({0, 0, 255})), "41,240,110");
}

TEST(RgbToNv12Test, ColoursComeBackThroughTheViewersConversion) {
  for (int r = 0; r <= 255; r += 15) {
    for (int g = 0; g <= 255; g += 15) {
      for (int b = 0; b <= 255; b += 15) {
        const Rgb in{static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)};
        const Ycc ycc = rgbToYcc(in);
        const Rgb out = tvrtool::yuvToRgb(ycc.y, ycc.cb, ycc.cr);
        ASSERT_LE(std::abs(out.r - r) + std::abs(out.g - g) + std::abs(out.b - b), 6) << r << "," << g << "," << b;
      }
    }
  }
}

TEST(RgbToNv12Test, FrameIsPackedAndEachChromaPairAveragesItsFourPixels) {
  // Left 2x2 block red; right block white over black (a mean of mid gray).
  DisplayImage image{4, 2, 3, {255, 0, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255,  //
                               255, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0}};
  const tvrtool::Nv12Frame frame = tvrtool::rgbToNv12(image);
  EXPECT_EQ(frame.width, 4u);
  EXPECT_EQ(frame.height, 2u);
  EXPECT_EQ(frame.stride, 4u);
  EXPECT_EQ(frame.scanline, 2u);
  EXPECT_EQ(frame.chromaOffset(), 8u);
  const Ycc gray = rgbToYcc({128, 128, 128});
  EXPECT_EQ(frame.bytes, (std::vector<uint8_t>{81, 81, 235, 235, 81, 81, 16, 16, 90, 240, gray.cb, gray.cr}));
}

TEST(RgbToNv12Test, ChartHasEightBarsAndARampWithBordersOnEvenColumnsAndRows) {
  const DisplayImage chart = tvrtool::colourChart(100, 60);
  ASSERT_EQ(chart.pixels.size(), 100u * 60 * 3);
  auto at = [&](uint32_t x, uint32_t y) {
    const uint8_t* p = &chart.pixels[(size_t{y} * chart.width + x) * 3];
    return Rgb{p[0], p[1], p[2]};
  };
  auto same = [](Rgb a, Rgb b) { return a.r == b.r && a.g == b.g && a.b == b.b; };
  std::set<uint32_t> colours;
  for (uint32_t y = 0; y < chart.height; ++y) {
    for (uint32_t x = 1; x < chart.width; ++x) {
      if (!same(at(x, y), at(x - 1, y))) {
        EXPECT_EQ(x % 2, 0u) << "border at column " << x << ", row " << y;
      }
      if (y > 0 && !same(at(x, y), at(x, y - 1))) {
        EXPECT_EQ(y % 2, 0u) << "border at row " << y;
      }
    }
  }
  for (uint32_t x = 0; x < chart.width; ++x) {
    const Rgb c = at(x, 0);
    colours.insert(uint32_t{c.r} << 16 | uint32_t{c.g} << 8 | c.b);
  }
  EXPECT_EQ(colours.size(), 8u);
  EXPECT_TRUE(same(at(0, 0), Rgb{191, 191, 191}));
  EXPECT_TRUE(same(at(99, 0), Rgb{0, 0, 0}));
  EXPECT_TRUE(same(at(0, 59), Rgb{0, 0, 0}));
  EXPECT_TRUE(same(at(99, 59), Rgb{255, 255, 255}));
}

}  // namespace
