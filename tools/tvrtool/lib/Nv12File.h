// NV12 frames from a file: one frame, or several back to back, as a host saves them raw or the
// library dumps a source frame.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Layout.h"
#include "Nv12Frame.h"

namespace tvrtool {

// Reads the first `maxFrames` frames at `path`. Width, height, stride and scanline come from
// `request` where given, else from the file's name as `tvrtool view` reads it
// (5000000000_src_1920x1080.nv12, frame_64x48.nv12); the format is always NV12. The file must
// hold a whole number of frames of stride x scanline x 3/2 bytes. On failure returns nothing and
// sets `error` to one line for the user.
std::optional<std::vector<Nv12Frame>> readNv12Frames(const std::string& path, const LayoutRequest& request,
                                                     uint32_t maxFrames, std::string& error);

}  // namespace tvrtool
