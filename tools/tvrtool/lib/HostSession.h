// `tvrtool run` playing the camera host: the sample processing's whole lifecycle on one frame
// applied again and again, each status reported in words on standard output as it comes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DisplayImage.h"
#include "MeanColourProcessing.h"
#include "Nv12Frame.h"
#include "Progress.h"

namespace tvrtool {

struct HostSettings {
  std::string modelPath;
  tvr_runtime_t runtime = TVR_RUNTIME_CPU;
  tvr_rotation_t rotation = TVR_ROTATION_0;
  tvr_crop_t crop{};  // inside the frame
  uint32_t frames = 1;
  bool debug = false;  // pass a debug record, so the base calls the apply-debug hook
  tivora::examples::MeanColourConfig config;
};

// Nanoseconds per applied frame, one entry each.
struct FrameTimes {
  std::vector<int64_t> split, nv12ToRgb, rgbToFloat, execute, apply;
};

struct SessionResult {
  std::string failure;  // empty when every call succeeded, else one line saying what failed
  uint32_t framesApplied = 0;
  tivora::examples::MeanColourOutput last{};
  FrameTimes times;
  DisplayImage networkImage;  // the RGB picture the network saw in the last frame
};

// setup, initialize, apply x frames, abort, finalize, teardown. A failed setup or initialize
// skips the frames but still runs finalize and teardown; a failed apply stops the frames.
SessionResult runHost(const HostSettings& settings, const Nv12Frame& frame, Progress& progress);

}  // namespace tvrtool
