// Which layout tvrtool reads a file as, how many bytes that takes, and why it refuses.
#include <gtest/gtest.h>

#include "Layout.h"

namespace {

using tvrtool::Layout;
using tvrtool::LayoutRequest;
using tvrtool::PixelFormat;

struct ResolveCase {
  const char* what;
  std::string path;
  LayoutRequest request;
  Layout layout;      // when error is empty
  std::string error;  // a part of the message
};
void PrintTo(const ResolveCase& c, std::ostream* os) { *os << c.what; }

class LayoutResolveTest : public ::testing::TestWithParam<ResolveCase> {};

TEST_P(LayoutResolveTest, Resolves) {
  const ResolveCase& c = GetParam();
  std::string error;
  const auto layout = tvrtool::resolveLayout(tvrtool::parseFileName(c.path), c.request, error);
  if (!c.error.empty()) {
    EXPECT_FALSE(layout);
    EXPECT_NE(error.find(c.error), std::string::npos) << error;
    return;
  }
  ASSERT_TRUE(layout) << error;
  EXPECT_EQ(layout->format, c.layout.format);
  EXPECT_EQ(layout->width, c.layout.width);
  EXPECT_EQ(layout->height, c.layout.height);
  EXPECT_EQ(layout->stride, c.layout.stride);
  EXPECT_EQ(layout->scanline, c.layout.scanline);
}

LayoutRequest request(std::optional<std::string> format, std::optional<uint32_t> width = {},
                      std::optional<uint32_t> height = {}, std::optional<uint32_t> stride = {},
                      std::optional<uint32_t> scanline = {}) {
  return LayoutRequest{std::move(format), width, height, stride, scanline};
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LayoutResolveTest,
    ::testing::Values(
        ResolveCase{
            "DumpWidthIsTheStride", "1_src_1920x1080.nv12", {}, {PixelFormat::Nv12, 1920, 1080, 1920, 1080}, ""},
        ResolveCase{"YuvReadsAsNv12", "1_src_16x4.YUV", {}, {PixelFormat::Nv12, 16, 4, 16, 4}, ""},
        ResolveCase{"DumpWithWidthAndScanline",
                    "1_src_1920x1080.nv21",
                    request({}, 1912, {}, {}, 1088),
                    {PixelFormat::Nv21, 1912, 1080, 1920, 1088},
                    ""},
        ResolveCase{"RgbDumpStrideIsBytes", "1_rgb_30x2.rgb", {}, {PixelFormat::Rgb888, 10, 2, 30, 2}, ""},
        ResolveCase{"FloatDumpStrideIsFloats", "1_t_12x2.f32", {}, {PixelFormat::RgbFloat, 4, 2, 12, 2}, ""},
        ResolveCase{"RawNameGivesWidth", "rgb_640x480.raw", {}, {PixelFormat::Rgb888, 640, 480, 1920, 480}, ""},
        ResolveCase{
            "PlainNameWithOptions", "t.bin", request("f32", 224, 224), {PixelFormat::RgbFloat, 224, 224, 672, 224}, ""},
        ResolveCase{
            "OptionsOverrideTheName", "1_src_16x4.nv12", request("y", {}, 2, 8), {PixelFormat::Luma, 8, 2, 8, 2}, ""},
        ResolveCase{"UnknownExtension", "1_src_16x4.bin", {}, {}, "cannot tell the format from the name"},
        ResolveCase{"UnknownFormatOption", "a.nv12", request("png"), {}, "unknown format 'png'"},
        ResolveCase{"PlainNameWithoutSize", "a.nv12", {}, {}, "give --width and --height"},
        ResolveCase{"RgbStrideNotOfPixels", "1_src_16x4.rgb", {}, {}, "not a multiple of 3: give --width"},
        ResolveCase{"ZeroSize", "1_src_0x4.nv12", {}, {}, "the image is empty"},
        ResolveCase{"WidthBeyondStride", "1_src_16x4.nv12", request({}, 18), {}, "does not fit the stride 16"},
        ResolveCase{"OddYuvHeight", "1_src_16x3.nv12", {}, {}, "nv12 needs an even width and height"},
        ResolveCase{"ScanlineBelowHeight", "1_src_16x4.nv12", request({}, {}, {}, {}, 2), {}, "scanline"},
        ResolveCase{"ScanlineOnRgb", "rgb_4x4.raw", request({}, {}, {}, {}, 8), {}, "nv12 and nv21 only"},
        ResolveCase{"HugeNameDimensions", "1_src_2000000000x4.y", {}, {}, "at most 65535"}));

Layout nv12(uint32_t stride, uint32_t height, uint32_t scanline) {
  return {PixelFormat::Nv12, stride, height, stride, scanline};
}

TEST(LayoutSizeTest, EachFormatTakesItsWholeAllocation) {
  EXPECT_EQ(tvrtool::byteSize(nv12(1920, 1080, 1080)), 3110400u);
  EXPECT_EQ(tvrtool::byteSize(nv12(1920, 1080, 1088)), 1920u * 1088 * 3 / 2);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::Luma, 10, 3, 12, 3}), 36u);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::Rgb888, 10, 3, 32, 3}), 96u);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::RgbFloat, 10, 3, 32, 3}), 384u);
  EXPECT_EQ(tvrtool::byteSize({PixelFormat::RgbFloat, 65535, 65535, tvrtool::kMaxStride, 65535}),
            4ull * tvrtool::kMaxStride * 65535);
}

TEST(LayoutSizeTest, MismatchesAreExplained) {
  const Layout layout = nv12(16, 4, 4);
  EXPECT_EQ(tvrtool::checkFileSize(layout, 96), "");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 0), "the file is empty");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 95),
            "the file has 95 bytes, but nv12 16x4, stride 16 takes 96 (truncated?)");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 97), "the file has 97 bytes, but nv12 16x4, stride 16 takes 96");
  EXPECT_EQ(tvrtool::checkFileSize(layout, 16 * 8 * 3 / 2),
            "the file has 192 bytes, but nv12 16x4, stride 16 takes 96; it would fit --scanline 8");
}

}  // namespace
