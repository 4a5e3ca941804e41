// ONNX's backend test cases through the library: a processing builds the network with createSNPE,
// binds the golden data moved to the device layout, and runs it with executeSNPE; every case on
// its own thread at once, as processings of a camera run their networks.
#include <gtest/gtest.h>

#include <memory>

#include "DeviceFiles.h"
#include "NetworkBinding.h"
#include "OnnxFixtures.h"
#include "RecordingProcessing.h"
#include "SlotNetworks.h"
#include "Threads.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using snpe_stub::testdata::TestCase;

class FixtureProcessing : public tivora::test::RecordingProcessing {
 public:
  FixtureProcessing(tivora::SNPEMgr::TVRResourceType type, const TestCase& test)
      : RecordingProcessing(type), mTest(test), mBinding(type, 0) {}

  std::vector<std::vector<float>> mOutputs;

 private:
  tvr_err_t setupImpl(const void* p) override {
    tivora::SNPEParam param(static_cast<const tvr_create_param_t*>(p), 0);
    std::vector<std::string> layers;
    if (const tvr_err_t status = createSNPE(0, param, layers); status != TVR_OK) return status;
    for (const auto& input : mTest.inputs) {
      mBinding.addInput(input.name, mInputs.emplace_back(input.deviceValues()).data(), input.deviceDims());
    }
    for (const auto& output : mTest.outputs) {
      mBinding.addOutput(output.name, mOutputs.emplace_back(output.values.size()).data(), output.deviceDims());
    }
    return mBinding.bind();
  }
  void teardownImpl() override {
    mBinding.release();
    deleteSNPE(0);
  }
  tvr_err_t applyImpl(const void*, void*) override { return executeSNPE(0); }

  const TestCase& mTest;
  std::vector<std::vector<float>> mInputs;  // the binding keeps their addresses, which moves keep
  tivora::NetworkBinding mBinding;
};

class OnnxNetworkTest : public tivora::test::DeviceTest {};

TEST_F(OnnxNetworkTest, BackendCasesRunThroughTheLibraryAllAtOnce) {
  const int baseline = snpe_stub::liveCount();
  std::vector<TestCase> tests;
  std::vector<std::unique_ptr<FixtureProcessing>> processings;
  for (const auto& fixture : tivora::test::kOnnxFixtures) tests.push_back(tivora::test::loadFixture(fixture));
  for (size_t i = 0; i < tests.size(); ++i) {
    const tvr_create_param_t create =
        tivora::test::createRecordFor(tivora::test::writeModel(std::to_string(i) + ".onnx", tests[i].model));
    processings.push_back(std::make_unique<FixtureProcessing>(static_cast<uint32_t>(i), tests[i]));
    ASSERT_EQ(processings.back()->setup(&create), TVR_OK) << tivora::test::kOnnxFixtures[i].name;
    for (auto& output : processings.back()->mOutputs) output.assign(output.size(), 0.0f);  // setup ran it once
  }
  tivora::test::onThreads(static_cast<unsigned int>(tests.size()), [&](unsigned int i) {
    tvr_input_param_t input{};
    for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(processings[i]->apply(&input, &input, nullptr), TVR_OK);
  });
  for (size_t i = 0; i < tests.size(); ++i) {
    for (size_t k = 0; k < tests[i].outputs.size(); ++k) {
      EXPECT_TRUE(snpe_stub::testdata::closeTo(processings[i]->mOutputs[k], tests[i].outputs[k].deviceValues()))
          << tivora::test::kOnnxFixtures[i].name << ": " << tests[i].outputs[k].name;
    }
    processings[i]->teardown();
  }
  EXPECT_EQ(snpe_stub::liveCount(), baseline);
}

}  // namespace
