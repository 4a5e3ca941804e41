// What tvrtool reads from a file's name, which layout it reads the file as, how many bytes that
// takes, and why it refuses.
#include <gtest/gtest.h>

#include <tuple>

#include "DumpName.h"
#include "Layout.h"

namespace {

using tvrtool::Layout;
using tvrtool::LayoutRequest;
using tvrtool::PixelFormat;

std::string text(const Layout& l) {
  return std::string(tvrtool::nameOf(l.format)) + " " + std::to_string(l.width) + "x" + std::to_string(l.height) + " " +
         std::to_string(l.stride) + " " + std::to_string(l.scanline);
}

LayoutRequest request(std::optional<std::string> format, std::optional<uint32_t> width = {},
                      std::optional<uint32_t> height = {}, std::optional<uint32_t> stride = {},
                      std::optional<uint32_t> scanline = {}) {
  return LayoutRequest{std::move(format), width, height, stride, scanline};
}

TEST(LayoutTest, NameAndOptionsResolveToALayoutOrARefusal) {
  // Format, width x height, stride, scanline; or a part of the refusal.
  const std::tuple<std::string, LayoutRequest, std::string> cases[] = {
      {"1_src_1920x1080.nv12", {}, "nv12 1920x1080 1920 1080"},
      {"/data/dumps.d/12_a_b_2x2_640x480.nv21", {}, "nv21 640x480 640 480"},  // the last size counts
      {"dir_1_2/x12_9x4.rgb", {}, "rgb 9x4 27 4"},                            // no time stamp: a size in pixels
      {"1_src_16x4.YUV", {}, "nv12 16x4 16 4"},
      {"1_src_1920x1080.nv21", request({}, 1912, {}, {}, 1088), "nv21 1912x1080 1920 1088"},
      {"1_rgb_30x2.rgb", {}, "rgb 10x2 30 2"},
      {"1_t_12x2.f32", {}, "f32 4x2 12 2"},
      {"rgb_640x480.raw", {}, "rgb 640x480 1920 480"},
      {"t.bin", request("f32", 224, 224), "f32 224x224 672 224"},
      {"1_src_16x4.nv12", request("y", {}, 2, 8), "y 8x2 8 2"},
      {"1_src_16x4.bin", {}, "cannot tell the format from the name"},
      {"12_src_1920X1080.nv12", {}, "give --width and --height"},  // no size in the name
      {"12_src_-16x4.nv12", {}, "give --width and --height"},
      {"12_src_2147483648x4.nv12", {}, "give --width and --height"},
      {"12_src_16x4x2.nv12", {}, "give --width and --height"},
      {"a.nv12", request("png"), "unknown format 'png'"},
      {"a.nv12", {}, "give --width and --height"},
      {"1_src_16x4.rgb", {}, "not a multiple of 3: give --width"},
      {"1_src_0x4.nv12", {}, "the image is empty"},
      {"1_src_16x4.nv12", request({}, 18), "does not fit the stride 16"},
      {"1_src_16x3.nv12", {}, "nv12 needs an even width and height"},
      {"1_src_16x4.nv12", request({}, {}, {}, {}, 2), "scanline"},
      {"rgb_4x4.raw", request({}, {}, {}, {}, 8), "nv12 and nv21 only"},
      {"1_src_2000000000x4.y", {}, "at most 65535"},
  };
  for (const auto& [path, options, expected] : cases) {
    std::string error;
    const auto layout = tvrtool::resolveLayout(tvrtool::parseFileName(path), options, error);
    EXPECT_NE((layout ? text(*layout) : error).find(expected), std::string::npos)
        << path << ": " << (layout ? text(*layout) : error);
  }
  // A dump's own name, and its stamp, which orders a run's dumps.
  const tvrtool::FileName dump = tvrtool::parseFileName("/d/5000000000_a_b_2x2_640x480.nv21");
  EXPECT_EQ(std::tie(dump.name, dump.stamp), std::make_tuple(std::string("a_b_2x2"), uint64_t{5000000000}));
  EXPECT_EQ(tvrtool::parseFileName("99999999999999999999_s_8x4.y").stamp, 0u);
}

Layout nv12(uint32_t stride, uint32_t height, uint32_t scanline) {
  return {PixelFormat::Nv12, stride, height, stride, scanline};
}

TEST(LayoutTest, EachFormatTakesItsWholeAllocationAndMismatchesAreExplained) {
  EXPECT_EQ(tvrtool::byteSize(nv12(1920, 1080, 1088)), 1920u * 1088 * 3 / 2);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::Luma, 10, 3, 12, 3}), 36u);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::Rgb888, 10, 3, 32, 3}), 96u);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::RgbFloat, 65535, 65535, tvrtool::kMaxStride, 65535}),
            4ull * tvrtool::kMaxStride * 65535);
  const Layout layout = nv12(16, 4, 4);
  EXPECT_EQ(tvrtool::checkFileSize(layout, 96), "");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 0), "the file is empty");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 97), "the file has 97 bytes, but nv12 16x4, stride 16 takes 96");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 16 * 8 * 3 / 2),
            "the file has 192 bytes, but nv12 16x4, stride 16 takes 96; it would fit --scanline 8");
}

}  // namespace
