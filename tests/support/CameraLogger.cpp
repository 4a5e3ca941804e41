// Linked into a test program, creates the process's logger before the first case from a
// configuration in the camera directory, which thereby becomes the logger's data directory: where
// debug configurations are read. The threshold is ERROR; cases that look at other messages set
// their own (ScopedLogLevel).
#include <gtest/gtest.h>

#include "DeviceFiles.h"
#include "TivoraLogger.h"

namespace {

class CameraLogger : public ::testing::Environment {
 public:
  void SetUp() override {
    tivora::test::wipeDevice();
    tivora::test::writeFile(tivora::test::loggerConfigPath(tivora::paths::kVendorCameraDir), "TivoraLogLevel=E\n");
    tivora::TivoraLogger::getInstance();
    tivora::test::wipeDevice();
  }
};

::testing::Environment* const kCameraLogger = ::testing::AddGlobalTestEnvironment(new CameraLogger);

}  // namespace
