// What the logger makes of its configuration file, read once per process, and the trace markers it
// switches on, to the trace_marker file or a host's sink. Each case writes the device's files, then
// creates the logger in a fresh process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "ScopedTrace.h"
#include "Threads.h"
#include "TivoraLogger.h"
#include "TivoraTraceSink.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::ScopedTrace;
using tivora::TivoraLogger;
using tivora::paths::kDebugTraceMarker;
using tivora::paths::kLocalDir;
using tivora::paths::kTraceMarker;
using tivora::paths::kVendorCameraDir;
using tivora::test::LogCapture;
using tivora::test::readMarkers;
using Strings = std::vector<std::string>;

const std::string kVendorConfig = tivora::test::loggerConfigPath(kVendorCameraDir);
const std::string kLocalConfig = tivora::test::loggerConfigPath(kLocalDir);

std::string setupMessage(const std::string& text) { return "[TVR INFO] TivoraLogger.setup: " + text; }

std::string marker(char kind, const std::string& cls, const std::string& fn) {
  return std::string(1, kind) + "|" + std::to_string(getpid()) + "|" + cls + "::" + fn + "()|0";
}

using OncePerProcessTest = tivora::test::DeviceTest;

// The vendor directory wins over the local one; every key takes effect, for every caller at once;
// the markers go to the first trace_marker, around every lifecycle call and the hooks within.
TEST_F(OncePerProcessTest, VendorConfigurationTakesEffectOnceAndTracesEveryScope) {
  tivora::test::writeFile(kVendorConfig, "TivoraLogLevel=D\nTivoraTrace=enable\nSNPELogLevel=W\n");
  tivora::test::writeFile(kLocalConfig, "TivoraLogLevel=E\n");
  tivora::test::writeFile(kTraceMarker, "");
  tivora::test::writeFile(kDebugTraceMarker, "");
  tivora::test::inFreshProcess([] {
    LogCapture capture;
    std::vector<int> levels(8, -1);
    {
      ScopedTrace early("Early", "setup");  // begun while tracing was off: only its end is written
      tivora::test::onThreads(8, [&](unsigned int t) {
        levels[t] = TivoraLogger::getInstance()->getLogLevel();  // never seen before it is configured
      });
    }
    EXPECT_EQ(levels, std::vector<int>(8, TivoraLogger::TVR_LOG_DEBUG));
    EXPECT_EQ(TivoraLogger::getInstance()->getDataDir(), kVendorCameraDir);
    EXPECT_EQ(snpe_stub::loggingCalls(), 1);
    EXPECT_EQ(snpe_stub::loggingLevel(), 2);
    EXPECT_EQ(capture.texts(),
              (Strings{setupMessage("Load config file: " + kVendorConfig), setupMessage("Log level is set: D"),
                       setupMessage("Snpe log level is set: W")}));

    tivora::test::RecordingProcessing processing;
    processing.onHook = [](const std::string& hook) { ScopedTrace trace("Hook", hook.c_str()); };
    tvr_create_param_t create{};
    processing.setup(&create);
    processing.apply(nullptr, nullptr, nullptr);
    try {
      ScopedTrace trace("C", "thrown");
      throw std::runtime_error("leaves the scope");
    } catch (const std::runtime_error&) {
    }
    const std::string longName(400, 'n');
    tivora::ftraceBegin(longName.c_str(), "f");
    const Strings expected{marker('E', "Early", "setup"),
                           marker('B', "RecordingProcessing", "setup"),
                           marker('B', "Hook", "setupImpl"),
                           marker('E', "Hook", "setupImpl"),
                           marker('E', "RecordingProcessing", "setup"),
                           marker('B', "RecordingProcessing", "apply"),
                           marker('E', "RecordingProcessing", "apply"),
                           marker('B', "C", "thrown"),
                           marker('E', "C", "thrown"),
                           marker('B', longName, "f").substr(0, 255)};
    EXPECT_EQ(readMarkers(kTraceMarker), expected);
    EXPECT_EQ(tivora::test::readFile(kDebugTraceMarker), "");
  });
}

// Words the logger does not know keep its defaults; "false" keeps tracing off, so that nothing is
// opened or written; a runtime that refuses its log level is not reported as set.
TEST_F(OncePerProcessTest, LocalConfigurationWithUnknownWordsKeepsTheDefaults) {
  tivora::test::writeFile(kLocalConfig, "TivoraLogLevel=warn\nTivoraTrace=false\nSNPELogLevel=x\n");
  tivora::test::writeFile(kTraceMarker, "");
  tivora::test::inFreshProcess([] {
    snpe_stub::failCall("Snpe_Util_InitializeLogging");
    LogCapture capture;
    TivoraLogger* logger = TivoraLogger::getInstance();
    EXPECT_EQ(logger->getLogLevel(), TivoraLogger::TVR_LOG_INFO);
    EXPECT_EQ(logger->getDataDir(), kLocalDir);
    EXPECT_EQ(capture.texts(), (Strings{setupMessage("Load config file: " + kLocalConfig),
                                        "[TVR WARN] TivoraLogger.setup: Unsupported log level w"}));
    EXPECT_EQ(capture.records()[1].priority, 5);
    const auto calls = snpe_stub::journal();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].name + "(" + calls[0].args + ")", "Snpe_Util_InitializeLogging(1)");
    { ScopedTrace trace("C", "apply"); }
    EXPECT_EQ(tivora::getTraceFd(), -1);
    EXPECT_EQ(tivora::test::readFile(kTraceMarker), "");
  });
}

// A marker file that refuses every write (/dev/full: no space left) behind a first path that lies
// under a regular file: the markers are dropped, nothing is logged, the scopes go on.
TEST_F(OncePerProcessTest, MarkersThatCannotBeWrittenAreDroppedSilently) {
  tivora::test::writeFile(kVendorConfig, "TivoraTrace=true\n");
  tivora::test::writeFile(std::filesystem::path(kTraceMarker).parent_path(), "a file where tracefs would be");
  std::filesystem::create_directories(std::filesystem::path(kDebugTraceMarker).parent_path());
  std::filesystem::create_symlink("/dev/full", kDebugTraceMarker);
  tivora::test::inFreshProcess([] {
    TivoraLogger::getInstance();
    LogCapture capture;
    for (int i = 0; i < 3; ++i) ScopedTrace trace("C", "apply");
    EXPECT_NE(tivora::getTraceFd(), -1) << "the debug path opened";
    EXPECT_TRUE(capture.texts().empty());
  });
}

// While a host's sink is installed it takes every marker in place of the trace_marker file, which
// is neither opened nor written. Without it, when neither trace_marker opens, the marker is lost and
// both are tried again with the next one; the first that opens is kept for good.
TEST_F(OncePerProcessTest, MarkersGoToAHostsSinkOrFallBackToTheDebugPathAndKeepTheFileThatOpened) {
  tivora::test::writeFile(kVendorConfig, "TivoraTrace=true\n");
  tivora::test::writeFile(kTraceMarker, "");
  tivora::test::inFreshProcess([] {
    TivoraLogger::getInstance();
    Strings taken;
    const tivora::TraceMarkerSink sink{
        [](void* to, const char* text, size_t length) { static_cast<Strings*>(to)->emplace_back(text, length); },
        &taken};
    tivora::setTraceMarkerSink(&sink);
    { ScopedTrace trace("P", "apply"); }
    tivora::setTraceMarkerSink(nullptr);
    EXPECT_EQ(taken, (Strings{marker('B', "P", "apply"), marker('E', "P", "apply")}));
    EXPECT_EQ(tivora::gTraceMarkerFd, -1);
    std::remove(kTraceMarker);
    tivora::ftraceBegin("C", "lost");
    EXPECT_EQ(tivora::getTraceFd(), -1);
    tivora::test::writeFile(kDebugTraceMarker, "");
    tivora::ftraceBegin("C", "kept");
    const int fd = tivora::getTraceFd();
    EXPECT_NE(fd, -1);
    tivora::test::writeFile(kTraceMarker, "");
    tivora::ftraceEnd("C", "kept");
    EXPECT_EQ(tivora::getTraceFd(), fd);
    EXPECT_EQ(readMarkers(kDebugTraceMarker), (Strings{marker('B', "C", "kept"), marker('E', "C", "kept")}));
    EXPECT_EQ(tivora::test::readFile(kTraceMarker), "");
  });
}

}  // namespace
