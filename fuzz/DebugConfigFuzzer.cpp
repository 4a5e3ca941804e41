// The debug configuration file: each input is written as the file into the logger's data
// directory and loaded, by a fresh debug object and by one that lives through every input (loads
// after a successful one keep debugging on).
#include <cstdint>
#include <cstdlib>
#include <string>

#include "DeviceDirs.h"
#include "DevicePaths.h"
#include "TivoraBase.h"
#include "TivoraLogger.h"

namespace {

constexpr char kFile[] = "FuzzDebug.dat";

void require(bool condition) {
  if (!condition) std::abort();
}

// Reads what a load left behind.
class InspectedDebug : public tivora::TivoraBase::DebugBase {
 public:
  const std::string& dataDir() const { return mDataDir; }
  const std::unordered_map<std::string, std::string>& config() const { return mConfig; }
};

void checkAfterLoad(InspectedDebug& debug, bool loaded, bool wasEnabled, const std::string& text) {
  require(debug.isDebugEnabled() == (wasEnabled || loaded));
  if (loaded) require(!debug.dataDir().empty() && debug.dataDir().find(' ') == std::string::npos);
  // Every pair came from one line: its key holds no '=' and no line end, and the file holds it.
  for (const auto& [key, value] : debug.config()) {
    require(key.find('=') == std::string::npos && key.find('\n') == std::string::npos);
    require(value.find('\n') == std::string::npos);
    require(text.find(key + "=" + value) != std::string::npos);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Every level on, so that each message is formatted; the logger's directory is the data directory.
  tivora::fuzz::writeFileOrDie(std::string(tivora::paths::kVendorCameraDir) + "/VEXA_TVR.dat", "TivoraLogLevel=V\n");
  require(tivora::TivoraLogger::getInstance()->getDataDir() == tivora::paths::kVendorCameraDir);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  tivora::fuzz::writeFileOrDie(std::string(tivora::paths::kVendorCameraDir) + "/" + kFile, text);

  InspectedDebug fresh;
  checkAfterLoad(fresh, fresh.loadConfig(kFile), false, text);

  static InspectedDebug& lasting = *new InspectedDebug;  // kept for the whole run, never released
  const bool wasEnabled = lasting.isDebugEnabled();
  checkAfterLoad(lasting, lasting.loadConfig(kFile), wasEnabled, text);
  return 0;
}
