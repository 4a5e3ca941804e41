// Load: one sample processing per resource type (each registers its buffers in its own slot), all
// on the same model file, driven from as many host threads for thousands of frames in total. Every
// output must equal, bit for bit, that of the same frames run on one thread. The tsan build runs
// it under ThreadSanitizer.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "DeviceFiles.h"
#include "MeanColourFrames.h"
#include "MeanColourProcessing.h"
#include "SlotNetworks.h"
#include "snpe_stub/SnpeControl.h"

#ifndef TIVORA_LOAD_FRAMES
#define TIVORA_LOAD_FRAMES 500
#endif

namespace {

using tivora::examples::MeanColourConfig;
using tivora::examples::MeanColourOutput;
using tivora::examples::MeanColourProcessing;
using tivora::test::Nv12Frame;

constexpr unsigned int kProcessings = 6;
constexpr unsigned int kFrames = TIVORA_LOAD_FRAMES;  // per processing; fewer under qemu

// Frame `n` of processing `type`: its own colours, a stripe that moves, a crop that moves and
// every turn, so that consecutive outputs differ.
Nv12Frame frameOf(unsigned int type, unsigned int n) {
  const auto level = [](unsigned int v) { return static_cast<uint8_t>(16 + v % 220); };
  Nv12Frame frame(32, 24, 40, level(type * 37 + n * 11), level(n * 7), level(type * 5 + n * 3));
  const uint32_t stripe = 2 * (n % 12);
  frame.paint(stripe, stripe + 8, level(n * 13 + 100), level(type * 29 + n), level(n * 17));
  frame.record.crop = {{static_cast<int32_t>(2 * (n % 5)), static_cast<int32_t>(2 * (n % 4))}, {22, 16}};
  return frame;
}

tvr_rotation_t rotationOf(unsigned int n) { return static_cast<tvr_rotation_t>(n % 4); }

// Runs every frame of one processing; the outputs in frame order. Failures end the run early
// with a gtest failure (the comparison then fails too).
std::vector<MeanColourOutput> runProcessing(unsigned int type, const std::string& model) {
  MeanColourConfig config;
  config.inputWidth = config.inputHeight = 16;  // square: quarter turns are allowed
  MeanColourProcessing processing(type, config);
  hvx::IProcessing& host = processing;
  tvr_create_param_t create{};
  std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s", model.c_str());
  create.dlc_num = 1;
  create.use_user_buffers = true;
  std::vector<MeanColourOutput> outputs;
  if (host.setup(&create) != 0) {
    ADD_FAILURE() << "setup of type " << type;
    return outputs;
  }
  tvr_static_param_t stream{};
  stream.src_info = {TVR_FORMAT_NV12, {32, 24}, 40, 24};
  EXPECT_EQ(host.initialize(&stream), 0);
  outputs.reserve(kFrames);
  for (unsigned int n = 0; n < kFrames; ++n) {
    const Nv12Frame frame = frameOf(type, n);
    const tvr_input_param_t input{rotationOf(n), &frame.record};
    MeanColourOutput output{};
    const tvr_err_t status = host.apply(&input, &output, nullptr);
    if (status != 0) {
      ADD_FAILURE() << "type " << type << " frame " << n << " status " << status;
      break;
    }
    outputs.push_back(output);
  }
  EXPECT_EQ(host.finalize(), 0);
  EXPECT_EQ(host.teardown(), 0);
  return outputs;
}

using MeanColourLoadTest = tivora::test::DeviceTest;

TEST_F(MeanColourLoadTest, ThreadsGiveBitForBitTheOutputsOfOneThread) {
  const std::string model = tivora::test::writeModel("load.dlc", MeanColourProcessing::hostModelText(16, 16));
  snpe_stub::setJournaling(false);  // thousands of calls; the journal is not under test here
  const int liveBefore = snpe_stub::liveCount();

  std::vector<std::vector<MeanColourOutput>> alone(kProcessings);
  for (unsigned int type = 0; type < kProcessings; ++type) alone[type] = runProcessing(type, model);

  std::vector<std::vector<MeanColourOutput>> together(kProcessings);
  std::vector<std::thread> threads;
  for (unsigned int type = 0; type < kProcessings; ++type) {
    threads.emplace_back([&together, &model, type] { together[type] = runProcessing(type, model); });
  }
  for (std::thread& thread : threads) thread.join();
  snpe_stub::setJournaling(true);

  for (unsigned int type = 0; type < kProcessings; ++type) {
    ASSERT_EQ(alone[type].size(), kFrames) << "type " << type;
    ASSERT_EQ(together[type].size(), kFrames) << "type " << type;
    for (unsigned int n = 0; n < kFrames; ++n) {
      ASSERT_EQ(std::memcmp(&alone[type][n], &together[type][n], sizeof(MeanColourOutput)), 0)
          << "type " << type << " frame " << n;
    }
  }
  // Neighbouring frames differ, so equal outputs are no accident of a constant picture.
  EXPECT_NE(std::memcmp(&alone[0][0].mean_rgb, &alone[0][1].mean_rgb, sizeof alone[0][0].mean_rgb), 0);
  EXPECT_EQ(snpe_stub::liveCount(), liveBefore);
}

}  // namespace
