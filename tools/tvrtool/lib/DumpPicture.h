// Pictures of what the library dumps: the PNG `tvrtool view` writes for a file, and the pictures
// `tvrtool run -o` makes of the last frame's dumps.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Layout.h"

namespace tvrtool {

// Writes the dump or raw image at `path` as the PNG `target` ("-": standard output), read as its
// name and `request` say. Returns "" and sets `read` to the layout read ("nv12 4x2, stride 4"),
// or returns the reason for the user.
std::string writePicture(const std::string& path, const LayoutRequest& request, const std::string& target,
                         std::string& read);

// The buffer dumps in `dir` (<boot time>_<name>_<stride>x<height>.<format>) stamped at
// `sinceBootNs` or later, in name order.
std::vector<std::string> dumpsSince(const std::string& dir, int64_t sinceBootNs);

}  // namespace tvrtool
