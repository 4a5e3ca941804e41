// How tvrtool compare pairs two runs' dumps, reads them as samples and measures their difference.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "DumpDifference.h"
#include "DumpPairing.h"

namespace {

using tvrtool::DumpFile;
using tvrtool::parseFileName;

std::vector<DumpFile> run(const std::vector<std::string>& names) {
  std::vector<DumpFile> dumps;
  for (const std::string& name : names) dumps.push_back({name, parseFileName(name)});
  return dumps;
}

TEST(DumpComparisonTest, PairsByNameAndFrameInPipelineOrder) {
  // B has a stage A lacks (gain, after rgb) and one frame's rgb less.
  const auto a = run({"1_src_4x2.nv12", "2_rgb_6x2.rgb", "3_out_3x1.f32", "14_src_4x2.nv12", "15_rgb_6x2.rgb"});
  const auto b = run({"7_src_4x2.nv12", "8_rgb_6x2.rgb", "9_gain_4x2.y", "10_out_3x1.f32", "11_src_4x2.nv12"});
  const tvrtool::Pairing pairing = tvrtool::pairDumps(a, b);
  EXPECT_EQ(pairing.stages, (std::vector<std::string>{"src", "rgb", "gain", "out"}));
  std::string pairs;
  for (const tvrtool::DumpPair& pair : pairing.pairs) {
    pairs += std::to_string(pair.frame) + " " + pair.stage + " " + (pair.a ? pair.a->path : "-") + " " +
             (pair.b ? pair.b->path : "-") + "\n";
  }
  EXPECT_EQ(pairs,
            "1 src 1_src_4x2.nv12 7_src_4x2.nv12\n1 rgb 2_rgb_6x2.rgb 8_rgb_6x2.rgb\n1 gain - 9_gain_4x2.y\n"
            "1 out 3_out_3x1.f32 10_out_3x1.f32\n2 src 14_src_4x2.nv12 11_src_4x2.nv12\n2 rgb 15_rgb_6x2.rgb -\n");
}

TEST(DumpComparisonTest, ReadsEachFormatAsItsPlanesOrChannelsAndRefusesWhatDoesNotFit) {
  const std::tuple<std::string, uint64_t, std::string> cases[] = {
      {"1_a_4x2.nv12", 12, "Y@0 4x2 Cb@8 2x1 Cr@9 2x1"},
      {"1_a_4x2.nv21", 18, "Y@0 4x2 Cr@12 2x1 Cb@13 2x1"},  // allocated with 3 rows
      {"1_a_6x2.rgb", 12, "R@0 2x2 G@1 2x2 B@2 2x2"},
      {"1_a_6x1.f32", 24, "c0@0 2x1 c1@1 2x1 c2@2 2x1"},
      {"1_a_5x1.f32", 20, "element@0 5x1"},
      {"1_a_4x2.nv12", 5, "truncated: 5 bytes, not 12"},
      {"1_a_6x2.rgb", 13, "too large: 13 bytes, not 12"},
  };
  for (const auto& [name, bytes, expected] : cases) {
    std::string error, read;
    const auto samples = tvrtool::dumpSamples(parseFileName(name), bytes, error);
    for (const auto& c : samples ? samples->components : std::vector<tvrtool::SampleComponent>{}) {
      read += (read.empty() ? "" : " ") + c.name + "@" + std::to_string(c.offset) + " " + std::to_string(c.width) + "x" +
              std::to_string(c.height);
    }
    EXPECT_EQ(samples ? read : error, expected) << name;
  }
}

TEST(DumpComparisonTest, MeasuresEachComponentAndFindsTheFirstDifferenceInTheFilesOrder) {
  std::string error;
  // NV12 4x2: luma identical, one Cr sample apart by 40 (chroma x 1), one luma by 2 within tolerance.
  const auto nv12 = *tvrtool::dumpSamples(parseFileName("1_a_4x2.nv12"), 12, error);
  const uint8_t a[12] = {10, 20, 30, 40, 50, 60, 70, 80, 128, 128, 128, 128};
  uint8_t b[12];
  std::memcpy(b, a, sizeof b);
  b[11] = 168;
  b[2] = 32;
  const tvrtool::Difference d = tvrtool::compareDumps(nv12, a, nv12, b, 2);
  EXPECT_EQ(std::tie(d.samples, d.differing, d.maxAbs, d.first), std::make_tuple(uint64_t{12}, uint64_t{1}, 40.0, std::string("x 1, y 0, Cr")));
  EXPECT_DOUBLE_EQ(d.meanAbs, 42.0 / 12);
  EXPECT_NEAR(d.psnr, 10 * std::log10(255.0 * 255 * 12 / (40 * 40 + 2 * 2)), 1e-9);
  // The heat map: A's picture 16 times as large, dimmed; the Cr sample's 2x2 pixels painted.
  ASSERT_EQ(d.heat.width * 100 + d.heat.height, 6432u);
  const auto pixel = [&](uint32_t x, uint32_t y) { return &d.heat.pixels[(size_t{y} * 64 + x) * 3]; };
  EXPECT_TRUE(pixel(0, 0)[0] == pixel(0, 0)[1] && pixel(0, 0)[0] < 64);
  EXPECT_EQ(pixel(63, 31)[0] + pixel(63, 31)[1] + pixel(63, 31)[2], 3 * 255);  // the largest difference: white

  // Floats: NaN meets NaN as equal, a number as infinitely far.
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float fa[3] = {nan, 1, 2}, fb[3] = {nan, nan, 2};
  const auto f32 = *tvrtool::dumpSamples(parseFileName("1_a_3x1.f32"), 12, error);
  const tvrtool::Difference f = tvrtool::compareDumps(f32, reinterpret_cast<const uint8_t*>(fa), f32,
                                                      reinterpret_cast<const uint8_t*>(fb), 0);
  EXPECT_EQ(std::tie(f.differing, f.first), std::make_tuple(uint64_t{1}, std::string("x 0, y 0, c1")));
  EXPECT_TRUE(std::isinf(f.maxAbs));
}

}  // namespace
