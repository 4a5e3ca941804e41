// NetworkBinding on the manager's slots: what it registers and releases, what it refuses at setup,
// and its check against another processing rebuilding the same slot.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "DeviceFiles.h"
#include "LogCapture.h"
#include "NetworkBinding.h"
#include "SlotNetworks.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::NetworkBinding;
using tivora::SNPEMgr;

constexpr SNPEMgr::TVRResourceType kType = 2;  // slots 10..14
constexpr unsigned int kSlot = 10;

class NetworkBindingTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    snpe_stub::reset();
    meanParam_ = tivora::test::paramFor(tivora::test::writeModel("mean.dlc", tivora::test::kMeanModel));
    ASSERT_EQ(manager_->createSNPE(kSlot, meanParam_, layers_), TVR_OK);
    baseline_ = snpe_stub::liveCount();
  }
  void TearDown() override {
    EXPECT_EQ(snpe_stub::liveCount(), baseline_) << "the binding left runtime objects alive";
    EXPECT_EQ(manager_->mInputMap[kSlot], nullptr);
    EXPECT_TRUE(manager_->mInputBuffers[kSlot].empty() && manager_->mOutputBuffers[kSlot].empty());
    manager_->deleteSNPE(kSlot);
    DeviceTest::TearDown();
  }

  // The mean model's tensors, as a processing names them.
  void addMeanBuffers(NetworkBinding& binding) {
    binding.addInput("image", image_.data(), {1, 4, 5, 3});
    binding.addOutput("mean", mean_.data(), {1, 3});
  }

  SNPEMgr* manager_ = SNPEMgr::getInstance();
  tivora::SNPEParam meanParam_;
  std::vector<std::string> layers_;
  std::vector<float> image_ = std::vector<float>(60), mean_ = std::vector<float>(3);
  int baseline_ = 0;
};

TEST_F(NetworkBindingTest, RegistersItsBuffersInTheSlotAndReleasesEveryObject) {
  EXPECT_EQ(NetworkBinding(kType, 7).slot(), kSlot + 5) << "indices from 5 on reach the next type's first slot";
  NetworkBinding binding(kType, 0);
  addMeanBuffers(binding);
  ASSERT_EQ(binding.bind(), TVR_OK);
  EXPECT_EQ(manager_->getInputBufferName(kSlot, 0), "image");
  EXPECT_EQ(manager_->getOutputBufferName(kSlot, 0), "mean");
  EXPECT_EQ(manager_->mInputBuffers[kSlot].size(), 1u);
  for (size_t i = 0; i < image_.size(); ++i) image_[i] = static_cast<float>(i % 3);
  ASSERT_EQ(manager_->execute(kSlot), TVR_OK);
  EXPECT_EQ(mean_, (std::vector<float>{0, 1, 2}));
  EXPECT_GT(snpe_stub::liveCount(), baseline_);
  binding.release();
  binding.release();
  EXPECT_EQ(manager_->execute(kSlot), TVR_ERR_NOT_FOUND) << "no buffers left in the slot";
}

TEST_F(NetworkBindingTest, RefusesAtSetupWithAMessageNamingTheTensor) {
  using Dims = std::vector<size_t>;
  const struct {
    const char *input, *output;  // the buffers' tensor names ("": no buffer)
    Dims inputDims, outputDims;
    tvr_err_t status;
    const char* message;
  } cases[] = {
      // clang-format off
      {"picture", "mean",  {1, 4, 5, 3}, {1, 3}, TVR_ERR_NOT_FOUND,   "[10] The network has no input tensor 'picture'"},
      {"image",   "mean",  {1, 5, 4, 3}, {1, 3}, TVR_ERR_INVALID_ARG, "Input tensor 'image' is 1x4x5x3, its buffer 1x5x4x3"},
      {"image",   "mean",  {1, 4, 5, 3}, {1, 4}, TVR_ERR_INVALID_ARG, "output tensor 'mean' (1x3): the user buffer holds 16 bytes, the tensor needs 12"},
      {"image",   "",      {1, 4, 5, 3}, {},     TVR_ERR_NOT_FOUND,   "The output tensor 'mean' has no buffer"},
      {"image",   "image", {1, 4, 5, 3}, {1, 3}, TVR_ERR_NOT_FOUND,   "The network has no output tensor 'image'"},
      {"image",   "mean",  {1, 4, 5, 3}, {},     TVR_ERR_INVALID_ARG, "The output buffer of tensor 'mean' is without dimensions"},
      // clang-format on
  };
  for (const auto& c : cases) {
    tivora::test::LogCapture capture;
    NetworkBinding binding(kType, 0);
    binding.addInput(c.input, image_.data(), c.inputDims);
    if (*c.output != '\0') binding.addOutput(c.output, mean_.data(), c.outputDims);
    EXPECT_EQ(binding.bind(), c.status) << c.message;
    EXPECT_FALSE(binding.isBound());
    ASSERT_FALSE(capture.records().empty());
    EXPECT_EQ(capture.records().back().priority, 6);
    EXPECT_NE(capture.texts().back().find(c.message), std::string::npos) << capture.texts().back();
    EXPECT_EQ(snpe_stub::liveCount(), baseline_) << c.message;
  }
  NetworkBinding first(kType, 0), second(kType, 0), unbuilt(kType, 1);
  for (NetworkBinding* binding : {&first, &second, &unbuilt}) addMeanBuffers(*binding);
  ASSERT_EQ(first.bind(), TVR_OK);
  EXPECT_EQ(second.bind(), TVR_ERR_INVALID_ARG) << "the slot holds the first binding's buffers";
  EXPECT_EQ(unbuilt.bind(), TVR_ERR_NOT_FOUND) << "slot 11 has no network";
}

TEST_F(NetworkBindingTest, ChecksTheNetworkTheSlotHoldsWhileAnotherProcessingRebuildsIt) {
  // Both models have an input "image" and an output "mean"; only the first fits the buffers.
  tivora::SNPEParam small = tivora::test::paramFor(tivora::test::writeModel(
      "small.dlc", "TIVORA-HOST-DLC 1\nversion: small\ninput: image 1x2x2x3\noutput: mean 1x3\nop: channel_mean\n"));
  snpe_stub::setJournaling(false);
  std::atomic<bool> done{false};
  std::thread rebuilder([&] {
    for (int i = 0; i < 200; ++i) manager_->createSNPE(kSlot, i % 2 ? small : meanParam_, layers_);
    done = true;
  });
  while (!done.load()) {
    NetworkBinding binding(kType, 0);
    addMeanBuffers(binding);
    const tvr_err_t status = binding.bind();
    EXPECT_TRUE(status == TVR_OK || status == TVR_ERR_INVALID_ARG) << status;
    // A rebuild after the check meets buffers that no longer fit: the runtime refuses them.
    EXPECT_TRUE(status != TVR_OK || manager_->execute(kSlot) != TVR_ERR_NOT_FOUND);
  }
  rebuilder.join();
  manager_->createSNPE(kSlot, meanParam_, layers_);
}

}  // namespace
