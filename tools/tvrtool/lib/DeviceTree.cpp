#include "DeviceTree.h"

#include <filesystem>

#include "DevicePaths.h"
#include "FileBytes.h"

namespace tvrtool {

namespace fs = std::filesystem;

std::string prepareDevice(const DeviceSetup& setup) {
  const fs::path cameraDir = tivora::paths::kVendorCameraDir;
  std::error_code code;
  fs::create_directories(cameraDir, code);
  if (code) return "cannot create " + cameraDir.string() + ": " + code.message();
  return writeTextFile((cameraDir / "VEXA_TVR.dat").string(), std::string("TivoraLogLevel=") + setup.logLevel + "\n" +
                                                                   (setup.trace ? "TivoraTrace=true\n" : ""));
}

bool devicePathsArePrefixed() { return TIVORA_PATH_PREFIX[0] != '\0'; }

}  // namespace tvrtool
