// Trace markers on the test device's trace_marker files. Tracing is switched on by the logger's
// configuration, once per process, so every case runs in a fresh process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "LogCapture.h"
#include "ScopedTrace.h"
#include "TivoraLogger.h"

namespace {

using tivora::ScopedTrace;
using tivora::TivoraLogger;
using tivora::paths::kDebugTraceMarker;
using tivora::paths::kTraceMarker;
using tivora::test::inFreshProcess;
using tivora::test::readMarkers;
using Markers = std::vector<std::string>;

std::string marker(char kind, const std::string& cls, const std::string& fn) {
  return std::string(1, kind) + "|" + std::to_string(getpid()) + "|" + cls + "::" + fn + "()|0";
}

class TraceMarkerTest : public tivora::test::DeviceTest {
 protected:
  void enableTracing() {
    tivora::test::writeFile(tivora::test::loggerConfigPath(tivora::paths::kVendorCameraDir), "TivoraTrace=true\n");
  }
};

TEST_F(TraceMarkerTest, TracingOffWritesNothingAndOpensNothing) {
  tivora::test::createEmptyFile(kTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    EXPECT_FALSE(tivora::gTracingOn);
    { ScopedTrace trace("Cls", "apply"); }
    EXPECT_EQ(tivora::getTraceFd(), -1);
    EXPECT_EQ(tivora::gTraceMarkerFd, -1);
    EXPECT_EQ(tivora::test::readFile(kTraceMarker), "");
  });
}

TEST_F(TraceMarkerTest, ScopeWritesBeginAndEndMarkers) {
  enableTracing();
  tivora::test::createEmptyFile(kTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    { ScopedTrace trace("MyProcessing", "setup"); }
    EXPECT_EQ(readMarkers(kTraceMarker),
              (Markers{marker('B', "MyProcessing", "setup"), marker('E', "MyProcessing", "setup")}));
  });
}

TEST_F(TraceMarkerTest, NestedScopesEndInReverseOrder) {
  enableTracing();
  tivora::test::createEmptyFile(kTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    {
      ScopedTrace outer("A", "apply");
      ScopedTrace inner("B", "executeSNPE");
    }
    EXPECT_EQ(readMarkers(kTraceMarker), (Markers{marker('B', "A", "apply"), marker('B', "B", "executeSNPE"),
                                                  marker('E', "B", "executeSNPE"), marker('E', "A", "apply")}));
  });
}

TEST_F(TraceMarkerTest, ScopeLeftByExceptionStillEnds) {
  enableTracing();
  tivora::test::createEmptyFile(kTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    try {
      ScopedTrace trace("C", "f");
      throw std::runtime_error("leave");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(readMarkers(kTraceMarker), (Markers{marker('B', "C", "f"), marker('E', "C", "f")}));
  });
}

TEST_F(TraceMarkerTest, ScopeBegunBeforeTheLoggerExistsOnlyEnds) {
  enableTracing();
  tivora::test::createEmptyFile(kTraceMarker);
  inFreshProcess([] {
    {
      ScopedTrace trace("C", "setup");
      TivoraLogger::getInstance();  // reads the configuration and switches tracing on
    }
    EXPECT_EQ(readMarkers(kTraceMarker), (Markers{marker('E', "C", "setup")}));
  });
}

TEST_F(TraceMarkerTest, DebugPathIsUsedWhenTheFirstCannotOpen) {
  enableTracing();
  tivora::test::createEmptyFile(kDebugTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    tivora::ftraceBegin("C", "f");
    EXPECT_EQ(readMarkers(kDebugTraceMarker), (Markers{marker('B', "C", "f")}));
    EXPECT_NE(tivora::getTraceFd(), -1);
  });
}

TEST_F(TraceMarkerTest, OpensAreRetriedInOrderUntilOneSucceedsThenKept) {
  enableTracing();
  inFreshProcess([] {
    TivoraLogger::getInstance();
    tivora::ftraceBegin("C", "dropped");  // neither file exists: the marker is lost
    EXPECT_EQ(tivora::gTraceMarkerFd, -1);
    EXPECT_EQ(tivora::getTraceFd(), -1);

    tivora::test::createEmptyFile(kDebugTraceMarker);
    tivora::test::createEmptyFile(kTraceMarker);
    tivora::ftraceBegin("C", "first");  // both exist now: the first path is tried first
    const int fd = tivora::getTraceFd();
    EXPECT_NE(fd, -1);

    tivora::test::wipeDevice();  // the open descriptor is kept, whatever happens to the paths
    tivora::test::createEmptyFile(kDebugTraceMarker);
    tivora::ftraceEnd("C", "first");
    EXPECT_EQ(tivora::getTraceFd(), fd);
    EXPECT_EQ(tivora::test::readFile(kDebugTraceMarker), "");
  });
}

TEST_F(TraceMarkerTest, FirstPathIsTriedBeforeTheDebugPathWhileNoneIsOpen) {
  enableTracing();
  inFreshProcess([] {
    TivoraLogger::getInstance();
    tivora::ftraceBegin("C", "lost");
    tivora::test::createEmptyFile(kDebugTraceMarker);
    tivora::test::createEmptyFile(kTraceMarker);
    tivora::ftraceBegin("C", "kept");
    EXPECT_EQ(readMarkers(kTraceMarker), (Markers{marker('B', "C", "kept")}));
    EXPECT_EQ(tivora::test::readFile(kDebugTraceMarker), "");
  });
}

// A marker file that opens but refuses every write (/dev/full: no space left), and a first path
// that lies under a regular file: markers are dropped, nothing is logged, the scope goes on.
TEST_F(TraceMarkerTest, MarkersThatCannotBeWrittenAreDroppedSilently) {
  enableTracing();
  tivora::test::writeFile(std::filesystem::path(kTraceMarker).parent_path().string(),
                          "a file where tracefs would be");
  std::filesystem::create_directories(std::filesystem::path(kDebugTraceMarker).parent_path());
  std::filesystem::create_symlink("/dev/full", kDebugTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    tivora::test::LogCapture capture;
    for (int i = 0; i < 3; ++i) {
      ScopedTrace trace("C", "apply");
    }
    EXPECT_NE(tivora::getTraceFd(), -1) << "the debug path opened";
    EXPECT_TRUE(capture.texts().empty());
  });
}

TEST_F(TraceMarkerTest, LongMarkerIsCutTo255Bytes) {
  enableTracing();
  tivora::test::createEmptyFile(kTraceMarker);
  inFreshProcess([] {
    TivoraLogger::getInstance();
    const std::string longName(400, 'n');
    tivora::ftraceBegin(longName.c_str(), "f");
    const std::string written = tivora::test::readFile(kTraceMarker);
    EXPECT_EQ(written.size(), 255u);
    EXPECT_EQ(written, marker('B', longName, "f").substr(0, 255));
  });
}

}  // namespace
