// The lifecycle as the host drives it: status codes, failure messages, the order of the checks and
// which hooks run. Each case runs twice: with the threshold at ERROR (the message is printed) and
// above it (nothing is printed, everything else is the same).
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

using tivora::TivoraLogger;
using tivora::test::RecordingProcessing;
using Hooks = std::vector<std::string>;

tvr_create_param_t gCreate{};
tvr_static_param_t gStatic{};
tvr_input_param_t gInput{};
int gOutput = 0, gDebug = 0;

struct Case {
  const char* name;
  void (*arrange)(RecordingProcessing&);
  tvr_err_t (*act)(RecordingProcessing&);
  tvr_err_t status;
  const char* message;  // after "[TVR ERROR] RecordingProcessing."; empty: none
  Hooks hooks;
  size_t modeCalls;  // fcvSetOperationMode calls expected, each with mode 3
};

void bound(RecordingProcessing&) {}
void unbound(RecordingProcessing& p) { p.unbind(); }
void scriptApply(RecordingProcessing& p) {
  p.applyStatus = 42;
  p.applyDebugStatus = 43;
}
void failSetupImpl(RecordingProcessing& p) { p.setupStatus = 42; }
void failInitializeImpl(RecordingProcessing& p) { p.initializeStatus = -5; }  // negative codes pass too
void failMode(RecordingProcessing&) { fastcv_stub::setOperationModeResult(999); }

tvr_err_t setup(RecordingProcessing& p) { return p.setup(&gCreate); }
tvr_err_t setupNull(RecordingProcessing& p) { return p.setup(nullptr); }
tvr_err_t initialize(RecordingProcessing& p) { return p.initialize(&gStatic); }
tvr_err_t initializeNull(RecordingProcessing& p) { return p.initialize(nullptr); }
tvr_err_t apply(RecordingProcessing& p) { return p.apply(&gInput, &gOutput, nullptr); }
tvr_err_t applyDebug(RecordingProcessing& p) { return p.apply(&gInput, &gOutput, &gDebug); }
tvr_err_t applyNulls(RecordingProcessing& p) { return p.apply(nullptr, nullptr, &gDebug); }
tvr_err_t applyNullOutput(RecordingProcessing& p) { return p.apply(&gInput, nullptr, &gDebug); }
tvr_err_t abortCall(RecordingProcessing& p) { return p.abort(); }
tvr_err_t finalize(RecordingProcessing& p) { return p.finalize(); }
tvr_err_t teardown(RecordingProcessing& p) { return p.teardown(); }

// clang-format off
const Case kCases[] = {
    {"SetupSucceedsWithSetupImpl", bound, setup, 0, "", {"setupImpl"}, 0},
    {"SetupWhenNotReadyRunsTeardownOnce", unbound, setup, 3, "setup: Tivora is not ready", {"teardownImpl"}, 0},
    {"SetupChecksReadinessBeforeTheRecord", unbound, setupNull, 3, "setup: Tivora is not ready", {"teardownImpl"}, 0},
    {"SetupWithNullRecordRunsTeardownOnce", bound, setupNull, 12, "setup: Create parameter is null",
     {"teardownImpl"}, 0},
    {"FailedSetupImplRunsTeardownOnce", failSetupImpl, setup, 42, "", {"setupImpl", "teardownImpl"}, 0},
    {"InitializeSetsTheModeThenCallsInitializeImpl", bound, initialize, 0, "", {"initializeImpl"}, 1},
    {"InitializeWhenNotReadyRunsFinalizeOnce", unbound, initialize, 3, "initialize: Tivora is not ready",
     {"finalizeImpl"}, 0},
    {"InitializeChecksReadinessBeforeTheRecord", unbound, initializeNull, 3, "initialize: Tivora is not ready",
     {"finalizeImpl"}, 0},
    {"InitializeWithNullRecordLeavesTheImageLibraryAlone", bound, initializeNull, 12,
     "initialize: Static parameter is null", {"finalizeImpl"}, 0},
    {"ModeFailureRunsFinalizeOnce", failMode, initialize, 16, "initialize: Failed to set fastCV operation mode",
     {"finalizeImpl"}, 1},
    {"FailedInitializeImplRunsFinalizeOnce", failInitializeImpl, initialize, -5, "",
     {"initializeImpl", "finalizeImpl"}, 1},
    {"ApplyWithoutDebugRecordCallsApplyImpl", scriptApply, apply, 42, "", {"applyImpl"}, 0},
    {"ApplyWithDebugRecordCallsApplyDebugImplOnly", scriptApply, applyDebug, 43, "", {"applyDebugImpl"}, 0},
    {"ApplyWhenNotReadyCallsNoHook", unbound, applyNulls, 3, "apply: Tivora is not ready", {}, 0},
    {"ApplyChecksInputBeforeOutput", bound, applyNulls, 12, "apply: Input parameter is null", {}, 0},
    {"ApplyWithNullOutputCallsNoHook", bound, applyNullOutput, 12, "apply: Output parameter is null", {}, 0},
    {"AbortCallsNoHook", bound, abortCall, 0, "", {}, 0},
    {"AbortWhenNotReadySucceeds", unbound, abortCall, 0, "", {}, 0},
    {"FinalizeCallsFinalizeImpl", bound, finalize, 0, "", {"finalizeImpl"}, 0},
    {"FinalizeWhenNotReadyStillCallsFinalizeImpl", unbound, finalize, 0, "", {"finalizeImpl"}, 0},
    {"TeardownCallsTeardownImpl", bound, teardown, 0, "", {"teardownImpl"}, 0},
    {"TeardownWhenNotReadyStillCallsTeardownImpl", unbound, teardown, 0, "", {"teardownImpl"}, 0},
};
// clang-format on

class LifecycleTest : public tivora::test::DeviceTest, public ::testing::WithParamInterface<Case> {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    mSavedLevel = TivoraLogger::getInstance()->getLogLevel();
  }
  void TearDown() override {
    TivoraLogger::getInstance()->setLogLevel(mSavedLevel);
    fastcv_stub::setOperationModeResult(0);
    DeviceTest::TearDown();
  }
  TivoraLogger::tvr_loglevel_t mSavedLevel{};
};

TEST_P(LifecycleTest, StatusMessageAndHooks) {
  const Case& c = GetParam();
  for (const int threshold : {4, 5}) {
    SCOPED_TRACE("threshold " + std::to_string(threshold));
    TivoraLogger::getInstance()->setLogLevel(static_cast<TivoraLogger::tvr_loglevel_t>(threshold));
    RecordingProcessing processing;
    c.arrange(processing);
    const size_t modeCallsBefore = fastcv_stub::operationModeCalls().size();
    tivora::test::LogCapture capture;

    EXPECT_EQ(c.act(processing), c.status);

    EXPECT_EQ(processing.hooks, c.hooks);
    const std::vector<int> modes = fastcv_stub::operationModeCalls();
    EXPECT_EQ(std::vector<int>(modes.begin() + static_cast<std::ptrdiff_t>(modeCallsBefore), modes.end()),
              std::vector<int>(c.modeCalls, 3));
    const auto records = capture.records();
    if (threshold == 4 && *c.message != '\0') {
      ASSERT_EQ(records.size(), 1u);
      EXPECT_EQ(records[0].priority, 6);
      EXPECT_EQ(records[0].tag, "TVR");
      EXPECT_EQ(records[0].text, std::string("[TVR ERROR] RecordingProcessing.") + c.message);
    } else {
      EXPECT_TRUE(records.empty()) << records[0].text;
    }
    fastcv_stub::setOperationModeResult(0);
  }
}

INSTANTIATE_TEST_SUITE_P(Lifecycle, LifecycleTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<Case>& p) { return std::string(p.param.name); });

using LifecycleHooksTest = tivora::test::DeviceTest;

TEST_F(LifecycleHooksTest, HooksReceiveTheHostsRecords) {
  using Args = std::vector<const void*>;
  RecordingProcessing p;
  p.setup(&gCreate);
  EXPECT_EQ(Args(p.args, p.args + 3), (Args{&gCreate, nullptr, nullptr}));
  p.initialize(&gStatic);
  EXPECT_EQ(Args(p.args, p.args + 3), (Args{&gStatic, nullptr, nullptr}));
  p.apply(&gInput, &gOutput, nullptr);
  EXPECT_EQ(Args(p.args, p.args + 3), (Args{&gInput, &gOutput, nullptr}));
  p.apply(&gInput, &gOutput, &gDebug);
  EXPECT_EQ(Args(p.args, p.args + 3), (Args{&gInput, &gOutput, &gDebug}));
}

}  // namespace
