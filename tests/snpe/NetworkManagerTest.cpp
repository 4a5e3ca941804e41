// The manager's slots through the NN runtime's stand-in: building, sharing, rebuilding, deleting,
// executing, and what every failure reports and releases. The manager and the runtime probe are
// process-wide, so every case runs in a fresh process.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "DlSystem/TensorShape.h"
#include "FreshProcess.h"
#include "LogCapture.h"
#include "SNPEMgr.h"
#include "SlotNetworks.h"
#include "TivoraLogger.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using snpe_stub::Kind;
using tivora::SNPEMgr;
using tivora::SNPEParam;
using tivora::test::LogCapture;
using tivora::test::SlotBuffers;
using tivora::test::Tensor;

std::vector<std::string> callNames() {
  std::vector<std::string> names;
  for (const auto& call : snpe_stub::journal()) names.push_back(call.name);
  return names;
}

size_t countOf(const std::vector<std::string>& names, const std::string& name) {
  return static_cast<size_t>(std::count(names.begin(), names.end(), name));
}

// Texts of the records, with the nanosecond counts of timing lines replaced by "N".
std::vector<std::string> messages(const LogCapture& capture) {
  std::vector<std::string> texts;
  for (const auto& text : capture.texts()) texts.push_back(std::regex_replace(text, std::regex(" : \\d+$"), " : N"));
  return texts;
}

const std::string kLoadTiming = "[TVR INFO] TivoraBase.createSNPEInternal: createSNPE.loadContainer : N";
const std::string kBuildTiming = "[TVR INFO] TivoraBase.createSNPEInternal: createSNPE.build : N";

class NetworkManagerTest : public tivora::test::DeviceTest {
 protected:
  // Runs `body` in a fresh process with a fresh manager and a reset stand-in.
  template <typename Body>
  void run(Body body) {
    const std::string mean = tivora::test::writeModel("mean.dlc", tivora::test::kMeanModel);
    tivora::test::inFreshProcess([&] {
      tivora::TivoraLogger::getInstance();  // configured before anything is captured
      SNPEMgr* manager = SNPEMgr::getInstance();
      snpe_stub::reset();
      body(manager, tivora::test::paramFor(mean));
    });
  }
};

TEST_F(NetworkManagerTest, EqualParametersShareOneNetwork) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(3, param, layers), 0);
    LogCapture capture;
    SNPEParam same = param;
    EXPECT_EQ(manager->createSNPE(3, same, layers), 0);
    EXPECT_EQ(messages(capture),
              std::vector<std::string>{"[TVR INFO] SnpeMgr.createSNPE: [3] SNPE instance has been created"});
    EXPECT_EQ(countOf(callNames(), "Snpe_SNPEBuilder_Build"), 1u);
    EXPECT_EQ(snpe_stub::liveCount(Kind::Network), 1);
    EXPECT_EQ(manager->getModelVersion(3), "mean-colour-1.0");
  });
}

TEST_F(NetworkManagerTest, DifferentParametersDeleteTheNetworkThenRebuild) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(3, param, layers), 0);
    const auto first = callNames();
    param.debug_mode = true;
    ASSERT_EQ(manager->createSNPE(3, param, layers), 0);
    const auto calls = snpe_stub::journal();
    const auto deleted = std::find_if(calls.begin() + static_cast<long>(first.size()), calls.end(),
                                      [](const auto& c) { return c.name == "Snpe_SNPE_Delete"; });
    const auto built = std::find_if(calls.begin() + static_cast<long>(first.size()), calls.end(),
                                    [](const auto& c) { return c.name == "Snpe_SNPEBuilder_Create"; });
    ASSERT_NE(deleted, calls.end());
    EXPECT_EQ(deleted->args, "snpe#1");
    EXPECT_LT(deleted - calls.begin(), built - calls.begin()) << "the old network goes first";
    EXPECT_EQ(snpe_stub::liveCount(Kind::Network), 1);
  });
}

TEST_F(NetworkManagerTest, BuildsWithTheSettingsInTheirOrderAndReleasesEverything) {
  run([](SNPEMgr* manager, SNPEParam param) {
    param.cpu_fallback_mode = true;  // on the CPU itself: the CPU is listed twice
    param.profile = TVR_PERF_PROFILE_BURST;
    param.priority = TVR_EXEC_PRIORITY_LOW;
    param.debug_mode = true;
    std::vector<std::string> layers = {"mean"};
    ASSERT_EQ(manager->createSNPE(0, param, layers), 0);

    const std::vector<std::string> expected = {"Snpe_Util_IsRuntimeAvailableCheckOption",
                                               "Snpe_DlContainer_Open",
                                               "Snpe_RuntimeList_Create",
                                               "Snpe_RuntimeList_Add",
                                               "Snpe_RuntimeList_Add",
                                               "Snpe_StringList_Create",
                                               "Snpe_StringList_Append",
                                               "Snpe_PlatformConfig_Create",
                                               "Snpe_PlatformConfig_SetPlatformOptions",
                                               "Snpe_SNPEBuilder_Create",
                                               "Snpe_SNPEBuilder_SetRuntimeProcessorOrder",
                                               "Snpe_SNPEBuilder_SetPerformanceProfile",
                                               "Snpe_SNPEBuilder_SetProfilingLevel",
                                               "Snpe_SNPEBuilder_SetExecutionPriorityHint",
                                               "Snpe_SNPEBuilder_SetDebugMode",
                                               "Snpe_SNPEBuilder_SetOutputLayers",
                                               "Snpe_SNPEBuilder_SetUseUserSuppliedBuffers",
                                               "Snpe_SNPEBuilder_SetPlatformConfig",
                                               "Snpe_SNPEBuilder_Build",
                                               "Snpe_RuntimeList_Delete",
                                               "Snpe_StringList_Delete",
                                               "Snpe_PlatformConfig_Delete",
                                               "Snpe_SNPEBuilder_Delete",
                                               "Snpe_DlContainer_Delete"};
    auto names = callNames();
    names.erase(names.begin(), std::find(names.begin(), names.end(), expected.front()));
    EXPECT_EQ(names, expected);

    const auto calls = snpe_stub::journal();
    const auto args = [&calls](const std::string& name) {
      for (const auto& call : calls) {
        if (call.name == name) return call.args;
      }
      return std::string("<not called>");
    };
    EXPECT_EQ(args("Snpe_Util_IsRuntimeAvailableCheckOption"), "0, 0");
    EXPECT_EQ(args("Snpe_PlatformConfig_SetPlatformOptions"), "platformconfig#1, \"unsignedPD:OFF\"");

    EXPECT_EQ(args("Snpe_SNPEBuilder_SetPerformanceProfile"), "builder#1, 5");
    EXPECT_EQ(args("Snpe_SNPEBuilder_SetProfilingLevel"), "builder#1, 0");
    EXPECT_EQ(args("Snpe_SNPEBuilder_SetExecutionPriorityHint"), "builder#1, 2");
    EXPECT_EQ(args("Snpe_SNPEBuilder_SetDebugMode"), "builder#1, 1");
    EXPECT_EQ(args("Snpe_SNPEBuilder_SetUseUserSuppliedBuffers"), "builder#1, 1");
    EXPECT_EQ(args("Snpe_StringList_Append"), "stringlist#1, \"mean\"");
    EXPECT_EQ(snpe_stub::liveCount(), 1) << "only the network is left";
  });
}

TEST_F(NetworkManagerTest, SlotBeyondTheLastIsRefusedUntouched) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::string> layers;
    LogCapture capture;
    EXPECT_EQ(manager->createSNPE(40, param, layers), 1);
    EXPECT_EQ(messages(capture),
              std::vector<std::string>{"[TVR ERROR] SnpeMgr.createSNPE: [40] Id is SNPE size(40) or over"});
    EXPECT_TRUE(snpe_stub::journal().empty());
    manager->deleteSNPE(40);
    manager->registerOwner(40, 1);
    manager->unregisterOwner(40, 1);
    EXPECT_EQ(manager->getModelVersion(40), "");
    EXPECT_EQ(manager->getInputBufferName(40, 0), "");
    EXPECT_EQ(capture.texts().size(), 1u);
  });
}

TEST_F(NetworkManagerTest, MissingModelFileIsNotGivenToTheRuntime) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::snprintf(param.dlc_path, sizeof param.dlc_path, "%s/missing.dlc", tivora::paths::kVendorCameraDir);
    std::vector<std::string> layers;
    LogCapture capture;
    EXPECT_EQ(manager->createSNPE(1, param, layers), 8);
    EXPECT_EQ(messages(capture),
              (std::vector<std::string>{
                  "[TVR INFO] TivoraUtil.checkRuntime: checkRuntime(0) : N",
                  std::string("[TVR ERROR] TivoraBase.createSNPEInternal: DLC file(") + param.dlc_path + ") is invalid",
                  kLoadTiming, kBuildTiming}));
    EXPECT_EQ(countOf(callNames(), "Snpe_DlContainer_Open"), 0u);
    EXPECT_EQ(snpe_stub::liveCount(), 0);
  });
}

TEST_F(NetworkManagerTest, FilesThatAreNoContainersFailToOpen) {
  for (const std::string& content : {std::string("not a model\n"), std::string("TIVORA-HOST-DLC 1\nversion: x\n"),
                                     std::string("\x7f"
                                                 "ELF\0\0\0",
                                                 7)}) {
    const std::string path = tivora::test::writeModel("bad.dlc", content);
    run([&path](SNPEMgr* manager, SNPEParam param) {
      std::snprintf(param.dlc_path, sizeof param.dlc_path, "%s", path.c_str());
      std::vector<std::string> layers;
      LogCapture capture;
      EXPECT_EQ(manager->createSNPE(1, param, layers), 4);
      const auto texts = messages(capture);
      EXPECT_NE(
          std::find(texts.begin(), texts.end(), "[TVR ERROR] TivoraBase.createSNPEInternal: Container open failed"),
          texts.end());
      EXPECT_EQ(texts.back(), kBuildTiming);
      EXPECT_EQ(snpe_stub::liveCount(), 0);
      EXPECT_EQ(manager->execute(1), 1);
    });
  }
}

TEST_F(NetworkManagerTest, UnavailableRuntimeIsProbedOnceAndRemembered) {
  run([](SNPEMgr* manager, SNPEParam param) {
    param.runtime = TVR_RUNTIME_DSP;
    std::vector<std::string> layers;
    LogCapture first;
    EXPECT_EQ(manager->createSNPE(2, param, layers), 2);
    EXPECT_EQ(messages(first),
              (std::vector<std::string>{"[TVR INFO] TivoraUtil.checkRuntime: checkRuntime(2) : N",
                                        "[TVR ERROR] TivoraUtil.checkRuntime: Runtime(2) is not available: "
                                        "Snpe_Util_IsRuntimeAvailableCheckOption: runtime 2 is not available",
                                        "[TVR ERROR] TivoraBase.createSNPEInternal: Runtime(2) is not available",
                                        kLoadTiming, kBuildTiming}));
    LogCapture second;
    EXPECT_EQ(manager->createSNPE(2, param, layers), 2);
    EXPECT_EQ(messages(second),
              (std::vector<std::string>{"[TVR ERROR] TivoraBase.createSNPEInternal: Runtime(2) is not available",
                                        kLoadTiming, kBuildTiming}));
    EXPECT_EQ(countOf(callNames(), "Snpe_Util_IsRuntimeAvailableCheckOption"), 1u);
    EXPECT_EQ(snpe_stub::liveCount(), 0);
  });
}

// Every step of the build that can fail, in the order the build takes them.
class BuildFailureTest : public NetworkManagerTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(BuildFailureTest, StopsThereReportsAndReleasesEverything) {
  const std::string failing = GetParam();
  run([&failing](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::string> layers;
    snpe_stub::failCall(failing, 1, "scripted: " + failing);
    LogCapture capture;
    EXPECT_EQ(manager->createSNPE(6, param, layers), 5);

    const auto names = callNames();
    const auto at = std::find(names.begin(), names.end(), failing);
    ASSERT_NE(at, names.end());
    EXPECT_EQ(countOf(names, "Snpe_SNPEBuilder_Build"), failing == "Snpe_SNPEBuilder_Build" ? 1u : 0u);
    EXPECT_EQ(std::count_if(at + 1, names.end(),
                            [](const std::string& n) { return n.rfind("Snpe_SNPEBuilder_Set", 0) == 0; }),
              0)
        << "no setter after the failing step";
    const auto texts = messages(capture);
    ASSERT_GE(texts.size(), 3u);
    // The reason is the runtime's last error after the clean-up; a failed builder creation leaves the
    // clean-up's own complaint about deleting a null builder.
    const std::string reason = failing == "Snpe_SNPEBuilder_Create" ? ".*" : "scripted: " + failing;
    EXPECT_TRUE(std::regex_match(
        texts[texts.size() - 2],
        std::regex(
            "\\[TVR ERROR\\] TivoraBase\\.createSNPEInternal: SNPE instance\\(builder\\((0x[0-9a-f]+|\\(nil\\))\\), "
            "SNPE tmp\\(\\(nil\\)\\)\\) creation failed\\(" +
            reason + "\\)")))
        << texts[texts.size() - 2];
    EXPECT_EQ(texts.back(), kBuildTiming);
    EXPECT_EQ(snpe_stub::liveCount(), 0);
    EXPECT_EQ(manager->getModelVersion(6), "");
  });
}

INSTANTIATE_TEST_SUITE_P(Steps, BuildFailureTest,
                         ::testing::Values("Snpe_SNPEBuilder_Create", "Snpe_SNPEBuilder_SetRuntimeProcessorOrder",
                                           "Snpe_SNPEBuilder_SetPerformanceProfile",
                                           "Snpe_SNPEBuilder_SetProfilingLevel",
                                           "Snpe_SNPEBuilder_SetExecutionPriorityHint", "Snpe_SNPEBuilder_SetDebugMode",
                                           "Snpe_SNPEBuilder_SetOutputLayers",
                                           "Snpe_SNPEBuilder_SetUseUserSuppliedBuffers",
                                           "Snpe_SNPEBuilder_SetPlatformConfig", "Snpe_SNPEBuilder_Build"),
                         [](const auto& tested) { return std::string(tested.param).substr(5); });

TEST_F(NetworkManagerTest, FailedRebuildLeavesTheSlotEmptyForEveryone) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(4, param, layers), 0);
    param.debug_mode = true;  // different parameters, and a build that fails
    std::vector<std::string> unknown = {"no_such_output"};
    EXPECT_EQ(manager->createSNPE(4, param, unknown), 5);
    LogCapture capture;
    EXPECT_EQ(manager->execute(4), 1);
    EXPECT_EQ(capture.texts(),
              std::vector<std::string>{"[TVR ERROR] SNPEMgr.execute: [4] SNPE instance(0x1) is not available"});
    EXPECT_EQ(snpe_stub::liveCount(), 0);
    // The old parameters do not bring the old network back: the empty slot builds anew.
    param.debug_mode = false;
    EXPECT_EQ(manager->createSNPE(4, param, layers), 0);
    EXPECT_EQ(countOf(callNames(), "Snpe_SNPEBuilder_Build"), 3u);
  });
}

TEST_F(NetworkManagerTest, DeleteEmptiesTheSlotAndTheNextCreateBuildsAnew) {
  run([](SNPEMgr* manager, SNPEParam param) {
    manager->deleteSNPE(9);  // an empty slot: the runtime is still asked to delete "nothing"
    EXPECT_EQ(callNames(), std::vector<std::string>{"Snpe_SNPE_Delete"});
    EXPECT_EQ(snpe_stub::journal()[0].args, "null");
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(9, param, layers), 0);
    manager->deleteSNPE(9);
    EXPECT_EQ(snpe_stub::liveCount(Kind::Network), 0);
    EXPECT_EQ(manager->getModelVersion(9), "");
    ASSERT_EQ(manager->createSNPE(9, param, layers), 0);
    EXPECT_EQ(countOf(callNames(), "Snpe_SNPEBuilder_Build"), 2u);
  });
}

TEST_F(NetworkManagerTest, OwnersAreBookkeepingOnly) {
  run([](SNPEMgr* manager, SNPEParam param) {
    tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_DEBUG);
    LogCapture capture;
    manager->registerOwner(3, 7);
    manager->registerOwner(3, 7);
    manager->unregisterOwner(3, 7);
    manager->unregisterOwner(3, 8);  // never registered: no error
    EXPECT_EQ(capture.texts(), (std::vector<std::string>{"[TVR DEBUG] SNPEMgr.registerOwner: [3] Register 7",
                                                         "[TVR DEBUG] SNPEMgr.registerOwner: [3] Register 7",
                                                         "[TVR DEBUG] SNPEMgr.unregisterOwner: [3] UnRegister 7",
                                                         "[TVR DEBUG] SNPEMgr.unregisterOwner: [3] UnRegister 8"}));
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(3, param, layers), 0);
    manager->registerOwner(3, 1);
    manager->deleteSNPE(3);  // deletes whoever is registered
    EXPECT_EQ(snpe_stub::liveCount(Kind::Network), 0);
  });
}

TEST_F(NetworkManagerTest, ExecutesOnTheSlotsUserBuffers) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(7, param, layers), 0);
    SlotBuffers buffers(manager, 7, {{"image", {1, 4, 5, 3}}}, {{"mean", {1, 3}}});
    auto& image = buffers.input(0);
    for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<float>(i % 3) * 10.0f + 1.0f;
    tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_VERBOSE);
    LogCapture capture;
    EXPECT_EQ(manager->execute(7), 0);
    EXPECT_EQ(capture.texts(), std::vector<std::string>{"[TVR VERBOSE] SNPEMgr.execute: [7] Execute SNPE"});
    EXPECT_EQ(buffers.output(0), (std::vector<float>{1.0f, 11.0f, 21.0f}));
    EXPECT_EQ(manager->getInputBufferName(7, 0), "image");
    EXPECT_EQ(manager->getOutputBufferName(7, 0), "mean");
    EXPECT_EQ(manager->getOutputBufferName(7, 1), "");
  });
}

TEST_F(NetworkManagerTest, ExecutionFailuresReportAndChangeNothing) {
  run([](SNPEMgr* manager, SNPEParam param) {
    LogCapture capture;
    EXPECT_EQ(manager->execute(40), 1);
    EXPECT_EQ(manager->execute(7), 1);
    std::vector<std::string> layers;
    ASSERT_EQ(manager->createSNPE(7, param, layers), 0);
    EXPECT_EQ(manager->execute(7), 1);  // no maps at all
    {
      SlotBuffers inputsOnly(manager, 7, {{"image", {1, 4, 5, 3}}}, {});
      EXPECT_EQ(manager->execute(7), 1);
    }
    SlotBuffers buffers(manager, 7, {{"image", {1, 4, 5, 3}}}, {{"mean", {1, 3}}});
    snpe_stub::failCall("Snpe_SNPE_ExecuteUserBuffers", 1, "out of memory");
    EXPECT_EQ(manager->execute(7), 7);
    EXPECT_EQ(manager->execute(7), 0) << "the next call tries again";
    const std::vector<std::string> expected = {
        "[TVR ERROR] SNPEMgr.execute: Invarid class ID: 40",
        "[TVR ERROR] SNPEMgr.execute: [7] SNPE instance(0x1) is not available",
        "[TVR ERROR] SNPEMgr.execute: [7] SNPE buffer(input(0), output(0)) is not available",
        "[TVR ERROR] SNPEMgr.execute: [7] SNPE buffer(input(1), output(0)) is not available",
        "[TVR ERROR] SNPEMgr.execute: [7] SNPE execution failed(out of memory)"};
    auto texts = capture.texts();
    texts.erase(
        std::remove_if(texts.begin(), texts.end(), [](const std::string& t) { return t.find("[TVR ERROR]") != 0; }),
        texts.end());
    EXPECT_EQ(texts, expected);
  });
}

TEST_F(NetworkManagerTest, BufferSizeIsTheProductOfTheDimensions) {
  run([](SNPEMgr*, SNPEParam) {
    const size_t dims[] = {1, 224, 224, 3};
    Snpe_TensorShape_Handle_t shape = Snpe_TensorShape_CreateDimsSize(dims, 4);
    EXPECT_EQ(tivora::getBufferSize(shape), 150528u);
    Snpe_TensorShape_Delete(shape);
    Snpe_TensorShape_Handle_t scalar = Snpe_TensorShape_CreateDimsSize(nullptr, 0);
    EXPECT_EQ(tivora::getBufferSize(scalar), 1u);
    Snpe_TensorShape_Delete(scalar);
  });
}

TEST_F(NetworkManagerTest, ContainerFromMemoryStaysTheCallersBuffer) {
  run([](SNPEMgr*, SNPEParam) {
    const std::string model = tivora::test::kNoneModel;
    Snpe_DlContainer_Handle_t container =
        tivora::loadContainer(reinterpret_cast<const unsigned char*>(model.data()), model.size());
    ASSERT_NE(container, nullptr);
    Snpe_DlContainer_Delete(container);
    EXPECT_EQ(tivora::loadContainer(std::string("/nonexistent.dlc")), nullptr);
    EXPECT_EQ(snpe_stub::liveCount(), 0);
  });
}

}  // namespace
