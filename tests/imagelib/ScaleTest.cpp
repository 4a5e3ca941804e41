#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <tuple>
#include <utility>

#include "Image.h"
#include "fastcv.h"

namespace imagelib {
namespace {

using ScaleFn = void (*)(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t, uint32_t, uint32_t);

ScaleFn scaleDown(uint32_t channels) { return channels == 1 ? fcvScaleDownMNu8 : fcvScaleDownMNInterleaveu8; }
ScaleFn scaleUp(uint32_t channels) { return channels == 1 ? fcvScaleUpPolyu8 : fcvScaleUpPolyInterleaveu8; }

// Runs `scale` from `src` (width and height in samples of `channels` bytes) into a new plane.
Plane run(ScaleFn scale, const Plane& src, uint32_t channels, uint32_t dstWidth, uint32_t dstHeight) {
  Plane dst(dstWidth * channels, dstHeight, 3);
  scale(src.data(), src.rowBytes() / channels, src.rows(), src.stride(), dst.data(), dstWidth, dstHeight, dst.stride());
  EXPECT_TRUE(dst.canariesIntact());
  return dst;
}

// --- Down-scaling -------------------------------------------------------------------------------

// Destination width, destination height, (horizontal, vertical) factor, bytes per sample.
using DownCase = std::tuple<uint32_t, uint32_t, std::pair<uint32_t, uint32_t>, uint32_t>;

class ScaleDownIntegerTest : public ::testing::TestWithParam<DownCase> {};

TEST_P(ScaleDownIntegerTest, EqualsRoundedBoxAverage) {
  const auto [width, height, factors, channels] = GetParam();
  const auto [fx, fy] = factors;
  Plane src(width * fx * channels, height * fy);
  fillNatural(src, width * 131 + height, 60);
  const Plane dst = run(scaleDown(channels), src, channels, width, height);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      for (uint32_t c = 0; c < channels; ++c) {
        uint32_t sum = 0;
        for (uint32_t j = 0; j < fy; ++j) {
          for (uint32_t i = 0; i < fx; ++i) sum += src.at((x * fx + i) * channels + c, y * fy + j);
        }
        const uint32_t box = fx * fy;
        ASSERT_EQ(dst.at(x * channels + c, y), (sum + box / 2) / box) << "x " << x << " y " << y << " channel " << c;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ScaleDownIntegerTest,
                         ::testing::Combine(::testing::ValuesIn(testWidths()), ::testing::ValuesIn(testHeights()),
                                            ::testing::Values(std::pair{1u, 1u}, std::pair{2u, 2u}, std::pair{3u, 1u},
                                                              std::pair{1u, 3u}, std::pair{4u, 2u},
                                                              std::pair{20u, 20u}),
                                            ::testing::Values(1u, 2u)));

// Source width, source height, destination width, destination height.
using RatioCase = std::tuple<uint32_t, uint32_t, uint32_t, uint32_t>;

class ScaleDownRatioTest : public ::testing::TestWithParam<RatioCase> {};

// The share of input sample j in output i along an axis of n inputs and m outputs.
double coverage(uint32_t j, uint32_t i, uint32_t n, uint32_t m) {
  const double begin = static_cast<double>(i) * n / m;
  const double end = static_cast<double>(i + 1) * n / m;
  return std::max(0.0, std::min(end, j + 1.0) - std::max(begin, static_cast<double>(j)));
}

TEST_P(ScaleDownRatioTest, MatchesAreaAverageAndKeepsChannelsApart) {
  const auto [srcWidth, srcHeight, dstWidth, dstHeight] = GetParam();
  for (uint32_t channels : {1u, 2u}) {
    Plane src(srcWidth * channels, srcHeight);
    fillNatural(src, srcWidth + channels, 40);
    if (channels == 2) {
      for (uint32_t y = 0; y < srcHeight; ++y) {
        for (uint32_t x = 0; x < srcWidth; ++x) src.at(2 * x + 1, y) = 200;  // Cr constant
      }
    }
    const Plane dst = run(scaleDown(channels), src, channels, dstWidth, dstHeight);
    for (uint32_t y = 0; y < dstHeight; ++y) {
      for (uint32_t x = 0; x < dstWidth; ++x) {
        double sum = 0;
        for (uint32_t j = 0; j < srcHeight; ++j) {
          for (uint32_t i = 0; i < srcWidth; ++i) {
            sum += coverage(i, x, srcWidth, dstWidth) * coverage(j, y, srcHeight, dstHeight) * src.at(i * channels, j);
          }
        }
        const double expected = sum * dstWidth * dstHeight / (static_cast<double>(srcWidth) * srcHeight);
        ASSERT_NEAR(dst.at(x * channels, y), expected, 0.5 + 1e-9) << "x " << x << " y " << y;
        if (channels == 2) {
          ASSERT_EQ(dst.at(2 * x + 1, y), 200) << "x " << x << " y " << y;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Ratios, ScaleDownRatioTest,
                         ::testing::Values(RatioCase{3, 3, 2, 2}, RatioCase{17, 5, 16, 3}, RatioCase{33, 9, 15, 4},
                                           RatioCase{16, 16, 3, 5}, RatioCase{100, 7, 33, 1}, RatioCase{20, 20, 1, 1}));

// --- Up-scaling ---------------------------------------------------------------------------------

// Source width, source height, destination width, destination height.
class ScaleUpTest : public ::testing::TestWithParam<RatioCase> {};

TEST_P(ScaleUpTest, ConstantImageStaysConstant) {
  const auto [srcWidth, srcHeight, dstWidth, dstHeight] = GetParam();
  for (uint32_t channels : {1u, 2u}) {
    Plane src(srcWidth * channels, srcHeight);
    for (uint32_t y = 0; y < srcHeight; ++y) {
      for (uint32_t x = 0; x < srcWidth * channels; ++x) src.at(x, y) = channels == 2 && x % 2 == 1 ? 201 : 77;
    }
    const Plane dst = run(scaleUp(channels), src, channels, dstWidth, dstHeight);
    for (uint32_t y = 0; y < dstHeight; ++y) {
      for (uint32_t x = 0; x < dstWidth * channels; ++x) {
        ASSERT_EQ(dst.at(x, y), channels == 2 && x % 2 == 1 ? 201 : 77) << x << ", " << y;
      }
    }
  }
}

// A ramp along x in the first channel and against y in the second must stay a ramp: monotone along
// its direction, constant across it.
TEST_P(ScaleUpTest, RampsStayMonotone) {
  const auto [srcWidth, srcHeight, dstWidth, dstHeight] = GetParam();
  Plane src(srcWidth * 2, srcHeight);
  for (uint32_t y = 0; y < srcHeight; ++y) {
    for (uint32_t x = 0; x < srcWidth; ++x) {
      src.at(2 * x, y) = static_cast<uint8_t>(20 + x * 200 / srcWidth);
      src.at(2 * x + 1, y) = static_cast<uint8_t>(230 - y * 200 / srcHeight);
    }
  }
  const Plane dst = run(fcvScaleUpPolyInterleaveu8, src, 2, dstWidth, dstHeight);
  for (uint32_t y = 0; y < dstHeight; ++y) {
    for (uint32_t x = 0; x < dstWidth; ++x) {
      if (x > 0) {
        ASSERT_LE(dst.at(2 * x - 2, y), dst.at(2 * x, y)) << x << ", " << y;
      }
      if (y > 0) {
        ASSERT_EQ(dst.at(2 * x, y - 1), dst.at(2 * x, y)) << x << ", " << y;
      }
      if (y > 0) {
        ASSERT_GE(dst.at(2 * x + 1, y - 1), dst.at(2 * x + 1, y)) << x << ", " << y;
      }
      if (x > 0) {
        ASSERT_EQ(dst.at(2 * x - 1, y), dst.at(2 * x + 1, y)) << x << ", " << y;
      }
    }
  }
  EXPECT_EQ(dst.at(0, 0), src.at(0, 0));
  EXPECT_EQ(dst.at(2 * dstWidth - 2, 0), src.at(2 * srcWidth - 2, 0));
}

// The cubic overshoots at a hard edge; the result saturates instead of wrapping around.
TEST_P(ScaleUpTest, HardEdgeSaturates) {
  const auto [srcWidth, srcHeight, dstWidth, dstHeight] = GetParam();
  if (srcWidth < 2) GTEST_SKIP() << "no edge in one column";
  Plane src(srcWidth, srcHeight);
  for (uint32_t y = 0; y < srcHeight; ++y) {
    for (uint32_t x = 0; x < srcWidth; ++x) src.at(x, y) = x < srcWidth / 2 ? 0 : 255;
  }
  const Plane dst = run(fcvScaleUpPolyu8, src, 1, dstWidth, dstHeight);
  for (uint32_t y = 0; y < dstHeight; ++y) {
    EXPECT_EQ(dst.at(0, y), 0);
    EXPECT_EQ(dst.at(dstWidth - 1, y), 255);
    for (uint32_t x = 1; x < dstWidth; ++x) ASSERT_LE(dst.at(x - 1, y), dst.at(x, y)) << x;
  }
}

TEST_P(ScaleUpTest, SameSizeCopies) {
  const auto [srcWidth, srcHeight, dstWidth, dstHeight] = GetParam();
  (void)dstWidth;
  (void)dstHeight;
  for (uint32_t channels : {1u, 2u}) {
    Plane src(srcWidth * channels, srcHeight);
    fillNatural(src, srcHeight, 90);
    EXPECT_EQ(run(scaleUp(channels), src, channels, srcWidth, srcHeight).pixels(), src.pixels());
  }
}

INSTANTIATE_TEST_SUITE_P(Ratios, ScaleUpTest,
                         ::testing::Values(RatioCase{1, 1, 3, 2}, RatioCase{2, 3, 4, 6}, RatioCase{3, 1, 15, 5},
                                           RatioCase{15, 5, 16, 5}, RatioCase{16, 8, 33, 17}, RatioCase{17, 3, 33, 8},
                                           RatioCase{5, 5, 100, 3}));

}  // namespace
}  // namespace imagelib
