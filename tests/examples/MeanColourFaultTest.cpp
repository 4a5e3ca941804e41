// Fault injection through the sample processing's setup: every call its setup makes to the NN
// runtime fails in turn. Each failure gives its status and its message, and once the processing
// is torn down nothing it created is alive.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "LogCapture.h"
#include "MeanColourProcessing.h"
#include "SlotNetworks.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::examples::MeanColourConfig;
using tivora::examples::MeanColourProcessing;

class MeanColourFaultTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    config.inputWidth = config.inputHeight = 8;
    const std::string model = tivora::test::writeModel("fault.dlc", MeanColourProcessing::hostModelText(8, 8));
    std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s", model.c_str());
    create.dlc_num = 1;
    create.use_user_buffers = true;
  }
  void TearDown() override {
    snpe_stub::reset();
    DeviceTest::TearDown();
  }

  // The runtime calls of one successful setup, each name once, in the order first made.
  std::vector<std::string> callsOfASetup() {
    MeanColourProcessing processing(kType, config);
    snpe_stub::reset();
    EXPECT_EQ(static_cast<hvx::IProcessing&>(processing).setup(&create), 0);
    std::vector<std::string> names;
    for (const snpe_stub::Call& call : snpe_stub::journal()) {
      if (std::find(names.begin(), names.end(), call.name) == names.end()) names.push_back(call.name);
    }
    static_cast<hvx::IProcessing&>(processing).teardown();
    return names;
  }

  static constexpr tivora::SNPEMgr::TVRResourceType kType = 2;
  MeanColourConfig config;
  tvr_create_param_t create{};
};

// A call that may fail, and what the setup then reports.
struct Expected {
  tvr_err_t status;
  std::string message;  // the last ERROR record, or empty when the setup reports none
};

TEST_F(MeanColourFaultTest, EveryRuntimeCallOfTheSetupFailingInTurnIsReportedAndReleased) {
  const std::string build = "[TVR ERROR] TivoraBase.createSNPEInternal: SNPE instance(builder(";
  const std::string bind = "[TVR ERROR] NetworkBinding.bind: [10] ";
  std::map<std::string, Expected> expected = {
      {"Snpe_DlContainer_Open", {4, "[TVR ERROR] TivoraBase.createSNPEInternal: Container open failed"}},
      {"Snpe_SNPE_GetInputTensorNames", {1, bind + "The network has no input tensor 'image'"}},
      {"Snpe_SNPE_GetInputDimensions", {12, bind + "Input tensor 'image' is "}},
      {"Snpe_TensorShape_Rank", {12, bind + "Input tensor 'image' is "}},
      {"Snpe_TensorShape_At", {12, bind + "Input tensor 'image' is "}},
      {"Snpe_SNPE_ExecuteUserBuffers", {12, bind + "The buffers do not fit the network: "}},
      // The runtime list's additions are not checked: an empty list leaves the runtime its default
      // processor, and the network is built.
      {"Snpe_RuntimeList_Add", {0, ""}},
      // The first list of outputs only tells whether the model has a sharpness output; the text
      // model has none either way.
      {"Snpe_SNPE_GetOutputTensorNames", {0, ""}},
      {"Snpe_StringList_Size", {0, ""}},
      {"Snpe_StringList_At", {0, ""}},
  };
  for (const char* maker : {"Snpe_UserBufferEncodingFloat_Create", "Snpe_UserBufferMap_Create",
                            "Snpe_TensorShape_CreateDimsSize", "Snpe_Util_CreateUserBuffer", "Snpe_UserBufferMap_Add"}) {
    expected[maker] = {1, bind + "The runtime would not make the user buffers (" + maker};
  }
  for (const char* step : {"Snpe_RuntimeList_Create", "Snpe_StringList_Create",
                           "Snpe_PlatformConfig_Create", "Snpe_SNPEBuilder_Create",
                           "Snpe_SNPEBuilder_SetRuntimeProcessorOrder", "Snpe_SNPEBuilder_SetPerformanceProfile",
                           "Snpe_SNPEBuilder_SetProfilingLevel", "Snpe_SNPEBuilder_SetExecutionPriorityHint",
                           "Snpe_SNPEBuilder_SetDebugMode", "Snpe_SNPEBuilder_SetOutputLayers",
                           "Snpe_SNPEBuilder_SetUseUserSuppliedBuffers", "Snpe_SNPEBuilder_SetPlatformConfig",
                           "Snpe_SNPEBuilder_Build"}) {
    expected[step] = {5, build};
  }

  const int liveBefore = snpe_stub::liveCount();
  std::vector<std::string> tried;
  for (const std::string& name : callsOfASetup()) {
    // The runtime's own bookkeeping is no step that can fail a setup: deletes (a failed delete
    // keeps its object by definition), the error text, the one-time logging and runtime probe.
    if (name.find("_Delete") != std::string::npos || name == "Snpe_ErrorCode_GetLastErrorString" ||
        name == "Snpe_Util_InitializeLogging" || name == "Snpe_Util_IsRuntimeAvailableCheckOption" ||
        name == "Snpe_PlatformConfig_SetPlatformOptions") {
      continue;
    }
    tried.push_back(name);
    {
      MeanColourProcessing processing(kType, config);
      snpe_stub::reset();
      snpe_stub::failCall(name, 1);
      tivora::test::LogCapture capture;
      const tvr_err_t status = static_cast<hvx::IProcessing&>(processing).setup(&create);
      std::string lastError;
      for (const auto& record : capture.records()) {
        if (record.priority == 6) lastError = record.text;
      }
      const auto known = expected.find(name);
      ASSERT_NE(known, expected.end()) << name << " is a call of the setup no case expects; status " << status
                                       << ", last error: " << lastError;
      EXPECT_EQ(status, known->second.status) << name;
      EXPECT_EQ(lastError.rfind(known->second.message, 0), 0u) << name << ": " << lastError;
      // A failed setup has already run the teardown hook; a second teardown must be harmless.
      static_cast<hvx::IProcessing&>(processing).teardown();
    }
    EXPECT_EQ(snpe_stub::liveCount(), liveBefore) << name;
  }
  EXPECT_GE(tried.size(), expected.size() - 2) << "the setup makes fewer calls than expected";
}

}  // namespace
