#include "DeviceTree.h"

#include <filesystem>

#include "DevicePaths.h"
#include "FileBytes.h"
#include "MeanColourProcessing.h"

namespace tvrtool {

namespace fs = std::filesystem;

std::string prepareDevice(const DeviceSetup& setup) {
  const fs::path cameraDir = tivora::paths::kVendorCameraDir;
  std::error_code code;
  fs::create_directories(cameraDir, code);
  if (code) return "cannot create " + cameraDir.string() + ": " + code.message();

  // Warnings and errors of the library show; its INFO lines about the configuration show anyway.
  std::string error = writeTextFile((cameraDir / "VEXA_TVR.dat").string(),
                                std::string("TivoraLogLevel=W\n") + (setup.trace ? "TivoraTrace=true\n" : ""));
  if (!error.empty()) return error;

  const fs::path debugConfig = cameraDir / tivora::examples::MeanColourProcessing::kDebugConfigFile;
  if (!setup.dumpDir) {
    fs::remove(debugConfig, code);
    return "";
  }
  return writeTextFile(debugConfig.string(), "DataDir=" + *setup.dumpDir + "\nDumpSource=true\nDumpNetworkInput=true\n");
}

const char* traceMarkerPath() { return tivora::paths::kTraceMarker; }

bool devicePathsArePrefixed() { return TIVORA_PATH_PREFIX[0] != '\0'; }

}  // namespace tvrtool
