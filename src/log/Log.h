// The library's one way to log: the level check comes first, so a suppressed message evaluates
// none of its arguments (not even the class name) and formats nothing.
//
//     TVR_LOG(mpLogger, ERROR, getClassName(), "setup", "Create parameter is null");
#pragma once

#include <android/log.h>

#include "TivoraLogger.h"

namespace tivora {

// The process-wide logger for code that holds no pointer of its own. The logger is never destroyed,
// so the pointer is fetched once; later calls take no lock.
inline TivoraLogger* processLogger() {
  static TivoraLogger* const logger = TivoraLogger::getInstance();
  return logger;
}

}  // namespace tivora

namespace tivora::detail {

constexpr int kPriorityVERBOSE = ANDROID_LOG_VERBOSE;
constexpr int kPriorityDEBUG = ANDROID_LOG_DEBUG;
constexpr int kPriorityINFO = ANDROID_LOG_INFO;
constexpr int kPriorityWARN = ANDROID_LOG_WARN;
constexpr int kPriorityERROR = ANDROID_LOG_ERROR;

// Lets the compiler check a message's format against its arguments; never called.
inline void __attribute__((format(printf, 1, 2))) checkLogFormat(const char*, ...) {}

}  // namespace tivora::detail

#define TVR_LOG(logger, level, className, functionName, ...)                                              \
  do {                                                                                                    \
    ::tivora::TivoraLogger* tvrLogger_ = (logger);                                                        \
    if (tvrLogger_ != nullptr && tvrLogger_->isLogEnabled(::tivora::TivoraLogger::TVR_LOG_##level)) {     \
      if (false) ::tivora::detail::checkLogFormat(__VA_ARGS__);                                           \
      tvrLogger_->logPrint((className), (functionName), ::tivora::detail::kPriority##level, __VA_ARGS__); \
    }                                                                                                     \
  } while (0)
