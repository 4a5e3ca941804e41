// Reading of the logger's configuration file.
#include <android/log.h>

#include <fstream>
#include <string>

#include "SNPE/SNPEUtil.h"
#include "ScopedTrace.h"
#include "TivoraLogger.h"
#include "log/LoggerConfigWords.h"

namespace tivora {

void TivoraLogger::setup() {
  // These messages bypass the level check on purpose: they state what the configuration did.
  static const char kClass[] = "TivoraLogger";
  static const char kFunction[] = "setup";

  detail::LoggerConfigWords words;

  std::ifstream file;
  for (const std::string* dir : {&mConfigDir, &mConfigDirFallback}) {
    const std::string path = format("%s/%s", dir->c_str(), mConfigFileName.c_str());
    file.open(path);
    if (file.is_open()) {
      logPrint(kClass, kFunction, ANDROID_LOG_INFO, "Load config file: %s", path.c_str());
      mDataDir = *dir;
      break;
    }
    file.clear();
  }

  if (file.is_open()) {
    detail::readLoggerConfigWords(file, {mLogLevelKey, mTraceKey, mSnpeLogLevelKey}, words);
    file.close();

    const auto level = mLogLevelMap.find(words.level);
    if (level != mLogLevelMap.end()) {
      mLogLevel = level->second;
      logPrint(kClass, kFunction, ANDROID_LOG_INFO, "Log level is set: %s", words.level.c_str());
    } else {
      logPrint(kClass, kFunction, ANDROID_LOG_WARN, "Unsupported log level %s", words.level.c_str());
    }

    const auto trace = mBoolMap.find(words.trace);
    if (trace != mBoolMap.end() && trace->second) gTracingOn = true;
  }

  const auto snpeLevel = mLogLevelMap.find(words.snpeLevel);
  const int runtimeLevel = snpeLevel != mLogLevelMap.end() ? convert(snpeLevel->second) : 1;
  if (Snpe_Util_InitializeLogging(static_cast<Snpe_LogLevel_t>(runtimeLevel))) {
    logPrint(kClass, kFunction, ANDROID_LOG_INFO, "Snpe log level is set: %s", words.snpeLevel.c_str());
  }
}

}  // namespace tivora
