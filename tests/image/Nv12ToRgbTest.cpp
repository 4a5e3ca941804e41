// The NV12 to RGB pipeline: which image-library calls run, with which arguments, in which order;
// the silent skips; the refusals with their messages; and real pixels through every stage.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

using tivora::test::LogCapture;
using tivora::test::RecordingProcessing;

std::string address(const void* p) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", p);
  return text;
}

// One plane record over its own memory (zeroed), with a stride of its choosing.
struct Plane {
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

  Plane(uint32_t w, uint32_t h, uint32_t stride = 0) {
    stride = stride == 0 ? w : stride;
    // Room for the turned plane too: a rotate record carries the unrotated size.
    memory.assign(static_cast<size_t>(stride) * std::max({w, h, 1u}), 0);
    record.buf.p_base = memory.data();
    record.buf.buf_size = static_cast<uint32_t>(memory.size());
    record.format = TVR_FORMAT_NV12;
    record.size = {w, h};
    record.stride = stride;
  }
  tvr_image_buf_t* rec() { return &record; }
  std::string p() const { return address(record.buf.p_base); }
  std::string dims() const {  // "w, h, stride" as the scale calls get them
    return std::to_string(record.size.w) + ", " + std::to_string(record.size.h) + ", " + std::to_string(record.stride);
  }
  std::string pairDims() const {  // the same for an interleaved plane, counted in pairs
    return std::to_string(record.size.w >> 1) + ", " + std::to_string(record.size.h) + ", " +
           std::to_string(record.stride);
  }
};

std::string colourArgs(Plane& y, Plane& cc, Plane& rgb) {
  return y.p() + ", " + cc.p() + ", " + std::to_string(y.record.size.w) + ", " + std::to_string(y.record.size.h) +
         ", " + std::to_string(y.record.stride) + ", " + std::to_string(cc.record.stride) + ", " + rgb.p() + ", " +
         std::to_string(rgb.record.stride);
}

std::vector<std::string> callNames() {
  std::vector<std::string> names;
  for (const auto& call : fastcv_stub::journal()) names.push_back(call.name);
  return names;
}

std::string debug(const std::string& message) {
  return "[TVR DEBUG] RecordingProcessing.convertNv12ToRgb888: " + message;
}
std::string error(const std::string& message) {
  return "[TVR ERROR] RecordingProcessing.convertNv12ToRgb888: " + message;
}

class Nv12ToRgbTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_DEBUG);
    fastcv_stub::reset();
  }
  RecordingProcessing processing;
};

TEST_F(Nv12ToRgbTest, WithoutStageBuffersOnlyTheColourConversionRuns) {
  Plane y(1920, 1080), cc(1920, 540), rgb(5760, 1080);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_180, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr),
            0);
  const auto journal = fastcv_stub::journal();
  ASSERT_EQ(journal.size(), 1u);
  EXPECT_EQ(journal[0].name, "fcvColorYCbCr420PseudoPlanarToRGB888u8");
  EXPECT_EQ(journal[0].args, colourArgs(y, cc, rgb));
  EXPECT_EQ(capture.texts(), std::vector<std::string>{debug("NV12->RGB: 1920(1920)x1080 -> 5760(5760)x1080")});
}

TEST_F(Nv12ToRgbTest, EveryStageGetsTheCurrentPairAndItsOwnBuffers) {
  Plane y(64, 48, 80), cc(64, 24, 80);
  Plane downY(32, 24, 40), downCC(32, 12, 40);
  Plane upY(48, 36), upCC(48, 18);
  Plane rotY(48, 36, 36), rotCC(48, 18, 36);  // unrotated sizes; strides for the turned rows
  Plane rgb(144, 36, 150);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_90, downY.rec(), downCC.rec(), upY.rec(), upCC.rec(), rotY.rec(), rotCC.rec()),
            0);
  const std::vector<fastcv_stub::Call> expected{
      {"fcvScaleDownMNu8", y.p() + ", " + y.dims() + ", " + downY.p() + ", " + downY.dims()},
      {"fcvScaleDownMNInterleaveu8", cc.p() + ", " + cc.pairDims() + ", " + downCC.p() + ", " + downCC.pairDims()},
      {"fcvScaleUpPolyu8", downY.p() + ", " + downY.dims() + ", " + upY.p() + ", " + upY.dims()},
      {"fcvScaleUpPolyInterleaveu8", downCC.p() + ", " + downCC.pairDims() + ", " + upCC.p() + ", " + upCC.pairDims()},
      {"fcvRotateImageu8", upY.p() + ", " + upY.dims() + ", " + rotY.p() + ", 36, 1"},
      {"fcvRotateImageInterleavedu8", upCC.p() + ", " + upCC.pairDims() + ", " + rotCC.p() + ", 36, 1"},
      {"fcvColorYCbCr420PseudoPlanarToRGB888u8", colourArgs(rotY, rotCC, rgb)},
  };
  const auto journal = fastcv_stub::journal();
  ASSERT_EQ(journal.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(journal[i].name, expected[i].name) << i;
    EXPECT_EQ(journal[i].args, expected[i].args) << i;
  }
  EXPECT_EQ(capture.texts(), (std::vector<std::string>{debug("Scale down: 64(80)x48 -> 32(40)x24"),
                                                       debug("Scale up: 32(40)x24 -> 48(48)x36"),
                                                       debug("Rotate(1): 48(48)x36 -> 48(36)x36"),
                                                       debug("NV12->RGB: 48(36)x36 -> 144(150)x36")}));
}

TEST_F(Nv12ToRgbTest, StagesWhoseBuffersChangeNothingOrAreMissingAreSkippedSilently) {
  Plane y(64, 48), cc(64, 24), sameY(64, 48), sameCC(64, 24), rgb(192, 48);
  Plane rotY(64, 48), rotCC(64, 24);
  LogCapture capture;
  // Same-size scalings, a rotation without its buffers, and rotation 0 with them.
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_180, sameY.rec(), sameCC.rec(), sameY.rec(), sameCC.rec(), nullptr,
                                           rotCC.rec()),
            0);
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_0, sameY.rec(), nullptr, nullptr, sameCC.rec(), rotY.rec(),
                                           rotCC.rec()),
            0);
  EXPECT_EQ(callNames(), (std::vector<std::string>{"fcvColorYCbCr420PseudoPlanarToRGB888u8",
                                                    "fcvColorYCbCr420PseudoPlanarToRGB888u8"}));
  // The colour stage read the source itself both times.
  EXPECT_EQ(fastcv_stub::journal()[0].args, colourArgs(y, cc, rgb));
  EXPECT_EQ(capture.texts(), (std::vector<std::string>{debug("NV12->RGB: 64(64)x48 -> 192(192)x48"),
                                                       debug("NV12->RGB: 64(64)x48 -> 192(192)x48")}));
}

TEST_F(Nv12ToRgbTest, MissingPlanesAreRefusedBeforeAnything) {
  Plane y(64, 48), rgb(192, 48);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), nullptr, rgb.rec(), TVR_ROTATION_0, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr),
            12);
  EXPECT_EQ(processing.convertNv12ToRgb888(nullptr, y.rec(), nullptr, TVR_ROTATION_0, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr),
            12);
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{
                error("Source image Y(" + address(&y.record) + ") / CC(" + address(nullptr) + ") or destination rgb(" +
                      address(&rgb.record) + ") is null"),
                error("Source image Y(" + address(nullptr) + ") / CC(" + address(&y.record) +
                      ") or destination rgb(" + address(nullptr) + ") is null")}));
  EXPECT_TRUE(fastcv_stub::journal().empty());
}

TEST_F(Nv12ToRgbTest, ScaleDownLargerThanTheSourceIsRefused) {
  Plane y(64, 48), cc(64, 24), rgb(192, 48);
  Plane downY(64, 48), downCC(64, 25);  // one chroma row too many
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_0, downY.rec(), downCC.rec(), nullptr, nullptr, nullptr,
                                           nullptr),
            12);
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{debug("Scale down: 64(64)x48 -> 64(64)x48"),
                                      error("Scale down size(Y(64 x 48), CC(64 x 25)) bigger than source image "
                                            "size(Y(64 x 48), CC(64 x 24))")}));
  EXPECT_TRUE(fastcv_stub::journal().empty());
}

TEST_F(Nv12ToRgbTest, ScaleUpSmallerThanTheCurrentPairIsRefusedAfterTheScaleDownRan) {
  Plane y(1920, 1080), cc(1920, 540), rgb(1920, 480);
  Plane downY(640, 480), downCC(640, 240), upY(320, 240), upCC(640, 240);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_0, downY.rec(), downCC.rec(), upY.rec(), upCC.rec(), nullptr,
                                           nullptr),
            12);
  const auto journal = fastcv_stub::journal();
  ASSERT_EQ(journal.size(), 2u);
  EXPECT_EQ(journal[0].args, y.p() + ", 1920, 1080, 1920, " + downY.p() + ", 640, 480, 640");
  EXPECT_EQ(journal[1].args, cc.p() + ", 960, 540, 1920, " + downCC.p() + ", 320, 240, 640");
  EXPECT_EQ(capture.texts().back(), error("Scale up size(Y(320 x 240), CC(640 x 240)) smaller than scale down "
                                          "size(Y(640 x 480), CC(640 x 240))"));
}

TEST_F(Nv12ToRgbTest, ScaleUpCheckNamesTheSourceAsScaleDownWhenThereWasNone) {
  Plane y(64, 48), cc(64, 24), rgb(192, 48), upY(64, 48), upCC(62, 24);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_0, nullptr, nullptr, upY.rec(), upCC.rec(), nullptr,
                                           nullptr),
            12);
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{debug("Scale up: 64(64)x48 -> 64(64)x48"),
                                      error("Scale up size(Y(64 x 48), CC(62 x 24)) smaller than scale down "
                                            "size(Y(64 x 48), CC(64 x 24))")}));
}

TEST_F(Nv12ToRgbTest, RotateRecordsMustCarryTheUnrotatedSize) {
  Plane y(640, 480), cc(640, 240), rgb(1920, 480);
  Plane turnedY(480, 640), turnedCC(480, 320);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_90, nullptr, nullptr, nullptr, nullptr,
                                           turnedY.rec(), turnedCC.rec()),
            12);
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{debug("Rotate(1): 640(640)x480 -> 480(480)x640"),
                                      error("Rotate size(Y(480 x 640), CC(480 x 320)) and scale up size(Y(640 x 480), "
                                            "CC(640 x 240)) not equal")}));
  EXPECT_TRUE(fastcv_stub::journal().empty());
}

TEST_F(Nv12ToRgbTest, ColourStageNeedsThreeTimesTheLumaWidthAndHalfHeightChroma) {
  struct Case {
    uint32_t yw, yh, ccw, cch, rgbw, rgbh;
  };
  for (const Case& c : {Case{64, 48, 64, 48, 192, 48}, Case{64, 48, 64, 24, 191, 48}, Case{64, 48, 64, 24, 192, 47},
                        Case{64, 48, 66, 24, 192, 48}}) {
    Plane y(c.yw, c.yh), cc(c.ccw, c.cch), rgb(c.rgbw, c.rgbh);
    LogCapture capture;
    EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_0, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr),
              12);
    EXPECT_EQ(capture.texts().back(),
              error(tivora::format("Destination rgb size(%u x %u) and 3 times size of rotate(Y(%u x %u), CC(%u x %u)) "
                                   "not equal",
                                   c.rgbw, c.rgbh, c.yw, c.yh, c.ccw, c.cch)));
  }
  EXPECT_TRUE(fastcv_stub::journal().empty());
}

TEST_F(Nv12ToRgbTest, WithoutALoggerTheResultsAreTheSame) {
  processing.unbind(/*alsoLogger=*/true);
  Plane y(64, 48), cc(64, 24), rgb(192, 48), bad(191, 48);
  LogCapture capture;
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr),
            0);
  EXPECT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), bad.rec(), TVR_ROTATION_0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr),
            12);
  EXPECT_TRUE(capture.texts().empty());
}

// Real pixels: a frame grey on the left and white on the right, halved, and turned by a half turn,
// comes out white on the left and grey on the right.
TEST_F(Nv12ToRgbTest, HalfTurnOfAHalvedFrameSwapsItsHalves) {
  Plane y(64, 32), cc(64, 16), downY(32, 16), downCC(32, 8), rotY(32, 16), rotCC(32, 8), rgb(96, 16);
  for (uint32_t r = 0; r < 32; ++r) {
    for (uint32_t x = 0; x < 64; ++x) y.memory[r * 64 + x] = x < 32 ? 126 : 235;
  }
  std::fill(cc.memory.begin(), cc.memory.end(), uint8_t{128});
  ASSERT_EQ(processing.convertNv12ToRgb888(y.rec(), cc.rec(), rgb.rec(), TVR_ROTATION_180, downY.rec(), downCC.rec(), nullptr, nullptr, rotY.rec(),
                                           rotCC.rec()),
            0);
  for (uint32_t r = 0; r < 16; ++r) {
    for (uint32_t x = 0; x < 32; ++x) {
      const uint8_t expected = x < 16 ? 255 : 128;
      for (uint32_t ch = 0; ch < 3; ++ch) {
        ASSERT_NEAR(rgb.memory[r * 96 + x * 3 + ch], expected, 1) << "row " << r << " pixel " << x;
      }
    }
  }
}

}  // namespace
