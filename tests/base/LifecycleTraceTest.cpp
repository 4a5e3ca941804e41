// Trace markers around the lifecycle calls. Tracing is read from the logger's configuration once
// per process, so every case runs in a fresh process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "RecordingProcessing.h"
#include "ScopedTrace.h"

namespace {

using tivora::paths::kTraceMarker;
using tivora::test::RecordingProcessing;
using Markers = std::vector<std::string>;

std::string marker(char kind, const std::string& cls, const std::string& fn) {
  return std::string(1, kind) + "|" + std::to_string(getpid()) + "|" + cls + "::" + fn + "()|0";
}

// The markers of one lifecycle call, with those the hook (if any) wrote inside it.
Markers traced(const std::string& op, const std::string& hook = "") {
  Markers markers{marker('B', "RecordingProcessing", op)};
  if (!hook.empty()) markers.insert(markers.end(), {marker('B', "Hook", hook), marker('E', "Hook", hook)});
  markers.push_back(marker('E', "RecordingProcessing", op));
  return markers;
}

using LifecycleTraceTest = tivora::test::DeviceTest;

TEST_F(LifecycleTraceTest, EveryCallIsTracedAroundItsHookUnderTheDerivedName) {
  tivora::test::writeFile(tivora::test::loggerConfigPath(tivora::paths::kVendorCameraDir), "TivoraTrace=true\n");
  tivora::test::createEmptyFile(kTraceMarker);
  tivora::test::inFreshProcess([] {
    RecordingProcessing processing;
    processing.onHook = [](const std::string& hook) { tivora::ScopedTrace trace("Hook", hook.c_str()); };
    tvr_create_param_t create{};
    tvr_static_param_t stat{};
    tvr_input_param_t input{};
    int output = 0;

    processing.setup(&create);
    processing.setup(nullptr);
    processing.initialize(&stat);
    processing.apply(&input, &output, nullptr);
    processing.apply(nullptr, &output, nullptr);
    processing.abort();
    processing.finalize();
    processing.teardown();

    Markers expected;
    for (const Markers& call :
         {traced("setup", "setupImpl"), traced("setup", "teardownImpl"), traced("initialize", "initializeImpl"),
          traced("apply", "applyImpl"), traced("apply"), traced("abort"), traced("finalize", "finalizeImpl"),
          traced("teardown", "teardownImpl")}) {
      expected.insert(expected.end(), call.begin(), call.end());
    }
    EXPECT_EQ(tivora::test::readMarkers(kTraceMarker), expected);
  });
}

}  // namespace
