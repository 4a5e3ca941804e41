// Cutting a frame's crop region into planes: which bytes land where, and refusals that copy nothing.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "Images.h"
#include "RecordingProcessing.h"

namespace {

using tivora::test::Nv12Frame;
using tivora::test::Plane;

// A frame of `rows` rows whose every byte tells its own position, so a copied row shows where it
// came from; chroma planes of as many rows at offset[1] and (planar) offset[2].
Nv12Frame frameOf(tvr_image_format_t format, uint32_t stride, uint32_t rows, int32_t x, int32_t y, uint32_t w,
                  uint32_t h) {
  Nv12Frame frame(stride, 2 * rows, stride, 0, 0, 0);
  for (size_t i = 0; i < frame.memory.size(); ++i) frame.memory[i] = static_cast<uint8_t>(i * 7 + i / 251);
  frame.record.format = format;
  frame.record.offset[1] = stride * rows;
  frame.record.offset[2] = stride * rows * 2;
  frame.record.crop = {{x, y}, {w, h}};
  return frame;
}
const uint8_t* at(const Nv12Frame& frame, int plane, uint32_t row, uint32_t column) {
  return frame.record.buf.p_base + frame.record.offset[plane] + row * frame.record.stride + column;
}

// Row r of `plane` holds the bytes from `source(r)`, and the canaries around the rows are intact.
void expectRows(const Plane& plane, const std::function<const uint8_t*(uint32_t)>& source) {
  for (uint32_t r = 0; r < plane.record.size.h; ++r) {
    ASSERT_EQ(std::memcmp(plane.row(r), source(r), plane.record.size.w), 0) << "row " << r;
  }
  EXPECT_TRUE(plane.untouchedAround());
}

// Every width from one byte to more than a 1080p row, odd crop corners and heights: each byte comes
// from where the crop says (chroma from y / 2, and for planar frames x / 2), nothing lands beside it.
TEST(YuvSplitTest, CropsOfManyWidthsAndCornersCopyExactlyTheCrop) {
  tivora::test::RecordingProcessing processing;
  for (uint32_t w : {1u, 2u, 15u, 16u, 17u, 33u, 256u, 1921u}) {
    for (int32_t x : {0, 1, 7}) {
      for (uint32_t h : {2u, 6u}) {
        const int32_t y = x == 7 ? 3 : x;  // odd rows too: the chroma rows start at y / 2
        const uint32_t stride = w + static_cast<uint32_t>(x) + 9, cx = static_cast<uint32_t>(x);
        const uint32_t cy = static_cast<uint32_t>(y);
        SCOPED_TRACE(testing::Message() << w << "x" << h << " at " << x << "," << y);
        const Nv12Frame frame = frameOf(TVR_FORMAT_NV21, stride, h + 4, x, y, w, h);
        Plane luma(w, h), chroma(w, h / 2);
        ASSERT_EQ(processing.splitYUV420SP(&frame.record, luma.get(), chroma.get()), 0);
        expectRows(luma, [&](uint32_t r) { return at(frame, 0, cy + r, cx); });
        expectRows(chroma, [&](uint32_t r) { return at(frame, 1, cy / 2 + r, cx); });
        const Nv12Frame planar = frameOf(TVR_FORMAT_YUV420P_VU, stride, h + 4, x, y, w, h);
        Plane planarLuma(w, h), u(w / 2, h / 2), v(w / 2, h / 2);
        if (w % 2 != 0) {  // no half-width chroma plane fits an odd width
          EXPECT_EQ(processing.splitYUV420P(&planar.record, planarLuma.get(), u.get(), v.get()), 12);
          continue;
        }
        ASSERT_EQ(processing.splitYUV420P(&planar.record, planarLuma.get(), u.get(), v.get()), 0);
        expectRows(planarLuma, [&](uint32_t r) { return at(planar, 0, cy + r, cx); });
        expectRows(u, [&](uint32_t r) { return at(planar, 1, cy / 2 + r, cx / 2); });
        expectRows(v, [&](uint32_t r) { return at(planar, 2, cy / 2 + r, cx / 2); });
      }
    }
  }
}

// A crop that starts above the frame's first row (the host's base pointer may sit inside a larger
// allocation) reads the rows before it; chroma starts at y / 2 rounded toward zero.
TEST(YuvSplitTest, NegativeCropRowReadsTheRowsBeforeThePlane) {
  tivora::test::RecordingProcessing processing;
  Nv12Frame frame = frameOf(TVR_FORMAT_NV12, 64, 24, 4, -3, 16, 8);
  const uint8_t* memory = frame.memory.data();
  frame.record.buf.p_base += 4 * 64;  // four rows of the allocation lie before the frame
  frame.record.offset[1] = 12 * 64;
  Plane y(16, 8), cc(16, 4);
  ASSERT_EQ(processing.splitYUV420SP(&frame.record, y.get(), cc.get()), 0);
  expectRows(y, [&](uint32_t r) { return memory + (4 - 3 + r) * 64 + 4; });
  expectRows(cc, [&](uint32_t r) { return memory + (4 + 12 - 1 + r) * 64 + 4; });
}

// Sizes that do not fit the crop, and formats of the other kind, are refused; an empty crop copies
// nothing either.
TEST(YuvSplitTest, RefusalsAndEmptyCropsCopyNothing) {
  tivora::test::RecordingProcessing processing;
  Nv12Frame frame = frameOf(TVR_FORMAT_NV12, 1024, 500, 8, 4, 640, 480);
  Plane y(640, 480), cc(640, 240), u(320, 240), v(320, 240), narrow(319, 240);
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, y.get(), u.get()), 12);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, y.get(), u.get(), v.get()), 12);  // nv12 is not planar
  frame.record.format = TVR_FORMAT_YUV420P_UV;
  EXPECT_EQ(processing.splitYUV420SP(&frame.record, y.get(), cc.get()), 12);  // nor semi-planar
  EXPECT_EQ(processing.splitYUV420P(&frame.record, y.get(), narrow.get(), v.get()), 12);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, y.get(), u.get(), narrow.get()), 12);
  frame.record.crop.size = {0, 0};
  Plane empty(0, 0);
  EXPECT_EQ(processing.splitYUV420P(&frame.record, empty.get(), empty.get(), empty.get()), 0);
  for (const Plane* plane : {&y, &cc, &u, &v, &narrow, &empty}) EXPECT_TRUE(plane->untouched());
}

}  // namespace
