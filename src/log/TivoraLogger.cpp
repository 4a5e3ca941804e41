#include "TivoraLogger.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>

#include "DevicePaths.h"

namespace tivora {

TivoraLogger* TivoraLogger::mpSingleton = nullptr;
std::mutex TivoraLogger::mSingletonLock;

TivoraLogger::TivoraLogger()
    : mLogTag("TVR"),
      mConfigDir(paths::kVendorCameraDir),
      mConfigDirFallback(paths::kLocalDir),
      mConfigFileName("VEXA_TVR.dat"),
      mLogLevelKey("TivoraLogLevel"),
      mTraceKey("TivoraTrace"),
      mSnpeLogLevelKey("SNPELogLevel"),
      mLogLevelMap{
          {"V", TVR_LOG_VERBOSE}, {"D", TVR_LOG_DEBUG}, {"I", TVR_LOG_INFO}, {"W", TVR_LOG_WARN}, {"E", TVR_LOG_ERROR}},
      mBoolMap{{"true", true}, {"enable", true}, {"false", false}, {"disable", false}},
      mPriorityTagMap{{ANDROID_LOG_VERBOSE, "[TVR VERBOSE]"},
                      {ANDROID_LOG_DEBUG, "[TVR DEBUG]"},
                      {ANDROID_LOG_INFO, "[TVR INFO]"},
                      {ANDROID_LOG_WARN, "[TVR WARN]"},
                      {ANDROID_LOG_ERROR, "[TVR ERROR]"}},
      mLogLevel(TVR_LOG_INFO) {}

TivoraLogger::~TivoraLogger() = default;

TivoraLogger* TivoraLogger::getInstance() {
  std::lock_guard<std::mutex> guard(mSingletonLock);
  if (mpSingleton == nullptr) {
    mpSingleton = new TivoraLogger();
    mpSingleton->setup();
  }
  return mpSingleton;
}

TivoraLogger::tvr_loglevel_t TivoraLogger::getLogLevel() { return mLogLevel; }

void TivoraLogger::setLogLevel(tvr_loglevel_t level) { mLogLevel = level; }

bool TivoraLogger::isLogEnabled(tvr_loglevel_t level) { return mLogLevel <= level; }

std::string TivoraLogger::getDataDir() { return mDataDir; }

void TivoraLogger::logPrint(std::string className, const char* functionName, int priority, std::string format, ...) {
  auto tag = mPriorityTagMap.find(priority);
  const char* levelTag = tag != mPriorityTagMap.end() ? tag->second.c_str() : "[TVR LOG]";
  const std::string prefix = tivora::format("%s %s.%s: ", levelTag, className.c_str(), functionName);

  char message[1024];
  message[0] = '\0';
  va_list args;
  va_start(args, format);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // the caller's format, checked at the call site
  if (vsnprintf(message, sizeof message, format.c_str(), args) < 0) message[0] = '\0';
#pragma GCC diagnostic pop
  va_end(args);

  __android_log_print(priority, mLogTag.c_str(), "%s%s", prefix.c_str(), message);
}

int TivoraLogger::convert(tvr_loglevel_t level) {
  switch (level) {
    case TVR_LOG_VERBOSE:
    case TVR_LOG_DEBUG:
      return 4;
    case TVR_LOG_INFO:
      return 3;
    case TVR_LOG_WARN:
      return 2;
    default:
      return 1;
  }
}

}  // namespace tivora
