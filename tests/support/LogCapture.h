// Records every Android log record the library writes in this process. The test binary defines
// __android_log_print itself (LogCapture.cpp), which takes precedence over liblog's, so the
// library's real calls are observed unchanged.
#pragma once

#include <string>
#include <vector>

#include "TivoraLogger.h"

namespace tivora::test {

struct LogRecord {
  int priority;
  std::string tag;
  std::string text;  // the formatted record, as logcat would show it
};

// Clears the records on construction; records() returns what was logged since.
class LogCapture {
 public:
  LogCapture();
  std::vector<LogRecord> records() const;
  // Texts only, for the common case of comparing the messages in order.
  std::vector<std::string> texts() const;
};

// Sets the process logger's threshold for a scope; the previous one comes back at its end.
class ScopedLogLevel {
 public:
  explicit ScopedLogLevel(TivoraLogger::tvr_loglevel_t level) : mPrevious(TivoraLogger::getInstance()->getLogLevel()) {
    TivoraLogger::getInstance()->setLogLevel(level);
  }
  ~ScopedLogLevel() { TivoraLogger::getInstance()->setLogLevel(mPrevious); }
  ScopedLogLevel(const ScopedLogLevel&) = delete;
  ScopedLogLevel& operator=(const ScopedLogLevel&) = delete;

 private:
  TivoraLogger::tvr_loglevel_t mPrevious;
};

}  // namespace tivora::test
