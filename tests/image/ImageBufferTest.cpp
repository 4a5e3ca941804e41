// Image buffers: sizes, strides and plane offsets per format, and the allocator per format.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "RecordingProcessing.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

struct Expected {
  uint32_t width, height, stride;
  tvr_image_format_t format;
  uint64_t pixelSize;
  std::string record;  // "<buf_size> <stride> <offset 0>,<1>,<2>"
};

// clang-format off
const Expected kFormats[] = {
    // 4:2:0: 3/2 of the luma plane, its stride rounded to even (also below the width); planes at S, 5S/4 or S, S.
    {1920,  1080,  1920, TVR_FORMAT_NV12,        1, "3110400 1920 0,2073600,0"},
    {1921,  1080,  1921, TVR_FORMAT_NV21,        1, "3110400 1920 0,2073600,0"},
    {640,   480,   600,  TVR_FORMAT_YUV420P_UV,  1, "460800 640 0,307200,384000"},  // stride raised to the width
    {640,   480,   640,  TVR_FORMAT_YUV420P_VU,  1, "460800 640 0,307200,307200"},
    {64,    10,    64,   TVR_FORMAT_NV12,        4, "3840 64 0,640,0"},
    {65536, 65537, 65536, TVR_FORMAT_NV12,       1, "98304 65536 0,65536,0"},  // 32-bit sizes wrap
    // Packed: pixel size x height x stride, no rounding, no offsets.
    {101,   9,     103,  TVR_FORMAT_YUV420SP_UV_TP10,      1, "927 103 0,0,0"},
    {100,   10,    128,  TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 2, "2560 128 0,0,0"},
    // No pixels for the others.
    {64,    64,    64,   TVR_FORMAT_FASTCV,                 1, "0 64 0,0,0"},
    {64,    64,    64,   static_cast<tvr_image_format_t>(-1), 1, "0 64 0,0,0"},
};
// clang-format on

TEST(ImageBufferTest, RecordDescribesItsPixels) {
  tivora::test::RecordingProcessing processing;
  for (const Expected& e : kFormats) {
    tvr_image_buf_t* image = processing.createImageBuf(e.width, e.height, e.stride, e.format, e.pixelSize);
    ASSERT_NE(image, nullptr);
    const tvr_image_buf_t& r = *image;
    EXPECT_EQ(std::to_string(r.buf.buf_size) + " " + std::to_string(r.stride) + " " + std::to_string(r.offset[0]) +
                  "," + std::to_string(r.offset[1]) + "," + std::to_string(r.offset[2]),
              e.record);
    EXPECT_TRUE(r.buf.heap_id == 0 && r.buf.native == nullptr && r.buf.native_handle == nullptr &&
                r.format == e.format && r.size.w == e.width && r.size.h == e.height && r.scanline == e.height &&
                r.crop.pos.x == 0 && r.crop.pos.y == 0 && r.crop.size.w == e.width && r.crop.size.h == e.height)
        << e.record;
    std::memset(r.buf.p_base, 0x5A, r.buf.buf_size);  // all of it is usable (ASan checks)
    processing.deleteImageBuf(image);
  }
}

TEST(ImageBufferTest, OnlyTheAlignedFormatUsesTheImageLibrarysAllocator) {
  tivora::test::RecordingProcessing processing;
  fastcv_stub::reset();
  tvr_image_buf_t* packed = processing.createImageBuf(100, 10, 100, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  tvr_image_buf_t* aligned = processing.createImageBuf(100, 10, 100, TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 1);
  EXPECT_EQ(fastcv_stub::liveAllocations(), 1);
  processing.deleteImageBuf(aligned);
  processing.deleteImageBuf(packed);
  processing.deleteImageBuf(nullptr);
  EXPECT_EQ(fastcv_stub::liveAllocations(), 0);
  const auto journal = fastcv_stub::journal();
  ASSERT_EQ(journal.size(), 2u);
  EXPECT_EQ(journal[0].name + "(" + journal[0].args + ")", "fcvMemAlloc(1000, 16)");
  EXPECT_EQ(journal[1].name, "fcvMemFree");
  fastcv_stub::failMemAlloc(1);
  EXPECT_EQ(processing.createImageBuf(16, 16, 16, TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 1), nullptr);
  EXPECT_EQ(fastcv_stub::liveAllocations(), 0);
}

}  // namespace
