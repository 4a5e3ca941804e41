// A host's marker sink: while installed it takes every marker in place of the trace_marker file,
// which is neither opened nor written; removed, markers go to the file again.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "ScopedTrace.h"
#include "TivoraLogger.h"
#include "TivoraTraceSink.h"

namespace {

using tivora::paths::kTraceMarker;

class TraceMarkerSinkTest : public tivora::test::DeviceTest {};

void collect(void* context, const char* marker, size_t length) {
  static_cast<std::vector<std::string>*>(context)->emplace_back(marker, length);
}

TEST_F(TraceMarkerSinkTest, InstalledSinkTakesTheMarkersInPlaceOfTheFileUntilRemoved) {
  tivora::test::writeFile(tivora::test::loggerConfigPath(tivora::paths::kVendorCameraDir), "TivoraTrace=true\n");
  tivora::test::writeFile(kTraceMarker, "");
  tivora::test::inFreshProcess([] {
    tivora::TivoraLogger::getInstance();
    std::vector<std::string> taken;
    const tivora::TraceMarkerSink sink{collect, &taken};
    tivora::setTraceMarkerSink(&sink);
    { tivora::ScopedTrace trace("P", "apply"); }
    EXPECT_EQ(tivora::gTraceMarkerFd, -1);
    tivora::setTraceMarkerSink(nullptr);
    tivora::ftraceEnd("P", "setup");
    const std::string pid = std::to_string(getpid());
    EXPECT_EQ(taken, (std::vector<std::string>{"B|" + pid + "|P::apply()|0", "E|" + pid + "|P::apply()|0"}));
    EXPECT_EQ(tivora::test::readMarkers(kTraceMarker), std::vector<std::string>{"E|" + pid + "|P::setup()|0"});
  });
}

}  // namespace
