// RGB pictures to NV12 (PNG sources) and the built-in colour chart.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "ColourChart.h"
#include "RgbToNv12.h"

namespace {

using tvrtool::DisplayImage;
using tvrtool::Rgb;
using tvrtool::Ycc;

// The inverse of yuvToRgb, which DisplayImageTest holds against the BT.601 equations.
TEST(RgbToNv12Test, ColoursComeBackThroughTheViewersConversion) {
  for (int r = 0; r <= 255; r += 15) {
    for (int g = 0; g <= 255; g += 15) {
      for (int b = 0; b <= 255; b += 15) {
        const Ycc ycc = tvrtool::rgbToYcc({static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)});
        const Rgb out = tvrtool::yuvToRgb(ycc.y, ycc.cb, ycc.cr);
        ASSERT_LE(std::abs(out.r - r) + std::abs(out.g - g) + std::abs(out.b - b), 6) << r << "," << g << "," << b;
      }
    }
  }
}

TEST(RgbToNv12Test, FrameIsPackedAndEachChromaPairAveragesItsFourPixels) {
  // Left 2x2 block red; right block white over black (a mean of mid gray).
  const DisplayImage image{4, 2, 3, {255, 0, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255,  //
                                     255, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0}};
  const tvrtool::Nv12Frame frame = tvrtool::rgbToNv12(image);
  EXPECT_EQ(frame.width * 1000 + frame.height * 100 + frame.stride * 10 + frame.scanline, 4242u);
  const Ycc red = tvrtool::rgbToYcc({255, 0, 0}), gray = tvrtool::rgbToYcc({128, 128, 128});
  EXPECT_EQ(frame.bytes, (std::vector<uint8_t>{red.y, red.y, 235, 235, red.y, red.y, 16, 16, red.cb, red.cr, gray.cb, gray.cr}));
}

TEST(RgbToNv12Test, ChartHasEightBarsAndARampWithBordersOnEvenColumnsAndRows) {
  const DisplayImage chart = tvrtool::colourChart(100, 60);
  ASSERT_EQ(chart.pixels.size(), 100u * 60 * 3);
  auto at = [&](uint32_t x, uint32_t y) {
    const uint8_t* p = &chart.pixels[(size_t{y} * chart.width + x) * 3];
    return uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
  };
  std::set<uint32_t> bars;
  for (uint32_t y = 0; y < chart.height; ++y) {
    for (uint32_t x = 1; x < chart.width; ++x) {
      EXPECT_TRUE(at(x, y) == at(x - 1, y) || x % 2 == 0) << "border at column " << x << ", row " << y;
      EXPECT_TRUE(y == 0 || at(x, y) == at(x, y - 1) || y % 2 == 0) << "border at row " << y;
    }
  }
  for (uint32_t x = 0; x < chart.width; ++x) bars.insert(at(x, 0));
  EXPECT_EQ(bars.size(), 8u);
  EXPECT_EQ(at(0, 59) * 1000 + at(99, 59), 0xFFFFFFu);  // the ramp below, from black to white
}

}  // namespace
