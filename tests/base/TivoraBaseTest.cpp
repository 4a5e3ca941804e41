// The base of a processing as the host drives it. The host framework is compiled separately, against
// its own declaration of the processing interface, and reaches a processing only through that
// declaration's virtual-table layout: the cases call through an independent declaration of the
// host's view, so each call must land on the operation the host means, whatever order our own
// header declares them in. (The cast between unrelated classes is the point; UBSan's vptr check
// rejects it, so this file is compiled without that one check: tests/CMakeLists.txt.)
//
// Each call's status, the hooks it runs with the host's records and when it sets the image library's
// operation mode; and which manager slot a network request reaches. The messages are in
// log/MessagesTest.cpp.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "RecordingProcessing.h"
#include "SlotNetworks.h"
#include "fastcv_stub/FastcvControl.h"
#include "snpe_stub/SnpeControl.h"

namespace hostview {

class IProcessing {
 public:
  virtual int32_t setup(const void*) = 0;
  virtual int32_t initialize(const void*) = 0;
  virtual int32_t apply(const void*, void*, void*) = 0;
  virtual int32_t abort() = 0;
  virtual int32_t finalize() = 0;
  virtual int32_t teardown() = 0;
  virtual const char* getProcessingName() = 0;
  virtual ~IProcessing() {}
};

}  // namespace hostview

namespace {

using tivora::test::RecordingProcessing;
using Hooks = std::vector<std::string>;

enum Call { kSetup, kInitialize, kApply, kApplyDebug, kAbort, kFinalize, kTeardown };

struct Case {
  Call call;
  bool bound;
  bool record;       // false: the call's record is null (for apply: the input, for apply debug: the output)
  tvr_err_t hook;    // what the hooks return
  bool modeRefused;  // the image library refuses the operation mode
  tvr_err_t status;
  Hooks hooks;
  size_t modeCalls;  // fcvSetOperationMode calls, each with mode 3 (CPU performance)
};

// clang-format off
const Case kCases[] = {
    {kSetup,      true,  true,  0,  false, 0,  {"setupImpl"},                    0},
    {kSetup,      false, false, 0,  false, 3,  {"teardownImpl"},                 0},  // readiness before the record
    {kSetup,      true,  false, 0,  false, 12, {"teardownImpl"},                 0},
    {kSetup,      true,  true,  42, false, 42, {"setupImpl", "teardownImpl"},    0},
    {kInitialize, true,  true,  0,  false, 0,  {"initializeImpl"},               1},
    {kInitialize, false, false, 0,  false, 3,  {"finalizeImpl"},                 0},
    {kInitialize, true,  false, 0,  false, 12, {"finalizeImpl"},                 0},  // the record before the mode
    {kInitialize, true,  true,  0,  true,  16, {"finalizeImpl"},                 1},
    {kInitialize, true,  true,  -5, false, -5, {"initializeImpl", "finalizeImpl"}, 1},
    {kApply,      true,  true,  42, false, 42, {"applyImpl"},                    0},
    {kApply,      false, true,  42, false, 3,  {},                               0},
    {kApply,      true,  false, 42, false, 12, {},                               0},
    {kApplyDebug, true,  true,  43, false, 43, {"applyDebugImpl"},               0},
    {kApplyDebug, true,  false, 43, false, 12, {},                               0},
    {kAbort,      false, true,  42, false, 0,  {},                               0},
    {kFinalize,   false, true,  42, false, 0,  {"finalizeImpl"},                 0},
    {kTeardown,   false, true,  42, false, 0,  {"teardownImpl"},                 0},
};
// clang-format on

tvr_create_param_t gCreate{};
tvr_static_param_t gStream{};
tvr_input_param_t gInput{};
int gOutput = 0, gDebug = 0;

tvr_err_t act(hostview::IProcessing& host, const Case& c) {
  // clang-format off
  switch (c.call) {
    case kSetup: return host.setup(c.record ? &gCreate : nullptr);
    case kInitialize: return host.initialize(c.record ? &gStream : nullptr);
    case kApply: return host.apply(c.record ? &gInput : nullptr, &gOutput, nullptr);
    case kApplyDebug: return host.apply(&gInput, c.record ? &gOutput : nullptr, &gDebug);
    case kAbort: return host.abort();
    case kFinalize: return host.finalize();
    case kTeardown: return host.teardown();
  }
  // clang-format on
  return -1;
}

// The host's view of a processing made by `new`, as the host gets it.
hostview::IProcessing* hostView(RecordingProcessing* processing) {
  return reinterpret_cast<hostview::IProcessing*>(static_cast<hvx::IProcessing*>(processing));
}

using TivoraBaseTest = tivora::test::DeviceTest;

TEST_F(TivoraBaseTest, EveryHostCallRunsItsChecksAndHooks) {
  using Records = std::vector<const void*>;  // what a hook that ran alone must have been given
  const Records given[] = {{&gCreate, nullptr, nullptr},
                           {&gStream, nullptr, nullptr},
                           {&gInput, &gOutput, nullptr},
                           {&gInput, &gOutput, &gDebug}};
  for (size_t i = 0; i < std::size(kCases); ++i) {
    const Case& c = kCases[i];
    bool destroyed = false;
    auto* processing = new RecordingProcessing(0, &destroyed);
    if (!c.bound) processing->unbind();
    processing->setupStatus = processing->initializeStatus = processing->applyStatus = c.hook;
    processing->applyDebugStatus = c.hook;
    fastcv_stub::setOperationModeResult(c.modeRefused ? 999 : 0);
    const size_t modesBefore = fastcv_stub::operationModeCalls().size();
    hostview::IProcessing* host = hostView(processing);
    EXPECT_EQ(act(*host, c), c.status) << "case " << i;
    fastcv_stub::setOperationModeResult(0);
    EXPECT_EQ(processing->hooks, c.hooks) << "case " << i;
    if (c.call <= kApplyDebug && c.hooks.size() == 1 && c.status == c.hook) {
      EXPECT_EQ(Records(processing->args, processing->args + 3), given[c.call]) << "case " << i;
    }
    const std::vector<int> modes = fastcv_stub::operationModeCalls();
    EXPECT_EQ(std::vector<int>(modes.begin() + static_cast<long>(modesBefore), modes.end()),
              std::vector<int>(c.modeCalls, 3))
        << "case " << i;
    EXPECT_STREQ(host->getProcessingName(), "RecordingProcessing");
    delete host;
    EXPECT_TRUE(destroyed);
  }
}

// Resource type 2 owns slots 10..14; indices from 5 on reach slot 15, the next type's first. Without
// a manager nothing reaches one.
TEST_F(TivoraBaseTest, NetworkRequestsReachTheSlotOfTypeAndIndex) {
  tivora::SNPEParam param = tivora::test::paramFor(tivora::test::writeModel("mean.dlc", tivora::test::kMeanModel));
  std::vector<std::string> layers;
  RecordingProcessing processing(2), unbound(2);
  unbound.unbind();
  for (const auto& [index, slot] :
       std::vector<std::pair<unsigned int, unsigned int>>{{0, 10}, {4, 14}, {5, 15}, {7, 15}, {UINT32_MAX, 15}}) {
    ASSERT_EQ(processing.createSNPE(index, param, layers), 0) << index;
    EXPECT_EQ(tivora::SNPEMgr::getInstance()->getModelVersion(slot), "mean-colour-1.0") << index;
    tivora::test::SlotBuffers buffers(tivora::SNPEMgr::getInstance(), slot);
    EXPECT_EQ(processing.executeSNPE(index), 0) << index;
    EXPECT_EQ(processing.getInputBufferName(index, 0) + processing.getOutputBufferName(index, 0), "imagemean");
    snpe_stub::reset();
    EXPECT_EQ(unbound.createSNPE(index, param, layers) + unbound.executeSNPE(index), 2);
    unbound.deleteSNPE(index);
    EXPECT_EQ(unbound.getModelVersion(index) + unbound.getInputBufferName(index, 0), "");
    EXPECT_TRUE(snpe_stub::journal().empty()) << "nothing reaches the manager without one";
    processing.deleteSNPE(index);
    EXPECT_EQ(processing.getModelVersion(index), "") << index;
  }
}

}  // namespace
