// The manager's slots through the NN runtime's stand-in: building, sharing, rebuilding, executing,
// from many threads at once too (the tsan build runs them under ThreadSanitizer), and that every
// runtime object a case makes is released. Its messages are in log/MessagesTest.cpp; the runtime's
// failures at every step of a build are injected through the sample (examples/MeanColourTest.cpp).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "DlSystem/TensorShape.h"
#include "LogCapture.h"
#include "SNPEMgr.h"
#include "SlotNetworks.h"
#include "Threads.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::SNPEParam;
using tivora::test::onThreads;
using tivora::test::SlotBuffers;

// The journal's calls without their "Snpe_" prefix, one word each.
std::string calls() {
  std::string names;
  for (const auto& call : snpe_stub::journal()) names += (names.empty() ? "" : " ") + call.name.substr(5);
  return names;
}

size_t countOf(const std::string& name) {
  size_t count = 0;
  for (const auto& call : snpe_stub::journal()) count += call.name == "Snpe_" + name;
  return count;
}

// The arguments of the first call of `name`, after the handle it was made on.
std::string argsOf(const std::string& name) {
  for (const auto& call : snpe_stub::journal()) {
    if (call.name == "Snpe_" + name) return call.args.substr(call.args.find(", ") + 2);
  }
  return "<not called>";
}

class NetworkManagerTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    param = tivora::test::paramFor(tivora::test::writeModel("mean.dlc", tivora::test::kMeanModel));
    snpe_stub::reset();
  }
  void TearDown() override {
    buffers.clear();
    for (unsigned int slot = 0; slot < 40; ++slot) manager->deleteSNPE(slot);
    EXPECT_EQ(snpe_stub::liveCount(), live) << "every runtime object the case made is released";
    DeviceTest::TearDown();
  }
  tvr_err_t create(unsigned int slot, SNPEParam p) { return manager->createSNPE(slot, p, layers); }

  tivora::SNPEMgr* manager = tivora::SNPEMgr::getInstance();
  const int live = snpe_stub::liveCount();
  SNPEParam param;
  std::vector<std::string> layers;
  std::deque<SlotBuffers> buffers;  // the mean model's buffers in slots, until the case ends
};

// Equal parameters share the slot's network; different ones delete it, then build anew. A failed
// rebuild leaves the slot empty for everyone, and the old parameters do not bring the old network
// back: the empty slot builds anew.
TEST_F(NetworkManagerTest, EqualParametersShareOneNetworkDifferentOnesRebuild) {
  ASSERT_EQ(create(3, param), 0);
  EXPECT_EQ(create(3, param), 0);
  EXPECT_EQ(countOf("SNPEBuilder_Build"), 1u);
  snpe_stub::reset();
  param.profile = TVR_PERF_PROFILE_BURST;
  ASSERT_EQ(create(3, param), 0);
  EXPECT_EQ(calls().find("SNPE_Delete DlContainer_Open"), 0u) << calls();
  EXPECT_NE(argsOf("SNPE_Delete"), "null");
  EXPECT_EQ(snpe_stub::liveCount(snpe_stub::Kind::Network), live + 1);

  std::vector<std::string> unknown = {"no_such_output"};
  param.debug_mode = true;
  EXPECT_EQ(manager->createSNPE(3, param, unknown), 5);
  EXPECT_EQ(manager->execute(3), 1);
  param.debug_mode = false;
  snpe_stub::reset();
  EXPECT_EQ(create(3, param), 0);
  EXPECT_EQ(countOf("SNPEBuilder_Build"), 1u);
}

TEST_F(NetworkManagerTest, BuildsWithTheSettingsInTheirOrderAndKeepsOnlyTheNetwork) {
  ASSERT_EQ(create(0, param), 0);  // the CPU is probed, once per process
  snpe_stub::reset();
  param.cpu_fallback_mode = true;  // on the CPU itself: the CPU is listed twice
  param.profile = TVR_PERF_PROFILE_BURST;
  param.priority = TVR_EXEC_PRIORITY_LOW;
  layers = {"mean"};
  ASSERT_EQ(create(0, param), 0);
  EXPECT_EQ(calls(),
            "SNPE_Delete DlContainer_Open RuntimeList_Create RuntimeList_Add RuntimeList_Add StringList_Create "
            "StringList_Append PlatformConfig_Create PlatformConfig_SetPlatformOptions SNPEBuilder_Create "
            "SNPEBuilder_SetRuntimeProcessorOrder SNPEBuilder_SetPerformanceProfile SNPEBuilder_SetProfilingLevel "
            "SNPEBuilder_SetExecutionPriorityHint SNPEBuilder_SetDebugMode SNPEBuilder_SetOutputLayers "
            "SNPEBuilder_SetUseUserSuppliedBuffers SNPEBuilder_SetPlatformConfig SNPEBuilder_Build RuntimeList_Delete "
            "StringList_Delete PlatformConfig_Delete SNPEBuilder_Delete DlContainer_Delete");
  EXPECT_EQ(argsOf("PlatformConfig_SetPlatformOptions") + argsOf("StringList_Append"), "\"unsignedPD:OFF\"\"mean\"");
  EXPECT_EQ(argsOf("SNPEBuilder_SetPerformanceProfile") + argsOf("SNPEBuilder_SetProfilingLevel") +
                argsOf("SNPEBuilder_SetExecutionPriorityHint") + argsOf("SNPEBuilder_SetDebugMode") +
                argsOf("SNPEBuilder_SetUseUserSuppliedBuffers"),
            "50201");
  EXPECT_EQ(snpe_stub::liveCount(), live + 1) << "only the network is left";
}

// Refused before the runtime is asked: a slot beyond the last, a model file that is not there, a
// runtime that is not there (asked once per process), no such runtime (never asked). A file that
// is no container fails to open.
TEST_F(NetworkManagerTest, RequestsThatCannotBeBuiltReturnTheirStatus) {
  EXPECT_EQ(create(40, param), 1);
  EXPECT_EQ(create(1, tivora::test::paramFor(std::string(tivora::paths::kVendorCameraDir) + "/none.dlc")), 8);
  EXPECT_EQ(countOf("DlContainer_Open"), 0u);
  EXPECT_EQ(create(1, tivora::test::paramFor(tivora::test::writeModel("bad.dlc", "TIVORA-HOST-DLC 1\n"))), 4);
  snpe_stub::reset();
  for (const tvr_runtime_t runtime : {TVR_RUNTIME_DSP, TVR_RUNTIME_DSP, static_cast<tvr_runtime_t>(5)}) {
    param.runtime = runtime;
    EXPECT_EQ(create(2, param), 2);
  }
  EXPECT_EQ(countOf("Util_IsRuntimeAvailableCheckOption"), 1u);
}

// Out of range (also when a processing has grown the public maps), no network, an empty map, a
// failure of the runtime: 1 or 7, and the next call tries again. Buffer names are read without
// keeping the runtime's name lists.
TEST_F(NetworkManagerTest, ExecutesOnTheSlotsUserBuffers) {
  manager->mInputMap.resize(41);
  manager->mOutputMap.resize(41);
  EXPECT_EQ(manager->execute(40), 1);
  manager->mInputMap.resize(40);
  manager->mOutputMap.resize(40);
  EXPECT_EQ(manager->execute(7), 1);
  ASSERT_EQ(create(7, param), 0);
  buffers.emplace_back(manager, 7, false);
  EXPECT_EQ(manager->execute(7), 1);
  buffers.clear();
  SlotBuffers& slot = buffers.emplace_back(manager, 7);
  for (size_t i = 0; i < slot.image.size(); ++i) slot.image[i] = static_cast<float>(i % 3) * 10.0f + 1.0f;
  snpe_stub::failCall("Snpe_SNPE_ExecuteUserBuffers", 1);
  EXPECT_EQ(manager->execute(7), 7);
  EXPECT_EQ(manager->execute(7), 0);
  EXPECT_EQ(slot.mean, (std::vector<float>{1.0f, 11.0f, 21.0f}));
  const int lists = snpe_stub::liveCount(snpe_stub::Kind::StringList);
  EXPECT_EQ(manager->getInputBufferName(7, 0) + manager->getOutputBufferName(7, 0) + manager->getOutputBufferName(7, 1),
            "imagemean");
  EXPECT_EQ(snpe_stub::liveCount(snpe_stub::Kind::StringList), lists);
  const size_t dims[] = {1, 224, 224, 3};
  Snpe_TensorShape_Handle_t shape = Snpe_TensorShape_CreateDimsSize(dims, 4);
  EXPECT_EQ(tivora::getBufferSize(shape), 150528u);
  Snpe_TensorShape_Delete(shape);
}

// Eight threads create (with one of two parameter sets, so that they rebuild), execute, delete,
// register owners and ask for names, on three shared slots and a slot of their own each.
TEST_F(NetworkManagerTest, MixedOperationsOnSharedAndPrivateSlotsFromManyThreads) {
  const tivora::test::ScopedLogLevel quiet(tivora::TivoraLogger::TVR_LOG_WARN);
  snpe_stub::setJournaling(false);  // thousands of calls; the journal is not under test here
  for (unsigned int slot : {0u, 1u, 2u, 10u, 11u, 12u, 13u, 14u, 15u, 16u, 17u}) buffers.emplace_back(manager, slot);
  SNPEParam other = param;
  other.debug_mode = true;
  std::atomic<int> unexpected{0}, executed{0};
  onThreads(8, [&](unsigned int t) {
    std::mt19937 random(t * 7919u + 1u);
    const unsigned int own = 10u + t;
    std::vector<std::string> outputs;
    for (int i = 0; i < 600; ++i) {
      const unsigned int slot = random() % 4 == 0 ? own : static_cast<unsigned int>(random() % 3);
      const auto operation = random() % 6;
      if (operation < 2) {
        unexpected += manager->createSNPE(slot, random() % 2 == 0 ? param : other, outputs) != 0;
      } else if (operation < 4) {
        const tvr_err_t status = manager->execute(slot);
        executed += status == 0;
        unexpected += status != 0 && status != 1;  // 1: another thread deleted it meanwhile
      } else if (operation == 4) {
        if (random() % 4 == 0) manager->deleteSNPE(slot);
      } else {
        manager->registerOwner(own, static_cast<unsigned long>(i));
        manager->unregisterOwner(own, static_cast<unsigned long>(i));
        (void)manager->getModelVersion(slot);
        (void)manager->getInputBufferName(slot, 0);
      }
    }
  });
  EXPECT_EQ(unexpected, 0);
  EXPECT_GT(executed, 0);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 1);
}

// Executions that take a while, on eight slots and then all on one: they overlap across slots, and
// never on one. Runtimes no other case uses are probed once, however many threads ask first.
TEST_F(NetworkManagerTest, ExecutionsOverlapOnlyAcrossSlotsAndRuntimesAreProbedOnce) {
  for (unsigned int slot = 0; slot < 8; ++slot) {
    ASSERT_EQ(create(slot, param), 0);
    buffers.emplace_back(manager, slot);
  }
  for (const bool shared : {false, true}) {
    snpe_stub::reset();
    snpe_stub::setExecuteDelay(std::chrono::milliseconds(1));
    onThreads(8, [&](unsigned int t) {
      for (int i = 0; i < 10; ++i) EXPECT_EQ(manager->execute(shared ? 3u : t), 0);
    });
    EXPECT_EQ(snpe_stub::maxConcurrentExecutions() > 1, !shared);
  }
  snpe_stub::reset();
  snpe_stub::setRuntimeAvailable(SNPE_RUNTIME_GPU, true);
  onThreads(8, [&](unsigned int t) {
    SNPEParam own = param;
    own.runtime = t % 2 == 0 ? TVR_RUNTIME_GPU : TVR_RUNTIME_AIP;  // AIP is not available
    std::vector<std::string> outputs;
    EXPECT_EQ(manager->createSNPE(20 + t, own, outputs), t % 2 == 0 ? 0 : 2);
  });
  EXPECT_EQ(countOf("Util_IsRuntimeAvailableCheckOption"), 2u) << "one probe per runtime";
}

}  // namespace
