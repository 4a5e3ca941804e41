// What the logger makes of its configuration file. Each case writes the file on the test's device,
// then creates the logger in a fresh process and looks at its state and its messages.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "LogCapture.h"
#include "ScopedTrace.h"
#include "TivoraLogger.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::TivoraLogger;
using tivora::paths::kLocalDir;
using tivora::paths::kVendorCameraDir;
using tivora::test::inFreshProcess;
using tivora::test::LogCapture;
using tivora::test::LogRecord;

const std::string kVendorConfig = tivora::test::loggerConfigPath(kVendorCameraDir);
const std::string kLocalConfig = tivora::test::loggerConfigPath(kLocalDir);

std::string setupMessage(const std::string& text) { return "[TVR INFO] TivoraLogger.setup: " + text; }

// What the logger ended up with after reading its configuration.
struct Outcome {
  int level;
  bool tracing;
  int runtimeLevel;
  std::string dataDir;
  std::vector<LogRecord> records;
};

class LoggerConfigTest : public tivora::test::DeviceTest {
 protected:
  // Writes `content` as the configuration in `dir`, then checks what a fresh logger made of it.
  template <typename Check>
  void withConfig(const std::string& content, Check check, const std::string& path = kVendorConfig) {
    tivora::test::writeFile(path, content);
    withoutConfig(check);
  }

  template <typename Check>
  void withoutConfig(Check check) {
    inFreshProcess([&] {
      LogCapture capture;
      TivoraLogger* logger = TivoraLogger::getInstance();
      ASSERT_NE(logger, nullptr);
      check(Outcome{logger->getLogLevel(), tivora::gTracingOn, snpe_stub::loggingLevel(), logger->getDataDir(),
                    capture.records()});
    });
  }
};

TEST_F(LoggerConfigTest, NoFileKeepsDefaultsAndOnlyReportsTheRuntimeLevel) {
  withoutConfig([](const Outcome& o) {
    EXPECT_EQ(o.level, 2);
    EXPECT_FALSE(o.tracing);
    EXPECT_EQ(o.runtimeLevel, 1);
    EXPECT_EQ(o.dataDir, "");
    ASSERT_EQ(o.records.size(), 1u);
    EXPECT_EQ(o.records[0].priority, 4);
    EXPECT_EQ(o.records[0].text, setupMessage("Snpe log level is set: E"));
  });
}

TEST_F(LoggerConfigTest, FileWithoutKeysReportsEachDefault) {
  withConfig(
      "nothing to see here\n",
      [](const Outcome& o) {
        EXPECT_EQ(o.level, 2);
        EXPECT_FALSE(o.tracing);
        EXPECT_EQ(o.runtimeLevel, 1);
        EXPECT_EQ(o.dataDir, kLocalDir);
        const std::vector<std::string> expected = {setupMessage("Load config file: " + kLocalConfig),
                                                   setupMessage("Log level is set: I"),
                                                   setupMessage("Snpe log level is set: E")};
        ASSERT_EQ(o.records.size(), 3u);
        for (size_t i = 0; i < 3; ++i) {
          EXPECT_EQ(o.records[i].text, expected[i]);
          EXPECT_EQ(o.records[i].priority, 4);
        }
      },
      kLocalConfig);
}

TEST_F(LoggerConfigTest, AllThreeKeysTakeEffect) {
  withConfig("TivoraLogLevel=D\nTivoraTrace=enable\nSNPELogLevel=V\n", [](const Outcome& o) {
    EXPECT_EQ(o.level, 1);
    EXPECT_TRUE(o.tracing);
    EXPECT_EQ(o.runtimeLevel, 4);
    EXPECT_EQ(o.dataDir, kVendorCameraDir);
    ASSERT_EQ(o.records.size(), 3u);
    EXPECT_EQ(o.records[0].text, setupMessage("Load config file: " + kVendorConfig));
    EXPECT_EQ(o.records[1].text, setupMessage("Log level is set: D"));
    EXPECT_EQ(o.records[2].text, setupMessage("Snpe log level is set: V"));
  });
}

TEST_F(LoggerConfigTest, VendorDirectoryWinsOverLocal) {
  tivora::test::writeFile(kLocalConfig, "TivoraLogLevel=E\n");
  withConfig("TivoraLogLevel=W\n", [](const Outcome& o) {
    EXPECT_EQ(o.level, 3);
    EXPECT_EQ(o.dataDir, kVendorCameraDir);
  });
}

TEST_F(LoggerConfigTest, MessagesBypassTheThresholdTheyConfigure) {
  withConfig("TivoraLogLevel=E\n", [](const Outcome& o) {
    EXPECT_EQ(o.level, 4);
    ASSERT_EQ(o.records.size(), 3u);
    EXPECT_EQ(o.records[1].priority, 4);
    EXPECT_EQ(o.records[1].text, setupMessage("Log level is set: E"));
  });
}

// Level lines: (file content, expected level, expected level message with its priority).
struct LevelCase {
  const char* name;
  std::string content;
  int level;
  int priority;
  std::string message;
};
void PrintTo(const LevelCase& c, std::ostream* os) { *os << c.name; }

class LoggerLevelLineTest : public LoggerConfigTest, public ::testing::WithParamInterface<LevelCase> {};

TEST_P(LoggerLevelLineTest, SetsTheLevel) {
  const LevelCase& c = GetParam();
  withConfig(c.content, [&c](const Outcome& o) {
    EXPECT_EQ(o.level, c.level);
    ASSERT_EQ(o.records.size(), 3u);
    EXPECT_EQ(o.records[1].priority, c.priority);
    EXPECT_EQ(o.records[1].text, c.message);
  });
}

const std::string kUnsupported = "[TVR WARN] TivoraLogger.setup: Unsupported log level ";

INSTANTIATE_TEST_SUITE_P(
    Lines, LoggerLevelLineTest,
    ::testing::Values(
        LevelCase{"SpacesAnywhereAreRemoved", " Tivora LogLevel  =  W \n", 3, 4, setupMessage("Log level is set: W")},
        LevelCase{"OnlyTheFirstCharacterCounts", "TivoraLogLevel=WARN\n", 3, 4, setupMessage("Log level is set: W")},
        LevelCase{"LowerCaseIsUnsupported", "TivoraLogLevel=warn\n", 2, 5, kUnsupported + "w"},
        LevelCase{"EmptyValueIsUnsupported", "TivoraLogLevel=\n", 2, 5, kUnsupported},
        LevelCase{"LaterLineWins", "TivoraLogLevel=E\nTivoraLogLevel=V\n", 0, 4, setupMessage("Log level is set: V")},
        LevelCase{"CarriageReturnIsNotPartOfOneCharacter", "TivoraLogLevel=D\r\n", 1, 4,
                  setupMessage("Log level is set: D")},
        LevelCase{"NoCommentSyntax", "#TivoraLogLevel=D\n", 1, 4, setupMessage("Log level is set: D")},
        LevelCase{"KeyAnywhereInTheLine", "set.TivoraLogLevel=V;\n", 0, 4, setupMessage("Log level is set: V")},
        LevelCase{"TabIsKept", "TivoraLogLevel=\tD\n", 2, 5, kUnsupported + "\t"},
        LevelCase{"KeyWithoutEqualsIsIgnored", "TivoraLogLevel D\n", 2, 4, setupMessage("Log level is set: I")},
        LevelCase{"LastLineWithoutNewline", "TivoraLogLevel=W", 3, 4, setupMessage("Log level is set: W")}),
    [](const auto& tested) { return std::string(tested.param.name); });

// Trace lines: the whole rest of the line must be one of the true words.
struct TraceCase {
  const char* name;
  std::string content;
  bool tracing;
};
void PrintTo(const TraceCase& c, std::ostream* os) { *os << c.name; }

class LoggerTraceLineTest : public LoggerConfigTest, public ::testing::WithParamInterface<TraceCase> {};

TEST_P(LoggerTraceLineTest, SwitchesTracing) {
  const TraceCase& c = GetParam();
  withConfig(c.content, [&c](const Outcome& o) { EXPECT_EQ(o.tracing, c.tracing); });
}

INSTANTIATE_TEST_SUITE_P(
    Lines, LoggerTraceLineTest,
    ::testing::Values(TraceCase{"True", "TivoraTrace=true\n", true},
                      TraceCase{"Enable", "TivoraTrace = enable\n", true},
                      TraceCase{"False", "TivoraTrace=false\n", false},
                      TraceCase{"Disable", "TivoraTrace=disable\n", false},
                      TraceCase{"UpperCase", "TivoraTrace=TRUE\n", false},
                      TraceCase{"CarriageReturnSpoilsTheWord", "TivoraTrace=enable\r\n", false},
                      TraceCase{"LaterFalseWins", "TivoraTrace=true\nTivoraTrace=false\n", false},
                      TraceCase{"LevelKeyTakesTheLine", "TivoraLogLevel=DTivoraTrace=true\n", false},
                      TraceCase{"TraceKeyTakesTheLineBeforeRuntimeLevel", "TivoraTrace=trueSNPELogLevel=V\n", false}),
    [](const auto& tested) { return std::string(tested.param.name); });

// Runtime level lines: (content, level given to the runtime, word in the message).
struct RuntimeLevelCase {
  const char* name;
  std::string content;
  int runtimeLevel;
  std::string word;
};
void PrintTo(const RuntimeLevelCase& c, std::ostream* os) { *os << c.name; }

class LoggerRuntimeLevelLineTest : public LoggerConfigTest, public ::testing::WithParamInterface<RuntimeLevelCase> {};

TEST_P(LoggerRuntimeLevelLineTest, PassesTheLevelOn) {
  const RuntimeLevelCase& c = GetParam();
  withConfig(c.content, [&c](const Outcome& o) {
    EXPECT_EQ(o.runtimeLevel, c.runtimeLevel);
    ASSERT_FALSE(o.records.empty());
    EXPECT_EQ(o.records.back().text, setupMessage("Snpe log level is set: " + c.word));
  });
}

INSTANTIATE_TEST_SUITE_P(Lines, LoggerRuntimeLevelLineTest,
                         ::testing::Values(RuntimeLevelCase{"Verbose", "SNPELogLevel=V\n", 4, "V"},
                                           RuntimeLevelCase{"Debug", "SNPELogLevel=D\n", 4, "D"},
                                           RuntimeLevelCase{"Info", "SNPELogLevel=I\n", 3, "I"},
                                           RuntimeLevelCase{"Warn", "SNPELogLevel=W\n", 2, "W"},
                                           RuntimeLevelCase{"Error", "SNPELogLevel=E\n", 1, "E"},
                                           RuntimeLevelCase{"Unknown", "SNPELogLevel=x\n", 1, "x"},
                                           RuntimeLevelCase{"Empty", "SNPELogLevel=\n", 1, ""}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(LoggerConfigTest, FailedRuntimeLoggingIsSilent) {
  tivora::test::writeFile(kVendorConfig, "SNPELogLevel=W\n");
  inFreshProcess([] {
    snpe_stub::failCall("Snpe_Util_InitializeLogging");
    LogCapture capture;
    TivoraLogger::getInstance();
    const auto texts = capture.texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[1], setupMessage("Log level is set: I"));
    const auto calls = snpe_stub::journal();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].name, "Snpe_Util_InitializeLogging");
    EXPECT_EQ(calls[0].args, "2");
  });
}

// Files that are not what they should be leave the logger on its defaults, and never crash or hang.
TEST_F(LoggerConfigTest, BadFilesLeaveTheDefaults) {
  const std::vector<std::pair<const char*, std::string>> files = {
      {"empty", ""},
      {"binary", std::string("\0\x01\xff\xfeTivoraTrace\0=true\n\x80\x81", 21)},
      {"endless line", std::string(8 << 20, 'x')},
      {"megabytes of blanks", std::string(4 << 20, ' ')},
      {"unknown keys",
       [] {
         std::string s;
         for (int i = 0; i < 20000; ++i) s += "Key" + std::to_string(i) + "=value\n";
         return s;
       }()},
  };
  for (const auto& [what, content] : files) {
    SCOPED_TRACE(what);
    withConfig(content, [](const Outcome& o) {
      EXPECT_EQ(o.level, 2);
      EXPECT_FALSE(o.tracing);
      EXPECT_EQ(o.runtimeLevel, 1);
    });
  }
}

TEST_F(LoggerConfigTest, KeyAfterMegabytesOnOneLineIsStillRead) {
  withConfig(std::string(4 << 20, 'x') + "TivoraLogLevel=D", [](const Outcome& o) { EXPECT_EQ(o.level, 1); });
}

TEST_F(LoggerConfigTest, UnreadableFileIsLoadedAsEmpty) {
  // Root reads any file, so a directory in the file's place stands for a file that opens but
  // cannot be read.
  std::filesystem::create_directories(kVendorConfig);
  withoutConfig([](const Outcome& o) {
    EXPECT_EQ(o.level, 2);
    EXPECT_EQ(o.dataDir, kVendorCameraDir);
  });
}

}  // namespace
