// NV12 frames from files: a host frame saved raw, or a source dump of the library.
#pragma once

#include <optional>
#include <string>

#include "Layout.h"
#include "Nv12Frame.h"

namespace tvrtool {

// Reads the frame at `path`. Width, height, stride and scanline come from `request` where given,
// else from the file's name as `tvrtool view` reads it (5000000000_src_1920x1080.nv12,
// frame_64x48.nv12); the format is always NV12. The file must hold exactly stride x scanline x 3/2
// bytes. On failure
// returns nothing and sets `error` to one line for the user.
std::optional<Nv12Frame> readNv12File(const std::string& path, const LayoutRequest& request, std::string& error);

}  // namespace tvrtool
