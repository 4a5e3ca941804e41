// YUV4MPEG2 streams (.y4m) of 4:2:0 frames, as ffmpeg writes them, read as NV12 frames.
//
//   YUV4MPEG2 W1920 H1080 F30:1 Ip A1:1 C420jpeg XYSCSS=420JPEG\n
//   FRAME\n  <Y plane, then Cb, then Cr: width x height x 3/2 bytes>
//   FRAME\n  ...
//
// The colour space may be C420jpeg, C420mpeg2, C420paldv, C420 or absent (which means 4:2:0);
// any other (C422, C444, Cmono, 10-bit ones) is refused. Other tags, and a FRAME line's own
// parameters, are read past. The chroma placement that the variants name is not resampled.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "Nv12Frame.h"

namespace tvrtool {

// The first `maxFrames` frames of the stream, converted to packed NV12 (stride = width) by
// libyuv. On failure returns nothing and sets `error` to one line for the user: not a Y4M
// stream, not 4:2:0, an odd width or height, no frames, a truncated frame (with the numbers).
std::optional<std::vector<Nv12Frame>> readY4m(std::istream& in, uint32_t maxFrames, std::string& error);

}  // namespace tvrtool
