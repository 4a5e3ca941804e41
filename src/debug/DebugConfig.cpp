// The debug configuration: where dumps go, whether debugging is on, and the per-buffer keys.
#include <fstream>
#include <string>

#include "TivoraBase.h"
#include "log/Log.h"

namespace tivora {

namespace {
constexpr char kClass[] = "DebugBase";
constexpr char kFunction[] = "loadConfig";
}  // namespace

TivoraBase::DebugBase::DebugBase() : mDataDirKey("DataDir"), mDataDir(), mDebugEnabled(false) {
  mConfig.max_load_factor(1.0f);
}

TivoraBase::DebugBase::~DebugBase() = default;

bool TivoraBase::DebugBase::isDebugEnabled() { return mDebugEnabled; }

bool TivoraBase::DebugBase::loadConfig(std::string fileName) {
  TivoraLogger* const logger = TivoraLogger::getInstance();
  if (logger != nullptr) mDataDir = logger->getDataDir();

  const std::string path = format("%s/%s", mDataDir.c_str(), fileName.c_str());
  TVR_LOG(logger, DEBUG, kClass, kFunction, "Read config file %s/%s", mDataDir.c_str(), fileName.c_str());
  std::ifstream file(path);
  if (!file.is_open()) return false;

  mConfig.clear();
  std::string line;
  while (std::getline(file, line)) {
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;  // empty lines too
    // Nothing is trimmed, and emplace keeps the first value of a repeated key.
    mConfig.emplace(line.substr(0, equals), line.substr(equals + 1));
  }
  for (const auto& [key, value] : mConfig) {
    TVR_LOG(logger, DEBUG, kClass, kFunction, "Config %s = %s", key.c_str(), value.c_str());
  }

  const auto dataDir = mConfig.find(mDataDirKey);
  if (dataDir != mConfig.end()) mDataDir = dataDir->second;
  if (mDataDir.empty() || mDataDir.find(' ') != std::string::npos) {
    TVR_LOG(logger, DEBUG, kClass, kFunction, "Cannot set data directory");
    return false;
  }
  TVR_LOG(logger, DEBUG, kClass, kFunction, "Debug is enabled");
  mDebugEnabled = true;
  return true;
}

}  // namespace tivora
