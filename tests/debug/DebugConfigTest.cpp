// Reading the debug configuration. The logger's data directory and level are fixed once per
// process, so every case writes the logger's configuration and its debug file on the test device,
// then loads it in a fresh process.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "DebugAccess.h"
#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "LogCapture.h"
#include "TivoraLogger.h"

namespace {

using tivora::TivoraLogger;
using tivora::paths::kVendorCameraDir;
using tivora::test::DebugConfig;
using tivora::test::InspectableDebug;
using tivora::test::LogCapture;

const std::string kFileName = "TestDebug.dat";
const std::string kDebugFile = std::string(kVendorCameraDir) + "/" + kFileName;
const std::string kDumpDir = std::string(kVendorCameraDir) + "/dumps";

std::string message(const std::string& text) { return "[TVR DEBUG] DebugBase.loadConfig: " + text; }
const std::string kReadMessage = message("Read config file " + kDebugFile);

class DebugConfigTest : public tivora::test::DeviceTest {
 protected:
  // The logger finds its configuration in the camera directory, which becomes its data directory.
  void SetUp() override {
    DeviceTest::SetUp();
    tivora::test::writeFile(tivora::test::loggerConfigPath(kVendorCameraDir), "TivoraLogLevel=D\n");
  }

  // Runs `body` in a fresh process with the logger created and the log captured from then on.
  static void inProcess(const std::function<void(InspectableDebug&, LogCapture&)>& body) {
    tivora::test::inFreshProcess([&] {
      ASSERT_NE(TivoraLogger::getInstance(), nullptr);
      LogCapture capture;
      InspectableDebug debug;
      body(debug, capture);
    });
  }

  // Loads `content` as the debug file and checks the pairs it gave.
  static void expectPairs(const std::string& content, const DebugConfig& expected) {
    tivora::test::writeFile(kDebugFile, content);
    inProcess([&](InspectableDebug& debug, LogCapture&) {
      EXPECT_TRUE(debug.loadConfig(kFileName));
      EXPECT_EQ(debug.config(), expected);
    });
  }
};

TEST_F(DebugConfigTest, DataDirLineSetsTheDumpDirectoryAndSwitchesDebuggingOn) {
  tivora::test::writeFile(kDebugFile, "DataDir=" + kDumpDir + "\nDumpSource=true\n");
  inProcess([](InspectableDebug& debug, LogCapture& capture) {
    EXPECT_FALSE(debug.isDebugEnabled());
    EXPECT_TRUE(debug.loadConfig(kFileName));
    EXPECT_TRUE(debug.isDebugEnabled());
    EXPECT_EQ(debug.dataDir(), kDumpDir);

    const auto records = capture.records();
    ASSERT_EQ(records.size(), 4u);
    for (const auto& record : records) EXPECT_EQ(record.priority, 3);
    EXPECT_EQ(records[0].text, kReadMessage);
    // The pairs come in the map's order, which is unspecified.
    std::vector<std::string> pairs = {records[1].text, records[2].text};
    std::sort(pairs.begin(), pairs.end());
    EXPECT_EQ(pairs,
              (std::vector<std::string>{message("Config DataDir = " + kDumpDir), message("Config DumpSource = true")}));
    EXPECT_EQ(records[3].text, message("Debug is enabled"));
  });
}

TEST_F(DebugConfigTest, WithoutDataDirTheLoggersDirectoryIsUsed) {
  tivora::test::writeFile(kDebugFile, "DumpSource=true\n");
  inProcess([](InspectableDebug& debug, LogCapture&) {
    EXPECT_TRUE(debug.loadConfig(kFileName));
    EXPECT_EQ(debug.dataDir(), kVendorCameraDir);
  });
}

TEST_F(DebugConfigTest, DataDirWithABlankIsRefusedButKept) {
  tivora::test::writeFile(kDebugFile, "DataDir=/data/my dumps\n");
  inProcess([](InspectableDebug& debug, LogCapture& capture) {
    EXPECT_FALSE(debug.loadConfig(kFileName));
    EXPECT_FALSE(debug.isDebugEnabled());
    EXPECT_EQ(debug.dataDir(), "/data/my dumps");
    EXPECT_EQ(capture.texts(), (std::vector<std::string>{kReadMessage, message("Config DataDir = /data/my dumps"),
                                                         message("Cannot set data directory")}));
  });
}

TEST_F(DebugConfigTest, DataDirEndingInCarriageReturnIsAccepted) {
  tivora::test::writeFile(kDebugFile, "DataDir=" + kDumpDir + "\r\n");
  inProcess([](InspectableDebug& debug, LogCapture&) {
    EXPECT_TRUE(debug.loadConfig(kFileName));
    EXPECT_EQ(debug.dataDir(), kDumpDir + "\r");
  });
}

TEST_F(DebugConfigTest, MissingFileOnlyReportsTheReadAndChangesNothing) {
  inProcess([](InspectableDebug& debug, LogCapture& capture) {
    EXPECT_FALSE(debug.loadConfig(kFileName));
    EXPECT_FALSE(debug.isDebugEnabled());
    EXPECT_TRUE(debug.config().empty());
    EXPECT_EQ(capture.texts(), std::vector<std::string>{kReadMessage});
  });
}

TEST_F(DebugConfigTest, DebuggingStaysOnThroughLaterFailedLoads) {
  tivora::test::writeFile(kDebugFile, "DataDir=" + kDumpDir + "\nA=1\n");
  inProcess([](InspectableDebug& debug, LogCapture&) {
    ASSERT_TRUE(debug.loadConfig(kFileName));

    // Refused directory: the pairs are replaced, debugging stays on.
    tivora::test::writeFile(kDebugFile, "DataDir=/a b\nB=2\n");
    EXPECT_FALSE(debug.loadConfig(kFileName));
    EXPECT_TRUE(debug.isDebugEnabled());
    EXPECT_EQ(debug.config(), (DebugConfig{{"DataDir", "/a b"}, {"B", "2"}}));

    // No file: the pairs stay, the directory is the logger's again.
    std::filesystem::remove(kDebugFile);
    EXPECT_FALSE(debug.loadConfig(kFileName));
    EXPECT_TRUE(debug.isDebugEnabled());
    EXPECT_EQ(debug.config(), (DebugConfig{{"DataDir", "/a b"}, {"B", "2"}}));
    EXPECT_EQ(debug.dataDir(), kVendorCameraDir);
  });
}

TEST_F(DebugConfigTest, EmptyDataDirectoryIsRefused) {
  // Without a logger configuration the logger has no data directory, and the file name is taken
  // as it stands after "/": an absolute path on the test device.
  std::filesystem::remove(tivora::test::loggerConfigPath(kVendorCameraDir));
  const std::string fileName = kDebugFile.substr(1);
  tivora::test::writeFile(kDebugFile, "DumpSource=true\n");
  inProcess([&](InspectableDebug& debug, LogCapture& capture) {
    EXPECT_FALSE(debug.loadConfig(fileName));
    EXPECT_EQ(debug.config(), (DebugConfig{{"DumpSource", "true"}}));
    EXPECT_TRUE(capture.texts().empty()) << "DEBUG messages pass only when the logger allows them";

    tivora::test::writeFile(kDebugFile, "DataDir=" + kDumpDir + "\n");
    EXPECT_TRUE(debug.loadConfig(fileName));
    EXPECT_EQ(debug.dataDir(), kDumpDir);
  });
}

TEST_F(DebugConfigTest, EndlessLinesAreReadWhole) {
  const std::string endless(4 << 20, 'x');
  tivora::test::writeFile(kDebugFile, endless + "\nLong=" + endless + "\nDataDir=" + kDumpDir);
  inProcess([&](InspectableDebug& debug, LogCapture&) {
    EXPECT_TRUE(debug.loadConfig(kFileName));
    EXPECT_EQ(debug.config().at("Long"), endless);
    EXPECT_EQ(debug.dataDir(), kDumpDir);
  });
}

// File contents and the pairs they give.
struct PairsCase {
  const char* name;
  std::string content;
  DebugConfig pairs;
};
void PrintTo(const PairsCase& c, std::ostream* os) { *os << c.name; }

class DebugConfigPairsTest : public DebugConfigTest, public ::testing::WithParamInterface<PairsCase> {};

TEST_P(DebugConfigPairsTest, AreStoredAsWritten) { expectPairs(GetParam().content, GetParam().pairs); }

INSTANTIATE_TEST_SUITE_P(Files, DebugConfigPairsTest,
                         ::testing::Values(PairsCase{"FirstOfTwoEqualKeysWins", "A=1\nA=2\n", {{"A", "1"}}},
                                           PairsCase{"NothingIsTrimmed",
                                                     " A = b \n\tC\t=\td\t\nE=true\r\n",
                                                     {{" A ", " b "}, {"\tC\t", "\td\t"}, {"E", "true\r"}}},
                                           PairsCase{"EmptyKeysAndValues", "=x\nA=\n", {{"", "x"}, {"A", ""}}},
                                           PairsCase{"OnlyTheFirstEqualsSplits", "A=b=c\n", {{"A", "b=c"}}},
                                           PairsCase{"LinesWithoutEqualsAreSkipped",
                                                     "\n\n# A=comment\nnothing\n\r\nLast=1",
                                                     {{"# A", "comment"}, {"Last", "1"}}},
                                           PairsCase{
                                               "BinaryContent",
                                               std::string("\x00\xff\x01=\x7f\x00=\x80\n\x00\x00\n", 12),
                                               {{std::string("\x00\xff\x01", 3), std::string("\x7f\x00=\x80", 4)}}}),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
