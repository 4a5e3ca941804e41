// Cutting a frame's crop region into planes: which bytes land where, and refusals that copy nothing.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "LogCapture.h"
#include "RecordingProcessing.h"

namespace {

using tivora::test::LogCapture;
using tivora::test::RecordingProcessing;

constexpr uint8_t kCanary = 0xEE;

// A frame whose every byte tells its own position, so a copied row shows where it came from.
struct Frame {
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

  Frame(tvr_image_format_t format, uint32_t stride, uint32_t rows, int32_t x, int32_t y, uint32_t w, uint32_t h)
      : memory(static_cast<size_t>(stride) * rows * 2) {
    for (size_t i = 0; i < memory.size(); ++i) memory[i] = static_cast<uint8_t>(i * 7 + i / 251);
    record.buf.p_base = memory.data();
    record.format = format;
    record.stride = stride;
    record.offset[0] = 0;
    record.offset[1] = stride * rows;
    record.offset[2] = stride * rows + stride * rows / 2;
    record.crop = {{x, y}, {w, h}};
  }
};

// A destination plane with a canary column after each row and a canary row after the plane.
struct Plane {
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

  Plane(uint32_t w, uint32_t h) : memory(static_cast<size_t>(w + 3) * (h + 1), kCanary) {
    record.buf.p_base = memory.data();
    record.size = {w, h};
    record.stride = w + 3;
  }
  const uint8_t* row(uint32_t r) const { return memory.data() + static_cast<size_t>(record.stride) * r; }
  bool untouched() const {
    for (uint8_t byte : memory) {
      if (byte != kCanary) return false;
    }
    return true;
  }
  // Row r holds exactly `bytes` bytes from `from`, and the canaries after it are intact.
  void expectRow(uint32_t r, const uint8_t* from, uint32_t bytes) const {
    ASSERT_EQ(std::memcmp(row(r), from, bytes), 0) << "row " << r;
    for (uint32_t c = bytes; c < record.stride; ++c) ASSERT_EQ(row(r)[c], kCanary) << "row " << r << " col " << c;
  }
};

class YuvSplitTest : public ::testing::Test {
 protected:
  void SetUp() override { tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_INFO); }
  RecordingProcessing processing;
};

TEST_F(YuvSplitTest, SemiPlanarCropTakesLumaAndHalfHeightChromaFromTheFullStride) {
  for (tvr_image_format_t format : {TVR_FORMAT_NV12, TVR_FORMAT_NV21}) {
    Frame frame(format, 1024, 520, 8, 4, 640, 480);
    Plane y(640, 480), cc(640, 240);
    ASSERT_EQ(processing.splitYUV420SP(&frame.record, &y.record, &cc.record), 0);
    const uint8_t* base = frame.memory.data();
    y.expectRow(0, base + 4 * 1024 + 8, 640);
    cc.expectRow(0, base + frame.record.offset[1] + 2 * 1024 + 8, 640);
    for (uint32_t r = 1; r < 480; ++r) y.expectRow(r, base + (4 + r) * 1024 + 8, 640);
    for (uint32_t r = 1; r < 240; ++r) cc.expectRow(r, base + frame.record.offset[1] + (2 + r) * 1024 + 8, 640);
    for (uint32_t c = 0; c < y.record.stride; ++c) EXPECT_EQ(y.row(480)[c], kCanary);
  }
}

TEST_F(YuvSplitTest, PlanarCropTakesHalfSizedChromaFromEachPlane) {
  Frame frame(TVR_FORMAT_YUV420P_UV, 1024, 500, 10, 6, 640, 480);
  Plane y(640, 480), u(320, 240), v(320, 240);
  ASSERT_EQ(processing.splitYUV420P(&frame.record, &y.record, &u.record, &v.record), 0);
  const uint8_t* base = frame.memory.data();
  for (uint32_t r = 0; r < 480; ++r) y.expectRow(r, base + (6 + r) * 1024 + 10, 640);
  for (uint32_t r = 0; r < 240; ++r) {
    u.expectRow(r, base + frame.record.offset[1] + (3 + r) * 1024 + 5, 320);
    v.expectRow(r, base + frame.record.offset[2] + (3 + r) * 1024 + 5, 320);
  }
}

// Every width from one byte to more than a 1080p row, odd crop corners and heights, destinations
// wider than their rows: each byte comes from where the crop says, and nothing lands beside it.
TEST_F(YuvSplitTest, ManyWidthsAndCornersCopyExactlyTheCrop) {
  for (uint32_t w : {1u, 2u, 3u, 15u, 16u, 17u, 33u, 255u, 256u, 1921u}) {
    for (int32_t x : {0, 1, 7}) {
      for (uint32_t h : {2u, 6u}) {
        const int32_t y = x == 7 ? 3 : 0;  // an odd row: the chroma rows start at y / 2
        const uint32_t stride = w + static_cast<uint32_t>(x) + 9;
        Frame nv12(TVR_FORMAT_NV12, stride, h + 4, x, y, w, h);
        Plane luma(w, h), chroma(w, h / 2);
        ASSERT_EQ(processing.splitYUV420SP(&nv12.record, &luma.record, &chroma.record), 0);
        const uint8_t* base = nv12.memory.data();
        const auto at = [&](uint32_t row) { return base + row * stride + static_cast<uint32_t>(x); };
        for (uint32_t r = 0; r < h; ++r) luma.expectRow(r, at(static_cast<uint32_t>(y) + r), w);
        for (uint32_t r = 0; r < h / 2; ++r) {
          chroma.expectRow(r, at(static_cast<uint32_t>(y / 2) + r) + nv12.record.offset[1], w);
        }

        Frame planar(TVR_FORMAT_YUV420P_VU, stride, h + 4, x, y, w, h);
        Plane y2(w, h), u(w / 2, h / 2), v(w / 2, h / 2);
        if (w % 2 != 0) {  // no half-width chroma plane fits an odd width
          EXPECT_EQ(processing.splitYUV420P(&planar.record, &y2.record, &u.record, &v.record), 12);
          continue;
        }
        ASSERT_EQ(processing.splitYUV420P(&planar.record, &y2.record, &u.record, &v.record), 0);
        const uint8_t* p = planar.memory.data();
        for (uint32_t r = 0; r < h; ++r) y2.expectRow(r, p + (static_cast<uint32_t>(y) + r) * stride + x, w);
        for (uint32_t r = 0; r < h / 2; ++r) {
          const uint32_t start = (static_cast<uint32_t>(y / 2) + r) * stride + static_cast<uint32_t>(x / 2);
          u.expectRow(r, p + planar.record.offset[1] + start, w / 2);
          v.expectRow(r, p + planar.record.offset[2] + start, w / 2);
        }
      }
    }
  }
}

// A crop that starts above the frame's first row (the host's base pointer may sit inside a larger
// allocation) reads the rows before it; chroma starts at y / 2 rounded toward zero.
TEST_F(YuvSplitTest, NegativeCropRowReadsTheRowsBeforeThePlane) {
  Frame frame(TVR_FORMAT_NV12, 64, 24, 4, -3, 16, 8);
  const uint8_t* memory = frame.memory.data();
  frame.record.buf.p_base += 4 * 64;  // four rows of the allocation lie before the frame
  frame.record.offset[1] = 12 * 64;
  Plane y(16, 8), cc(16, 4);
  ASSERT_EQ(processing.splitYUV420SP(&frame.record, &y.record, &cc.record), 0);
  for (uint32_t r = 0; r < 8; ++r) y.expectRow(r, memory + (4 - 3 + r) * 64 + 4, 16);
  for (uint32_t r = 0; r < 4; ++r) cc.expectRow(r, memory + (4 + 12 - 1 + r) * 64 + 4, 16);
}

TEST_F(YuvSplitTest, EmptyCropCopiesNothing) {
  Frame frame(TVR_FORMAT_NV12, 64, 8, 0, 0, 0, 0);
  Plane y(0, 0), cc(0, 0), u(0, 0), v(0, 0);
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, &y.record, &cc.record), 0);
  frame.record.format = TVR_FORMAT_YUV420P_VU;
  EXPECT_EQ(processing.splitYUV420P(&frame.record, &y.record, &u.record, &v.record), 0);
  EXPECT_TRUE(y.untouched() && cc.untouched() && u.untouched() && v.untouched());
}

std::string error(const char* function, const std::string& message) {
  return std::string("[TVR ERROR] RecordingProcessing.") + function + ": " + message;
}

TEST_F(YuvSplitTest, SemiPlanarRefusalsInOrder) {
  Frame frame(TVR_FORMAT_NV12, 1024, 520, 8, 4, 640, 481);
  Plane y(640, 481), cc(640, 240), wrongY(640, 480);
  LogCapture capture;
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, &y.record, nullptr), 12);
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, &wrongY.record, &cc.record), 12);
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, &y.record, &cc.record), 12);  // 481 rows, 240 x 2 chroma
  frame.record.crop.size.h = 480;
  Plane y480(640, 480);
  frame.record.format = TVR_FORMAT_YUV420P_UV;
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, &y480.record, &cc.record), 12);
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{
                error("splitYUV420SP", tivora::format("Source image(%p) or destination Y(%p) / CC(%p) is null",
                                                      static_cast<void*>(&frame.record), static_cast<void*>(&y.record),
                                                      static_cast<void*>(nullptr))),
                error("splitYUV420SP", "Source image size(640 x 481) and destination Y size(640 x 480) are not equal"),
                error("splitYUV420SP", "Invarid CC size,source(640 x 481) dstination(640 x 480)"),
                error("splitYUV420SP", "Invalid source format 0")}));
  EXPECT_TRUE(y.untouched() && cc.untouched() && wrongY.untouched() && y480.untouched());
}

TEST_F(YuvSplitTest, PlanarRefusalsInOrder) {
  Frame frame(TVR_FORMAT_NV12, 1024, 500, 0, 0, 640, 480);
  Plane y(640, 480), u(320, 240), v(320, 240), small(320, 239);
  LogCapture capture;
  EXPECT_EQ(processing.splitYUV420P(&frame.record, &y.record, &u.record, nullptr), 12);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, &small.record, &u.record, &v.record), 12);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, &y.record, &small.record, &v.record), 12);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, &y.record, &u.record, &small.record), 12);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, &y.record, &u.record, &v.record), 12);  // nv12 is not planar
  EXPECT_EQ(
      capture.texts(),
      (std::vector<std::string>{
          error("splitYUV420P", tivora::format("Source image(%p) or destination Y(%p) / U(%p)/ V(%p) is null",
                                               static_cast<void*>(&frame.record), static_cast<void*>(&y.record),
                                               static_cast<void*>(&u.record), static_cast<void*>(nullptr))),
          error("splitYUV420P", "Source image size(640 x 480) and destination Y size(320 x 239) not equal"),
          error("splitYUV420P", "Source image size (640 x 480) and twice destination U size(640 x 478) not equal"),
          error("splitYUV420P", "Source image size(640 x 480) and twice destination V size(640 x 478) not equal"),
          error("splitYUV420P", "Source format(2) is not supported")}));
  EXPECT_TRUE(y.untouched() && u.untouched() && v.untouched() && small.untouched());
}

}  // namespace
