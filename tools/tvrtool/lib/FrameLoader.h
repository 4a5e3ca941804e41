// The frames `tvrtool run` applies, all prepared before the first one: the built-in chart, a PNG
// picture, an NV12 file of one or more frames, a Y4M stream, or a folder of NV12 and PNG files.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Layout.h"
#include "Nv12Frame.h"

namespace tvrtool {

struct FrameSequence {
  std::vector<Nv12Frame> frames;  // one layout for all
  std::string description;        // one line: what they are
};

// The frames at `path` (none: the chart), at most `maxFrames` of them; `request` sizes NV12
// files whose names do not. A folder's files are taken in name order: *.nv12 and *.yuv as NV12,
// *.png as pictures; other files are left out. On failure returns nothing and `error` is one line
// for the user that names the file.
std::optional<FrameSequence> loadFrames(const std::optional<std::string>& path, const LayoutRequest& request,
                                        uint32_t maxFrames, std::string& error);

}  // namespace tvrtool
