// The logger without a configuration file: defaults, record format, level checks. Every case runs
// in a fresh process because the logger is created once per process.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "LogCapture.h"
#include "TivoraLogger.h"
#include "log/Log.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::TivoraLogger;
using tivora::test::inFreshProcess;
using tivora::test::LogCapture;
using Level = TivoraLogger::tvr_loglevel_t;

class TivoraLoggerTest : public tivora::test::DeviceTest {};

TEST_F(TivoraLoggerTest, DefaultsWithoutConfigurationFile) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(logger, TivoraLogger::getInstance());
    EXPECT_EQ(logger->getLogLevel(), TivoraLogger::TVR_LOG_INFO);
    EXPECT_FALSE(logger->isLogEnabled(TivoraLogger::TVR_LOG_DEBUG));
    EXPECT_TRUE(logger->isLogEnabled(TivoraLogger::TVR_LOG_INFO));
    EXPECT_EQ(logger->getDataDir(), "");
  });
}

TEST_F(TivoraLoggerTest, RecordCarriesLevelTagClassAndFunction) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    LogCapture capture;
    logger->logPrint("TivoraUtil", "outputRawImage", 6, "Cannot open file.");
    logger->logPrint("Cls", "fn", 2, "v %d", 0);
    logger->logPrint("Cls", "fn", 3, "d %s", "x");
    logger->logPrint("Cls", "fn", 4, "i");
    logger->logPrint("Cls", "fn", 5, "w");
    const auto records = capture.records();
    ASSERT_EQ(records.size(), 5u);
    EXPECT_EQ(records[0].priority, 6);
    EXPECT_EQ(records[0].tag, "TVR");
    EXPECT_EQ(records[0].text, "[TVR ERROR] TivoraUtil.outputRawImage: Cannot open file.");
    EXPECT_EQ(records[1].text, "[TVR VERBOSE] Cls.fn: v 0");
    EXPECT_EQ(records[2].text, "[TVR DEBUG] Cls.fn: d x");
    EXPECT_EQ(records[3].text, "[TVR INFO] Cls.fn: i");
    EXPECT_EQ(records[4].text, "[TVR WARN] Cls.fn: w");
    for (const auto& record : records) EXPECT_EQ(record.tag, "TVR");
  });
}

TEST_F(TivoraLoggerTest, UnknownPriorityPrintsWithLogTagAndKeepsThePriority) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    LogCapture capture;
    logger->logPrint("C", "f", 7, "seven");
    logger->logPrint("C", "f", 0, "zero");
    logger->logPrint("", "f", 4, "no class");
    const auto records = capture.records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].priority, 7);
    EXPECT_EQ(records[0].text, "[TVR LOG] C.f: seven");
    EXPECT_EQ(records[1].priority, 0);
    EXPECT_EQ(records[1].text, "[TVR LOG] C.f: zero");
    EXPECT_EQ(records[2].text, "[TVR INFO] .f: no class");
  });
}

TEST_F(TivoraLoggerTest, LogPrintMakesNoLevelCheckAndCutsLongMessages) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    logger->setLogLevel(TivoraLogger::TVR_LOG_ERROR);
    LogCapture capture;
    logger->logPrint("C", "f", 2, "%s", std::string(3000, 'm').c_str());
    const auto records = capture.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].text, "[TVR VERBOSE] C.f: " + std::string(1023, 'm'));
  });
}

TEST_F(TivoraLoggerTest, ThresholdComparesSignedLevels) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    for (int threshold = 0; threshold <= 4; ++threshold) {
      logger->setLogLevel(static_cast<Level>(threshold));
      EXPECT_EQ(logger->getLogLevel(), threshold);
      EXPECT_TRUE(logger->isLogEnabled(TivoraLogger::TVR_LOG_ERROR)) << threshold;
      for (int level = 0; level <= 4; ++level) {
        EXPECT_EQ(logger->isLogEnabled(static_cast<Level>(level)), threshold <= level) << threshold << level;
      }
    }
    logger->setLogLevel(static_cast<Level>(5));  // stored as given: nothing passes any more
    EXPECT_EQ(logger->getLogLevel(), 5);
    EXPECT_FALSE(logger->isLogEnabled(TivoraLogger::TVR_LOG_ERROR));
    logger->setLogLevel(static_cast<Level>(-1));
    EXPECT_TRUE(logger->isLogEnabled(TivoraLogger::TVR_LOG_VERBOSE));
  });
}

TEST_F(TivoraLoggerTest, ConvertsLevelsToTheRuntimesLevels) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    const std::vector<std::pair<int, int>> table = {{0, 4}, {1, 4}, {2, 3}, {3, 2}, {4, 1}, {5, 1}, {-1, 1}};
    for (const auto& [level, expected] : table) {
      EXPECT_EQ(logger->convert(static_cast<Level>(level)), expected) << level;
    }
  });
}

TEST_F(TivoraLoggerTest, SuppressedMessageIsNotFormatted) {
  inFreshProcess([] {
    TivoraLogger* logger = TivoraLogger::getInstance();
    LogCapture capture;
    int evaluated = 0;
    auto expensive = [&evaluated] {
      ++evaluated;
      return std::string("C");
    };
    TVR_LOG(logger, DEBUG, expensive(), "f", "%d", ++evaluated);
    EXPECT_EQ(evaluated, 0);
    EXPECT_TRUE(capture.records().empty());
    TVR_LOG(logger, WARN, expensive(), "f", "%d", 42);
    EXPECT_EQ(evaluated, 1);
    ASSERT_EQ(capture.records().size(), 1u);
    EXPECT_EQ(capture.records()[0].priority, 5);
    EXPECT_EQ(capture.records()[0].text, "[TVR WARN] C.f: 42");
    TivoraLogger* none = nullptr;
    TVR_LOG(none, ERROR, "C", "f", "dropped");
    EXPECT_EQ(capture.records().size(), 1u);
  });
}

TEST_F(TivoraLoggerTest, ConcurrentFirstCallsCreateAndConfigureOnce) {
  tivora::test::writeFile(tivora::test::loggerConfigPath(tivora::paths::kVendorCameraDir), "TivoraLogLevel=W\n");
  inFreshProcess([] {
    LogCapture capture;
    std::atomic<bool> go{false};
    std::vector<TivoraLogger*> seen(8);
    std::vector<int> levels(8);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i) {
      threads.emplace_back([&, i] {
        while (!go) std::this_thread::yield();
        seen[i] = TivoraLogger::getInstance();
        levels[i] = seen[i]->getLogLevel();  // no caller sees the logger before it is configured
      });
    }
    go = true;
    for (auto& thread : threads) thread.join();
    for (size_t i = 0; i < seen.size(); ++i) {
      EXPECT_EQ(seen[i], seen[0]);
      EXPECT_EQ(levels[i], TivoraLogger::TVR_LOG_WARN);
    }
    EXPECT_EQ(snpe_stub::loggingCalls(), 1);
    EXPECT_EQ(capture.records().size(), 3u);  // load, level and runtime level messages, once
  });
}

}  // namespace
