// The sample processing driven as the host drives it: its answer on known pictures, through every
// path of scaling and turning, its refusals, and that it releases everything on every path.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "DeviceFiles.h"
#include "MeanColourFrames.h"
#include "MeanColourProcessing.h"
#include "SlotNetworks.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::examples::MeanColourConfig;
using tivora::examples::MeanColourOutput;
using tivora::examples::MeanColourProcessing;
using tivora::test::Nv12Frame;

struct Rgb {
  double r, g, b;
};

// BT.601 video range, as the image library converts.
Rgb rgbOf(uint8_t y, uint8_t cb, uint8_t cr) {
  const auto clamp = [](double v) { return std::min(255.0, std::max(0.0, v)); };
  const double luma = 1.164 * (y - 16);
  return {clamp(luma + 1.596 * (cr - 128)), clamp(luma - 0.392 * (cb - 128) - 0.813 * (cr - 128)),
          clamp(luma + 2.017 * (cb - 128))};
}

constexpr uint8_t kRed[3] = {81, 90, 240};
constexpr uint8_t kBlue[3] = {41, 240, 110};

class MeanColourProcessingTest : public tivora::test::DeviceTest {
 protected:
  // Sets the processing up and initializes it for `frame`, with `model`, or the text model for `config`.
  tvr_err_t start(MeanColourProcessing& processing, const MeanColourConfig& config, const Nv12Frame& frame,
                  std::string model = "") {
    if (model.empty()) {
      model = tivora::test::writeModel("mean_colour.dlc", MeanColourProcessing::hostModelText(config.inputWidth,
                                                                                             config.inputHeight));
    }
    tvr_create_param_t create{};
    std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s", model.c_str());
    create.dlc_num = 1;
    create.runtime = TVR_RUNTIME_CPU;
    create.use_user_buffers = true;
    hvx::IProcessing& host = processing;
    const tvr_err_t status = host.setup(&create);
    if (status != TVR_OK) return status;
    tvr_static_param_t stream{};
    stream.src_info = {TVR_FORMAT_NV12, frame.record.size, frame.record.stride, frame.record.scanline};
    return host.initialize(&stream);
  }

  tvr_err_t apply(MeanColourProcessing& processing, const Nv12Frame& frame, tvr_rotation_t rotation,
                  MeanColourOutput& output) {
    const tvr_input_param_t input{rotation, &frame.record};
    return static_cast<hvx::IProcessing&>(processing).apply(&input, &output, nullptr);
  }

  static void stop(MeanColourProcessing& processing) {
    hvx::IProcessing& host = processing;
    EXPECT_EQ(host.abort(), 0);
    EXPECT_EQ(host.finalize(), 0);
    EXPECT_EQ(host.teardown(), 0);
  }

  static void expectColour(const MeanColourOutput& output, const Rgb& rgb, const std::string& what) {
    // mean 128, divisor 128: the network reports (channel - 128) / 128. The image library's box
    // filter (libyuv's) truncates, which may cost each of Y, Cb and Cr a level: red moves by 3.4.
    EXPECT_NEAR(output.mean_rgb[0] * 128 + 128, rgb.r, 4) << what;
    EXPECT_NEAR(output.mean_rgb[1] * 128 + 128, rgb.g, 4) << what;
    EXPECT_NEAR(output.mean_rgb[2] * 128 + 128, rgb.b, 4) << what;
  }

  static constexpr tivora::SNPEMgr::TVRResourceType kType = 3;
};

TEST_F(MeanColourProcessingTest, UniformFrameGivesItsColourThroughEveryScaleAndTurn) {
  const Nv12Frame frame(64, 48, 80, kRed[0], kRed[1], kRed[2]);
  const Rgb red = rgbOf(kRed[0], kRed[1], kRed[2]);
  struct Case {
    uint32_t w, h;
    tvr_rotation_t rotation;
  };
  for (const Case& c : {Case{16, 16, TVR_ROTATION_0}, Case{96, 64, TVR_ROTATION_0}, Case{32, 96, TVR_ROTATION_180},
                        Case{64, 48, TVR_ROTATION_0}, Case{24, 24, TVR_ROTATION_90}, Case{80, 80, TVR_ROTATION_270}}) {
    const std::string what = std::to_string(c.w) + "x" + std::to_string(c.h) + " turn " + std::to_string(c.rotation);
    MeanColourConfig config;
    config.inputWidth = c.w;
    config.inputHeight = c.h;
    MeanColourProcessing processing(kType, config);
    ASSERT_EQ(start(processing, config, frame), 0) << what;
    MeanColourOutput output{};
    for (uint32_t n = 1; n <= 2; ++n) {
      ASSERT_EQ(apply(processing, frame, c.rotation, output), 0) << what;
      EXPECT_EQ(output.frame, n);
    }
    expectColour(output, red, what);
    EXPECT_GT(processing.lastStageTimes().nv12ToRgb, 0);
    EXPECT_GT(processing.lastStageTimes().execute, 0);
    stop(processing);
  }
}

// The ONNX model scripts/make-models makes: the picture's size comes from it, and beside the mean
// colour it tells a sharpness, nothing on a uniform picture and something at an edge.
TEST_F(MeanColourProcessingTest, OnnxModelGivesMeanColourAndSharpnessAtItsOwnSize) {
  if (access(TIVORA_SAMPLE_MODEL, R_OK) != 0) GTEST_SKIP() << "this build makes no ONNX model " TIVORA_SAMPLE_MODEL;
  Nv12Frame frame(64, 48, 64, kRed[0], kRed[1], kRed[2]);
  MeanColourProcessing processing(kType);
  ASSERT_EQ(start(processing, MeanColourConfig{}, frame, TIVORA_SAMPLE_MODEL), 0);
  MeanColourOutput output{};
  ASSERT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 0);
  EXPECT_EQ(processing.networkImage()->size.w * 1000 + processing.networkImage()->size.h, 672224u);
  expectColour(output, rgbOf(kRed[0], kRed[1], kRed[2]), "uniform red");
  EXPECT_LT(output.sharpness, 1e-9f);
  frame.paint(32, 64, kBlue[0], kBlue[1], kBlue[2]);
  ASSERT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 0);
  EXPECT_GT(output.sharpness, 1e-5f) << "an edge between red and blue";
  stop(processing);
}

TEST_F(MeanColourProcessingTest, CropChoosesThePartOfTheFrameTheNetworkSees) {
  Nv12Frame frame(64, 48, 64, kRed[0], kRed[1], kRed[2]);
  frame.paint(32, 64, kBlue[0], kBlue[1], kBlue[2]);
  MeanColourConfig config;
  config.inputWidth = config.inputHeight = 16;
  MeanColourProcessing processing(kType, config);
  ASSERT_EQ(start(processing, config, frame), 0);
  MeanColourOutput output{};
  frame.record.crop = {{0, 8}, {32, 32}};
  ASSERT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 0);
  expectColour(output, rgbOf(kRed[0], kRed[1], kRed[2]), "left half");
  frame.record.crop = {{32, 0}, {32, 48}};
  ASSERT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 0);
  expectColour(output, rgbOf(kBlue[0], kBlue[1], kBlue[2]), "right half");
  stop(processing);
}

// Red on the left, blue on the right: a half turn puts blue on the left of the network's picture.
TEST_F(MeanColourProcessingTest, HalfTurnReachesTheNetworksPicture) {
  Nv12Frame frame(64, 48, 64, kRed[0], kRed[1], kRed[2]);
  frame.paint(32, 64, kBlue[0], kBlue[1], kBlue[2]);
  MeanColourConfig config;
  config.inputWidth = 32;
  config.inputHeight = 24;
  MeanColourProcessing processing(kType, config);
  ASSERT_EQ(start(processing, config, frame), 0);
  MeanColourOutput output{};
  for (tvr_rotation_t rotation : {TVR_ROTATION_0, TVR_ROTATION_180}) {
    ASSERT_EQ(apply(processing, frame, rotation, output), 0);
    const tvr_image_buf_t* picture = processing.networkImage();
    ASSERT_EQ(picture->size.w, 96u);
    const uint8_t* row = picture->buf.p_base + 12 * picture->stride;
    const bool blueLeft = row[2] > row[0];
    const bool blueRight = row[31 * 3 + 2] > row[31 * 3];
    EXPECT_EQ(blueLeft, rotation == TVR_ROTATION_180);
    EXPECT_EQ(blueRight, rotation == TVR_ROTATION_0);
  }
  stop(processing);
}

TEST_F(MeanColourProcessingTest, FramesItCannotTakeAreRefused) {
  Nv12Frame frame(64, 48, 64, kRed[0], kRed[1], kRed[2]);
  MeanColourConfig config;
  config.inputWidth = 32;
  config.inputHeight = 16;
  MeanColourProcessing processing(kType, config);
  MeanColourOutput output{};
  EXPECT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 12) << "before initialize";
  ASSERT_EQ(start(processing, config, frame), 0);
  EXPECT_EQ(apply(processing, frame, TVR_ROTATION_90, output), 12) << "quarter turn of a non-square input";
  for (const tvr_crop_t& crop : {tvr_crop_t{{40, 0}, {32, 48}}, tvr_crop_t{{0, 0}, {64, 50}},
                                 tvr_crop_t{{0, 0}, {33, 48}}, tvr_crop_t{{-2, 0}, {32, 48}}, tvr_crop_t{{0, 0}, {0, 0}}}) {
    frame.record.crop = crop;
    EXPECT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 12)
        << crop.pos.x << "," << crop.pos.y << " " << crop.size.w << "x" << crop.size.h;
  }
  const tvr_input_param_t noFrame{TVR_ROTATION_0, nullptr};
  EXPECT_EQ(static_cast<hvx::IProcessing&>(processing).apply(&noFrame, &output, nullptr), 12);
  EXPECT_EQ(output.frame, 0u);
  stop(processing);
}

TEST_F(MeanColourProcessingTest, EverythingIsReleasedAfterFailuresAndAfterARun) {
  const int before = snpe_stub::liveCount();
  Nv12Frame frame(64, 48, 64, kRed[0], kRed[1], kRed[2]);
  MeanColourConfig config;
  config.inputWidth = config.inputHeight = 16;
  hvx::IProcessing* host = nullptr;
  {
    // A model that does not exist: setup fails with the read error, teardown runs by itself.
    MeanColourProcessing processing(kType, config);
    host = &processing;
    tvr_create_param_t create{};
    std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s/none.dlc", tivora::paths::kVendorCameraDir);
    create.dlc_num = 1;
    create.use_user_buffers = true;
    EXPECT_EQ(host->setup(&create), 8);
    EXPECT_EQ(snpe_stub::liveCount(), before);
    stop(processing);
  }
  {
    // A model of 32x16: refused at setup for a configured 16x16, taken as it is without a size.
    tivora::test::writeModel("mean_colour.dlc", MeanColourProcessing::hostModelText(32, 16));
    tvr_create_param_t create{};
    std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s/mean_colour.dlc",
                  tivora::paths::kVendorCameraDir);
    create.dlc_num = 1;
    create.use_user_buffers = true;
    for (const MeanColourConfig& sized : {config, MeanColourConfig{}}) {
      MeanColourProcessing processing(kType, sized);
      host = &processing;
      const tvr_err_t status = host->setup(&create);
      EXPECT_EQ(status, sized.inputWidth == 0 ? 0 : 12) << "the binding checks the input buffer";
      tvr_static_param_t stream{};
      stream.src_info = {TVR_FORMAT_NV12, {64, 48}, 64, 48};
      EXPECT_EQ(host->initialize(&stream), status == 0 ? 0 : 12) << "no images before a network";
      MeanColourOutput output{};
      EXPECT_EQ(apply(processing, frame, TVR_ROTATION_0, output), status == 0 ? 0 : 12);
      if (status == 0) {
        EXPECT_EQ(processing.networkImage()->size.w * 100 + processing.networkImage()->size.h, 9616u);
      }
      stop(processing);
      EXPECT_EQ(snpe_stub::liveCount(), before);
    }
  }
  {
    // A stream that is not NV12: initialize fails, finalize runs by itself; a run afterwards works.
    MeanColourProcessing processing(kType, config);
    ASSERT_EQ(start(processing, config, frame), 0);
    tvr_static_param_t planar{};
    planar.src_info = {TVR_FORMAT_YUV420P_UV, {64, 48}, 64, 48};
    EXPECT_EQ(static_cast<hvx::IProcessing&>(processing).initialize(&planar), 12);
    ASSERT_EQ(start(processing, config, frame), 0);
    MeanColourOutput output{};
    EXPECT_EQ(apply(processing, frame, TVR_ROTATION_0, output), 0);
    stop(processing);
    EXPECT_EQ(snpe_stub::liveCount(), before);
  }
}

}  // namespace
