// The device file system of a test build: every fixed device path of the library lies under the
// build's TIVORA_PATH_PREFIX, and these helpers write and read there. Tests never touch the
// machine's own /data or /sys.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DevicePaths.h"

namespace tivora::test {

// Removes everything under the prefix, so each case starts on an empty device.
void wipeDevice();

// Writes `content` to `path` (a prefixed path from DevicePaths.h), creating its directories.
void writeFile(const std::string& path, const std::string& content);

// Whole content of a file; empty when it does not exist.
std::string readFile(const std::string& path);

// Names of the entries of a directory, sorted; none when it does not exist.
std::vector<std::string> filesIn(const std::string& dir);

// "<dir>/VEXA_TVR.dat" for one of the two configuration directories.
std::string loggerConfigPath(const char* dir);

// The markers a trace_marker file received, one string each. Markers carry no separator; each
// ends in "|0" and the next starts with "B|" or "E|".
std::vector<std::string> readMarkers(const std::string& path);

// Starts and ends every case on an empty device.
class DeviceTest : public ::testing::Test {
 protected:
  void SetUp() override { wipeDevice(); }
  void TearDown() override { wipeDevice(); }
};

}  // namespace tivora::test
