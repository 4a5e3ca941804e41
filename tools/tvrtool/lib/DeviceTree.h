// The library's fixed device paths (TIVORA_PATH_PREFIX + "/data/vendor/camera") as `tvrtool run`
// prepares them on a workstation, where it plays the camera host.
//
// The logger reads its configuration once per process, on first use: prepare the tree BEFORE
// constructing a processing.
#pragma once

#include <string>

namespace tvrtool {

struct DeviceSetup {
  char logLevel = 'W';  // TivoraLogLevel: V, D, I, W or E
  bool trace = false;   // TivoraTrace=true
};

// Writes the logger's configuration into the camera directory (which also makes it the logger's
// data directory). Returns a message for the user, or "".
std::string prepareDevice(const DeviceSetup& setup);

// The prefix is empty in a device build: then these paths are the machine's own /data and /sys,
// which a workstation tool must not rewrite.
bool devicePathsArePrefixed();

}  // namespace tvrtool
