// Image buffers: sizes, strides and plane offsets per format, the allocator per format, the
// warnings, and the allocation failure.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "TivoraUtil.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

using tivora::test::LogCapture;
using tivora::test::RecordingProcessing;

std::string warn(const std::string& message) { return "[TVR WARN] RecordingProcessing.createImageBuf: " + message; }

struct Expected {
  uint32_t width, height, stride;
  tvr_image_format_t format;
  uint64_t pixelSize;
  uint32_t size, storedStride, offset1, offset2;
};

class ImageBufferTest : public ::testing::TestWithParam<Expected> {
 protected:
  void SetUp() override {
    tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_VERBOSE);
    fastcv_stub::reset();
  }
  void TearDown() override { fastcv_stub::reset(); }
  RecordingProcessing processing;
};

TEST_P(ImageBufferTest, RecordDescribesItsPixels) {
  const Expected& e = GetParam();
  tvr_image_buf_t* image = processing.createImageBuf(e.width, e.height, e.stride, e.format, e.pixelSize);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->buf.buf_size, e.size);
  EXPECT_EQ(image->buf.heap_id, 0);
  EXPECT_EQ(image->buf.native, nullptr);
  EXPECT_EQ(image->buf.native_handle, nullptr);
  EXPECT_EQ(image->format, e.format);
  EXPECT_EQ(image->size.w, e.width);
  EXPECT_EQ(image->size.h, e.height);
  EXPECT_EQ(image->stride, e.storedStride);
  EXPECT_EQ(image->scanline, e.height);
  EXPECT_EQ(image->offset[0], 0u);
  EXPECT_EQ(image->offset[1], e.offset1);
  EXPECT_EQ(image->offset[2], e.offset2);
  EXPECT_EQ(image->crop.pos.x, 0);
  EXPECT_EQ(image->crop.pos.y, 0);
  EXPECT_EQ(image->crop.size.w, e.width);
  EXPECT_EQ(image->crop.size.h, e.height);
  // The whole allocation is usable (ASan reports a short one).
  if (e.size != 0) std::memset(image->buf.p_base, 0x5A, e.size);
  processing.deleteImageBuf(image);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ImageBufferTest,
    ::testing::Values(
        // 4:2:0: size is 3/2 of the (even) luma plane; the plane offsets per format.
        Expected{1920, 1080, 1920, TVR_FORMAT_NV12, 1, 3110400, 1920, 2073600, 0},
        Expected{1920, 1080, 1920, TVR_FORMAT_NV21, 1, 3110400, 1920, 2073600, 0},
        Expected{1921, 1080, 1921, TVR_FORMAT_NV12, 1, 3110400, 1920, 2073600, 0},  // stride rounded below width
        Expected{640, 480, 600, TVR_FORMAT_YUV420P_UV, 1, 460800, 640, 307200, 384000},
        Expected{640, 480, 640, TVR_FORMAT_YUV420P_VU, 1, 460800, 640, 307200, 307200},  // both chroma at S
        Expected{64, 10, 64, TVR_FORMAT_NV12, 4, 3840, 64, 640, 0},                    // float samples
        // The luma plane's 32-bit product wraps; the byte size is then 3/2 of what is left.
        Expected{65536, 65537, 65536, TVR_FORMAT_NV12, 1, 98304, 65536, 65536, 0},
        // Packed: pixel size x height x stride, no rounding, no offsets.
        Expected{100, 10, 100, TVR_FORMAT_YUV420SP_UV_UBWC, 4, 4000, 100, 0, 0},
        Expected{101, 9, 103, TVR_FORMAT_YUV420SP_UV_TP10, 1, 927, 103, 0, 0},
        Expected{100, 10, 128, TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 2, 2560, 128, 0, 0},
        // No pixels for the others.
        Expected{64, 64, 64, TVR_FORMAT_YUV400, 1, 0, 64, 0, 0}, Expected{64, 64, 64, TVR_FORMAT_RAW, 1, 0, 64, 0, 0},
        Expected{64, 64, 64, TVR_FORMAT_FASTCV, 1, 0, 64, 0, 0},
        Expected{64, 64, 64, static_cast<tvr_image_format_t>(-1), 1, 0, 64, 0, 0}));

TEST_F(ImageBufferTest, OnlyTheAlignedFormatUsesTheImageLibraryAllocator) {
  tvr_image_buf_t* packed = processing.createImageBuf(100, 10, 100, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  tvr_image_buf_t* aligned = processing.createImageBuf(100, 10, 100, TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 1);
  tvr_image_buf_t* named = processing.createImageBuf(100, 10, 100, TVR_FORMAT_FASTCV, 1);
  ASSERT_TRUE(packed && aligned && named);
  EXPECT_EQ(fastcv_stub::liveAllocations(), 1);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(aligned->buf.p_base) % 16, 0u);
  const auto journal = fastcv_stub::journal();
  ASSERT_EQ(journal.size(), 1u);
  EXPECT_EQ(journal[0].name, "fcvMemAlloc");
  EXPECT_EQ(journal[0].args, "1000, 16");
  processing.deleteImageBuf(aligned);
  EXPECT_EQ(fastcv_stub::liveAllocations(), 0);
  EXPECT_EQ(fastcv_stub::journal().back().name, "fcvMemFree");
  processing.deleteImageBuf(packed);
  processing.deleteImageBuf(named);
  processing.deleteImageBuf(nullptr);
  EXPECT_EQ(fastcv_stub::journal().size(), 2u);
}

TEST_F(ImageBufferTest, DoubtfulArgumentsWarnInOrderAndStillMakeARecord) {
  LogCapture capture;
  tvr_image_buf_t* image = processing.createImageBuf(0, 0, 0, TVR_FORMAT_NV12, 0);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->buf.buf_size, 0u);
  processing.deleteImageBuf(image);
  image = processing.createImageBuf(640, 480, 600, TVR_FORMAT_NV12, 1);
  processing.deleteImageBuf(image);
  EXPECT_EQ(capture.texts(), (std::vector<std::string>{warn("Pixel size is less than 1"),
                                                       warn("Image size is less than 1"),
                                                       warn("Stride is less than width, over-written it")}));
}

TEST_F(ImageBufferTest, StrideIsRaisedToTheWidthEvenWhenWarningsAreOff) {
  tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_ERROR);
  LogCapture capture;
  tvr_image_buf_t* image = processing.createImageBuf(100, 10, 50, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->stride, 100u);
  EXPECT_EQ(image->buf.buf_size, 1000u);
  processing.deleteImageBuf(image);
  EXPECT_TRUE(capture.texts().empty());
}

TEST_F(ImageBufferTest, FailedAllocationReturnsNullWithTheStrideAndSizeItTried) {
  fastcv_stub::failMemAlloc(1);
  LogCapture capture;
  EXPECT_EQ(processing.createImageBuf(320, 240, 300, TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 2), nullptr);
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{warn("Stride is less than width, over-written it"),
                                      "[TVR ERROR] RecordingProcessing.createImageBuf: Failed to allocate image "
                                      "buffer W(320) / H(240) Stride(320) Size(153600)"}));
  EXPECT_EQ(fastcv_stub::liveAllocations(), 0);
}

TEST_F(ImageBufferTest, WithoutALoggerNothingIsLoggedAndTheResultIsTheSame) {
  processing.unbind(/*alsoLogger=*/true);
  LogCapture capture;
  tvr_image_buf_t* image = processing.createImageBuf(7, 3, 1, TVR_FORMAT_NV12, 1);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->stride, 6u);  // raised to 7, rounded to 6
  EXPECT_EQ(image->buf.buf_size, 27u);
  processing.deleteImageBuf(image);
  fastcv_stub::failMemAlloc(1);
  EXPECT_EQ(processing.createImageBuf(16, 16, 16, TVR_FORMAT_YUV420SP_UV_TP10_UBWC, 1), nullptr);
  EXPECT_TRUE(capture.texts().empty());
}

TEST(ImageEnumConversionTest, FormatNamesFollowTheirOwnTable) {
  const std::vector<std::string> names{"YUV420P_UV",       "YUV420P_VU",           "nv12",   "nv21", "YUV420SP_UV_UBWC",
                                       "YUV420SP_UV_TP10", "YUV420SP_UV_TP10_UBWC", "YUV400", "RAW",  "FastCV"};
  for (int32_t value = 0; value < 10; ++value) {
    EXPECT_EQ(tivora::convert(static_cast<tvr_image_format_t>(value)), names[static_cast<size_t>(value)]);
  }
  EXPECT_EQ(tivora::convert(static_cast<tvr_image_format_t>(10)), "");
  EXPECT_EQ(tivora::convert(static_cast<tvr_image_format_t>(-1)), "");
}

TEST(ImageEnumConversionTest, RotationsMapToClockwiseQuarterTurns) {
  EXPECT_EQ(tivora::convert(TVR_ROTATION_0), FASTCV_ROTATE_90);
  EXPECT_EQ(tivora::convert(TVR_ROTATION_90), FASTCV_ROTATE_90);
  EXPECT_EQ(tivora::convert(TVR_ROTATION_180), FASTCV_ROTATE_180);
  EXPECT_EQ(tivora::convert(TVR_ROTATION_270), FASTCV_ROTATE_270);
  EXPECT_EQ(tivora::convert(static_cast<tvr_rotation_t>(4)), FASTCV_ROTATE_90);
  EXPECT_EQ(tivora::convert(static_cast<tvr_rotation_t>(-2)), FASTCV_ROTATE_90);
}

}  // namespace
