// The logger in one process: the record format, the level checks, the runtime's levels, the
// configuration file's reader, and formatting. What the logger makes of its configuration file,
// once per process, is in OncePerProcessTest.cpp.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "TivoraLogger.h"
#include "log/Log.h"
#include "log/LoggerConfigWords.h"

namespace {

using tivora::TivoraLogger;
using tivora::test::LogCapture;
using Level = TivoraLogger::tvr_loglevel_t;

class LoggerTest : public ::testing::Test {
 protected:
  tivora::test::ScopedLogLevel restored{TivoraLogger::TVR_LOG_ERROR};  // the cases set their own
  TivoraLogger* logger = TivoraLogger::getInstance();
};

TEST_F(LoggerTest, RecordCarriesTheTagOfItsPriorityClassAndFunction) {
  LogCapture capture;
  logger->setLogLevel(static_cast<Level>(5));  // logPrint itself makes no level check
  std::vector<std::string> expected;
  for (const auto& [priority, tag] : std::vector<std::pair<int, std::string>>{
           {2, "VERBOSE"}, {3, "DEBUG"}, {4, "INFO"}, {5, "WARN"}, {6, "ERROR"}, {7, "LOG"}, {0, "LOG"}}) {
    logger->logPrint("Cls", "fn", priority, "n=%d", priority);
    expected.push_back("[TVR " + tag + "] Cls.fn: n=" + std::to_string(priority));
  }
  logger->logPrint("C", "f", 4, "%s", std::string(3000, 'm').c_str());
  expected.push_back("[TVR INFO] C.f: " + std::string(1023, 'm'));
  EXPECT_EQ(capture.texts(), expected);
  std::vector<int> priorities;
  for (const auto& record : capture.records()) priorities.push_back(record.tag == "TVR" ? record.priority : -1);
  EXPECT_EQ(priorities, (std::vector<int>{2, 3, 4, 5, 6, 7, 0, 4}));
}

// The threshold passes its own level and above; each level has its level of the NN runtime.
TEST_F(LoggerTest, ThresholdAndRuntimeLevels) {
  const int runtimeLevels[] = {1, 4, 4, 3, 2, 1, 1};  // for the levels -1 .. 5
  for (int threshold = -1; threshold <= 5; ++threshold) {
    logger->setLogLevel(static_cast<Level>(threshold));
    EXPECT_EQ(logger->getLogLevel(), threshold);
    for (int level = 0; level <= 4; ++level) {
      EXPECT_EQ(logger->isLogEnabled(static_cast<Level>(level)), threshold <= level) << threshold << " " << level;
    }
    EXPECT_EQ(logger->convert(static_cast<Level>(threshold)), runtimeLevels[threshold + 1]) << threshold;
  }
}

TEST_F(LoggerTest, SuppressedMessageEvaluatesAndFormatsNothing) {
  logger->setLogLevel(TivoraLogger::TVR_LOG_INFO);
  LogCapture capture;
  int evaluated = 0;
  const auto name = [&evaluated] {
    ++evaluated;
    return std::string("C");
  };
  TVR_LOG(logger, DEBUG, name(), "f", "%d", ++evaluated);
  EXPECT_EQ(evaluated, 0);
  TVR_LOG(logger, INFO, name(), "f", "%d", 42);
  TivoraLogger* none = nullptr;
  TVR_LOG(none, ERROR, "C", "f", "dropped");
  EXPECT_EQ(evaluated, 1);
  EXPECT_EQ(capture.texts(), std::vector<std::string>{"[TVR INFO] C.f: 42"});
}

// The configuration reader: file content, and the level, trace and runtime level words it gives.
TEST(LoggerConfigWords, LinesSetTheWords) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "I false E"},
      {"TivoraLogLevel=D\nTivoraTrace=enable\nSNPELogLevel=V\n", "D enable V"},
      {" Tivora LogLevel  =  W \n TivoraTrace = true", "W true E"},       // blanks anywhere removed
      {"TivoraLogLevel=WARN\nSNPELogLevel=Debug\n", "W false D"},         // one character counts
      {"TivoraLogLevel=E\nTivoraLogLevel=V\n", "V false E"},              // the later line wins
      {"set.TivoraLogLevel=V;\n#TivoraTrace=on\n", "V on E"},             // anywhere, no comments
      {"TivoraLogLevel=\tD\r\nTivoraTrace=enable\r\n", "\t enable\r E"},  // only blanks go
      {"TivoraLogLevel D\nTivoraLogLevel=\n", " false E"},                // '=' needed, empty kept
      {"TivoraLogLevel=DTivoraTrace=true\n", "D false E"},                // level key first,
      {"TivoraTrace=trueSNPELogLevel=V\n", "I trueSNPELogLevel=V E"},     // then the trace key
      {std::string(1 << 20, 'x') + "TivoraLogLevel=D", "D false E"},
  };
  for (const auto& [content, expected] : cases) {
    std::istringstream in(content);
    tivora::detail::LoggerConfigWords words;
    tivora::detail::readLoggerConfigWords(in, {"TivoraLogLevel", "TivoraTrace", "SNPELogLevel"}, words);
    EXPECT_EQ(words.level + " " + words.trace + " " + words.snpeLevel, expected) << content.substr(0, 80);
  }
}

}  // namespace
