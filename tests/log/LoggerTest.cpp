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
  const std::vector<std::pair<int, std::string>> tags = {{2, "[TVR VERBOSE]"}, {3, "[TVR DEBUG]"}, {4, "[TVR INFO]"},
                                                         {5, "[TVR WARN]"},    {6, "[TVR ERROR]"}, {7, "[TVR LOG]"},
                                                         {0, "[TVR LOG]"}};
  logger->setLogLevel(static_cast<Level>(5));  // logPrint itself makes no level check
  for (const auto& [priority, tag] : tags) logger->logPrint("Cls", "fn", priority, "n=%d", priority);
  logger->logPrint("C", "f", 4, "%s", std::string(3000, 'm').c_str());
  const auto records = capture.records();
  ASSERT_EQ(records.size(), tags.size() + 1);
  for (size_t i = 0; i < tags.size(); ++i) {
    EXPECT_EQ(records[i].priority, tags[i].first);
    EXPECT_EQ(records[i].tag, "TVR");
    EXPECT_EQ(records[i].text, tags[i].second + " Cls.fn: n=" + std::to_string(tags[i].first));
  }
  EXPECT_EQ(records.back().text, "[TVR INFO] C.f: " + std::string(1023, 'm'));
}

TEST_F(LoggerTest, ThresholdPassesItsOwnLevelAndAbove) {
  for (int threshold = -1; threshold <= 5; ++threshold) {
    logger->setLogLevel(static_cast<Level>(threshold));
    EXPECT_EQ(logger->getLogLevel(), threshold);
    for (int level = 0; level <= 4; ++level) {
      EXPECT_EQ(logger->isLogEnabled(static_cast<Level>(level)), threshold <= level) << threshold << " " << level;
    }
  }
}

TEST_F(LoggerTest, LevelsConvertToTheRuntimesLevels) {
  for (const auto& [level, runtime] :
       std::vector<std::pair<int, int>>{{0, 4}, {1, 4}, {2, 3}, {3, 2}, {4, 1}, {5, 1}, {-1, 1}}) {
    EXPECT_EQ(logger->convert(static_cast<Level>(level)), runtime) << level;
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
struct WordsCase {
  std::string content, level, trace, snpeLevel;
};

TEST(LoggerConfigWords, LinesSetTheWords) {
  const WordsCase cases[] = {
      {"", "I", "false", "E"},
      {"TivoraLogLevel=D\nTivoraTrace=enable\nSNPELogLevel=V\n", "D", "enable", "V"},
      {" Tivora LogLevel  =  W \n TivoraTrace = true", "W", "true", "E"},       // blanks anywhere removed
      {"TivoraLogLevel=WARN\nSNPELogLevel=Debug\n", "W", "false", "D"},         // one character counts
      {"TivoraLogLevel=E\nTivoraLogLevel=V\n", "V", "false", "E"},              // the later line wins
      {"set.TivoraLogLevel=V;\n#TivoraTrace=on\n", "V", "on", "E"},             // anywhere, no comments
      {"TivoraLogLevel=\tD\r\nTivoraTrace=enable\r\n", "\t", "enable\r", "E"},  // only blanks go
      {"TivoraLogLevel D\nTivoraLogLevel=\n", "", "false", "E"},                // '=' needed, empty kept
      {"TivoraLogLevel=DTivoraTrace=true\n", "D", "false", "E"},                // level key first
      {"TivoraTrace=trueSNPELogLevel=V\n", "I", "trueSNPELogLevel=V", "E"},     // then the trace key
      {std::string(1 << 20, 'x') + "TivoraLogLevel=D", "D", "false", "E"},
  };
  for (const WordsCase& c : cases) {
    std::istringstream in(c.content);
    tivora::detail::LoggerConfigWords words;
    tivora::detail::readLoggerConfigWords(in, {"TivoraLogLevel", "TivoraTrace", "SNPELogLevel"}, words);
    EXPECT_EQ(words.level, c.level) << c.content.substr(0, 80);
    EXPECT_EQ(words.trace, c.trace) << c.content.substr(0, 80);
    EXPECT_EQ(words.snpeLevel, c.snpeLevel) << c.content.substr(0, 80);
  }
}

}  // namespace
