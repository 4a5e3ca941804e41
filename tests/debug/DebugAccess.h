// DebugBase with its state in reach of the tests.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>

#include "TivoraBase.h"

namespace tivora::test {

using DebugConfig = std::unordered_map<std::string, std::string>;

// Shows what loadConfig left behind.
class InspectableDebug : public TivoraBase::DebugBase {
 public:
  const DebugConfig& config() const { return mConfig; }
  const std::string& dataDir() const { return mDataDir; }
};

// Debugging switched on without a configuration file, so that dump cases need neither the logger
// nor a fresh process.
class ArmedDebug : public TivoraBase::DebugBase {
 public:
  explicit ArmedDebug(std::string dataDir, DebugConfig config = {}) {
    mDataDir = std::move(dataDir);
    mConfig = std::move(config);
    mDebugEnabled = true;
  }
  void disable() { mDebugEnabled = false; }
};

}  // namespace tivora::test
