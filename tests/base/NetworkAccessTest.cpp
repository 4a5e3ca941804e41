// A processing's networks by index: which manager slot each request reaches, and what happens
// without a manager. The slot is observed through the manager and the NN runtime stand-in.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::SNPEMgr;
using tivora::TivoraLogger;
using tivora::test::LogCapture;
using tivora::test::RecordingProcessing;
using Strings = std::vector<std::string>;

const std::string kModelPath = std::string(tivora::paths::kLocalDir) + "/slot.dlc";

// Arguments of every journalled call of `name`.
Strings argsOf(const std::string& name) {
  Strings args;
  for (const auto& call : snpe_stub::journal()) {
    if (call.name == name) args.push_back(call.args);
  }
  return args;
}

class NetworkAccessTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    tivora::test::writeFile(kModelPath,
                            "TIVORA-HOST-DLC 1\nversion: slot-v1\ninput: in 1x3\noutput: out 1x3\nop: copy\n");
    std::strcpy(mParam.dlc_path, kModelPath.c_str());
    mParam.runtime = TVR_RUNTIME_CPU;
    mParam.use_user_buffers = true;
    mSavedLevel = TivoraLogger::getInstance()->getLogLevel();
    TivoraLogger::getInstance()->setLogLevel(TivoraLogger::TVR_LOG_ERROR);
    snpe_stub::reset();
  }
  void TearDown() override {
    SNPEMgr* mgr = SNPEMgr::getInstance();
    for (unsigned int slot = 0; slot < 40; ++slot) {
      mgr->deleteSNPE(slot);
      for (auto* maps : {&mgr->mInputMap, &mgr->mOutputMap}) {
        if ((*maps)[slot] != nullptr) Snpe_UserBufferMap_Delete((*maps)[slot]);
        (*maps)[slot] = nullptr;
      }
    }
    TivoraLogger::getInstance()->setLogLevel(mSavedLevel);
    DeviceTest::TearDown();
  }
  // Gives the slot empty input and output maps, so that name look-ups reach the runtime.
  void attachMaps(unsigned int slot) {
    SNPEMgr::getInstance()->mInputMap[slot] = Snpe_UserBufferMap_Create();
    SNPEMgr::getInstance()->mOutputMap[slot] = Snpe_UserBufferMap_Create();
  }

  tivora::SNPEParam mParam;
  Strings mOutputs;
  TivoraLogger::tvr_loglevel_t mSavedLevel{};
};

struct SlotCase {
  unsigned int index;
  unsigned int slot;
};

class SlotMappingTest : public NetworkAccessTest, public ::testing::WithParamInterface<SlotCase> {};

TEST_P(SlotMappingTest, EveryOperationAddressesTheSlotOfTypeAndIndex) {
  const auto [index, slot] = GetParam();
  const std::string prefix = "[TVR ERROR] SNPEMgr.execute: [" + std::to_string(slot) + "] ";
  SNPEMgr* mgr = SNPEMgr::getInstance();
  RecordingProcessing processing(2);

  LogCapture capture;
  EXPECT_EQ(processing.executeSNPE(index), 1);
  ASSERT_EQ(processing.createSNPE(index, mParam, mOutputs), 0);
  EXPECT_EQ(mgr->getModelVersion(slot), "slot-v1");
  EXPECT_EQ(processing.getModelVersion(index), "slot-v1");
  EXPECT_EQ(processing.executeSNPE(index), 1);  // a network now, but no buffers
  EXPECT_EQ(capture.texts(), (Strings{prefix + "SNPE instance(0x1) is not available",
                                      prefix + "SNPE buffer(input(0), output(0)) is not available"}));

  attachMaps(slot);
  snpe_stub::reset();
  processing.getInputBufferName(index, 2);
  processing.getOutputBufferName(index, 3);
  EXPECT_EQ(argsOf("Snpe_UserBufferMap_GetUserBufferNames"),
            (Strings{snpe_stub::handleName(mgr->mInputMap[slot]), snpe_stub::handleName(mgr->mOutputMap[slot])}));
  const Strings at = argsOf("Snpe_StringList_At");
  ASSERT_EQ(at.size(), 2u);
  EXPECT_EQ(at[0].substr(at[0].rfind(", ")), ", 2");
  EXPECT_EQ(at[1].substr(at[1].rfind(", ")), ", 3");

  processing.deleteSNPE(index);
  EXPECT_EQ(mgr->getModelVersion(slot), "");
}

// Indices from 5 on reach the first slot of the next resource type.
INSTANTIATE_TEST_SUITE_P(ResourceType2, SlotMappingTest,
                         ::testing::Values(SlotCase{0, 10}, SlotCase{4, 14}, SlotCase{5, 15}, SlotCase{7, 15},
                                           SlotCase{UINT32_MAX, 15}),
                         [](const ::testing::TestParamInfo<SlotCase>& p) {
                           return "Index" + std::to_string(p.param.index) + "Slot" + std::to_string(p.param.slot);
                         });

TEST_F(NetworkAccessTest, WithoutManagerNothingIsForwardedAndNetworkRequestsFail) {
  RecordingProcessing owner(2);
  ASSERT_EQ(owner.createSNPE(4, mParam, mOutputs), 0);
  attachMaps(14);
  RecordingProcessing processing(2);
  processing.unbind(/*alsoLogger=*/true);  // the message comes from the process's logger
  snpe_stub::reset();
  LogCapture capture;

  EXPECT_EQ(processing.getModelVersion(4), "");
  EXPECT_EQ(processing.getInputBufferName(4, 0), "");
  EXPECT_EQ(processing.getOutputBufferName(4, 0), "");
  processing.deleteSNPE(4);
  EXPECT_TRUE(capture.records().empty());
  EXPECT_EQ(processing.createSNPE(4, mParam, mOutputs), 1);
  EXPECT_EQ(processing.executeSNPE(4), 1);

  EXPECT_TRUE(snpe_stub::journal().empty());
  EXPECT_EQ(owner.getModelVersion(4), "slot-v1");
  const auto records = capture.records();
  ASSERT_EQ(records.size(), 2u);
  for (const auto& record : records) {
    EXPECT_EQ(record.priority, 6);
    EXPECT_EQ(record.tag, "TVR");
  }
  EXPECT_EQ(records[0].text, "[TVR ERROR] SNPEMgr.createSNPE: [4] SNPE Mgr is null");
  EXPECT_EQ(records[1].text, "[TVR ERROR] SNPEMgr.executeSNPE: [4] SNPE Mgr is null");

  TivoraLogger::getInstance()->setLogLevel(static_cast<TivoraLogger::tvr_loglevel_t>(5));
  LogCapture suppressed;
  EXPECT_EQ(processing.createSNPE(7, mParam, mOutputs), 1);
  EXPECT_EQ(processing.executeSNPE(7), 1);
  EXPECT_TRUE(suppressed.records().empty());
}

}  // namespace
