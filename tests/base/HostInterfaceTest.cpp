// The host framework is compiled separately, against its own declaration of the processing
// interface, and reaches a processing only through that declaration's virtual-table layout. This
// test declares the host's view independently and calls a processing through it: each call must
// land on the operation the host means, whatever order our own header declares them in.
//
// The cast between unrelated classes is the point. UBSan's vptr check rejects it, so this file is
// compiled without that one check (tests/CMakeLists.txt).
#include <gtest/gtest.h>

#include <cstdint>

#include "DeviceFiles.h"
#include "LogCapture.h"
#include "RecordingProcessing.h"

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

using HostInterfaceTest = tivora::test::DeviceTest;

TEST_F(HostInterfaceTest, EveryHostCallReachesItsOperation) {
  bool destroyed = false;
  auto* processing = new RecordingProcessing(0, &destroyed);
  hvx::IProcessing* ours = processing;
  auto* host = reinterpret_cast<hostview::IProcessing*>(ours);
  tvr_input_param_t input{};
  int output = 0, debug = 0;
  tivora::test::LogCapture capture;

  EXPECT_EQ(host->setup(nullptr), 12);
  EXPECT_EQ(host->initialize(nullptr), 12);
  EXPECT_EQ(host->apply(nullptr, &output, nullptr), 12);
  EXPECT_EQ(processing->hooks, (Hooks{"teardownImpl", "finalizeImpl"}));
  EXPECT_EQ(capture.texts(),
            (std::vector<std::string>{"[TVR ERROR] RecordingProcessing.setup: Create parameter is null",
                                      "[TVR ERROR] RecordingProcessing.initialize: Static parameter is null",
                                      "[TVR ERROR] RecordingProcessing.apply: Input parameter is null"}));

  processing->applyDebugStatus = 43;
  EXPECT_EQ(host->apply(&input, &output, &debug), 43);
  EXPECT_EQ(processing->args[0], &input);
  EXPECT_EQ(processing->args[1], &output);
  EXPECT_EQ(processing->args[2], &debug);
  processing->hooks.clear();
  EXPECT_EQ(host->abort(), 0);
  EXPECT_EQ(processing->hooks, Hooks{});
  EXPECT_EQ(host->finalize(), 0);
  EXPECT_EQ(processing->hooks, Hooks{"finalizeImpl"});
  EXPECT_EQ(host->teardown(), 0);
  EXPECT_EQ(processing->hooks, (Hooks{"finalizeImpl", "teardownImpl"}));
  EXPECT_STREQ(host->getProcessingName(), "RecordingProcessing");

  delete host;
  EXPECT_TRUE(destroyed);
}

}  // namespace
