// The library's fixed device paths (TIVORA_PATH_PREFIX + "/data/vendor/camera", the trace_marker
// files) as `tvrtool run` prepares them on a workstation, where it plays the camera host.
//
// The logger reads its configuration once per process, on first use: prepare the tree BEFORE
// constructing a processing.
#pragma once

#include <optional>
#include <string>

namespace tvrtool {

struct DeviceSetup {
  bool trace = false;                       // TivoraTrace=true in the logger's configuration
  std::optional<std::string> dumpDir;       // absolute; switches the sample processing's dumps on
};

// Writes the logger's configuration into the camera directory (so the logger has a data
// directory) and the sample processing's debug configuration beside it, or removes a debug
// configuration a previous run left. Returns a message for the user, or "".
std::string prepareDevice(const DeviceSetup& setup);

// Where the library writes its trace markers.
const char* traceMarkerPath();

// The prefix is empty in a device build: then these paths are the machine's own /data and /sys,
// which a workstation tool must not rewrite.
bool devicePathsArePrefixed();

}  // namespace tvrtool
