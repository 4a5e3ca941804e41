// Reading of the logger's configuration file.
#include <android/log.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "SNPE/SNPEUtil.h"
#include "ScopedTrace.h"
#include "TivoraLogger.h"

namespace tivora {

namespace {

// The value after "key=" when the line holds it; `length` 0 takes the rest of the line.
bool valueOf(const std::string& line, const std::string& keyWithEquals, std::string::size_type length,
             std::string& value) {
  const auto position = line.find(keyWithEquals);
  if (position == std::string::npos) return false;
  value = line.substr(position + keyWithEquals.size(), length == 0 ? std::string::npos : length);
  return true;
}

}  // namespace

void TivoraLogger::setup() {
  // These messages bypass the level check on purpose: they state what the configuration did.
  static const char kClass[] = "TivoraLogger";
  static const char kFunction[] = "setup";

  std::string levelWord = "I";
  std::string traceWord = "false";
  std::string snpeLevelWord = "E";

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
    const std::string levelKey = mLogLevelKey + "=";
    const std::string traceKey = mTraceKey + "=";
    const std::string snpeLevelKey = mSnpeLogLevelKey + "=";
    std::string line;
    while (std::getline(file, line)) {
      line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
      // Keys are tried in this order and a line sets at most one word.
      if (valueOf(line, levelKey, 1, levelWord)) continue;
      if (valueOf(line, traceKey, 0, traceWord)) continue;
      valueOf(line, snpeLevelKey, 1, snpeLevelWord);
    }
    file.close();

    const auto level = mLogLevelMap.find(levelWord);
    if (level != mLogLevelMap.end()) {
      mLogLevel = level->second;
      logPrint(kClass, kFunction, ANDROID_LOG_INFO, "Log level is set: %s", levelWord.c_str());
    } else {
      logPrint(kClass, kFunction, ANDROID_LOG_WARN, "Unsupported log level %s", levelWord.c_str());
    }

    const auto trace = mBoolMap.find(traceWord);
    if (trace != mBoolMap.end() && trace->second) gTracingOn = true;
  }

  const auto snpeLevel = mLogLevelMap.find(snpeLevelWord);
  const int runtimeLevel = snpeLevel != mLogLevelMap.end() ? convert(snpeLevel->second) : 1;
  if (Snpe_Util_InitializeLogging(static_cast<Snpe_LogLevel_t>(runtimeLevel))) {
    logPrint(kClass, kFunction, ANDROID_LOG_INFO, "Snpe log level is set: %s", snpeLevelWord.c_str());
  }
}

}  // namespace tivora
