// `tvrtool run` playing the camera host: a plugin's processing through its whole lifecycle over
// a sequence of frames, each status reported in words on standard output as it comes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "FrameLoader.h"
#include "FrameTimings.h"
#include "ParameterDumpReader.h"
#include "PluginLibrary.h"
#include "Progress.h"
#include "ResultsFile.h"
#include "TraceRecorder.h"

namespace tvrtool {

// Which applies get a debug record, so that the base calls the processing's apply-debug hook.
enum class DebugApplies { None, Last, Every };

struct HostSettings {
  std::optional<std::string> modelPath;  // dlc_path[0]; none: dlc_num 0, the plugin's own model
  tvr_runtime_t runtime = TVR_RUNTIME_CPU;
  tvr_rotation_t rotation = TVR_ROTATION_0;
  tvr_crop_t crop{};    // inside the frames
  uint32_t frames = 1;  // applied in turn from the sequence, which starts again when it ends
  DebugApplies debug = DebugApplies::None;
  // A replay: each frame of the sequence with the record a device's host gave it (rotation, crop
  // and the rest: `rotation` and `crop` are then unused), and the stream's record for initialize.
  std::vector<DumpedInput> replayed;
  std::optional<tvr_static_param_t> stream;
};

struct SessionResult {
  explicit SessionResult(uint32_t frames) : timings(frames) {}
  std::string failure;  // empty when every call succeeded, else one line saying what failed
  uint32_t framesApplied = 0;
  FrameTimings timings;
  std::string lastResult;       // the plugin's description of the last output record, if it gives one
  int64_t lastApplyBootNs = 0;  // the boot clock when the last apply began: its dumps are newer
};

// setup, initialize, apply x frames, abort, finalize, teardown. A failed setup or initialize
// skips the frames but still runs finalize and teardown; a failed apply stops the frames. With
// `results`, each applied frame's line is written as it comes; with `trace`, each applied frame's
// time and stages are recorded.
SessionResult runHost(const PluginLibrary& plugin, hvx::IProcessing& processing, const HostSettings& settings,
                      const FrameSequence& sequence, Progress& progress, ResultsFile* results, TraceRecorder* trace);

}  // namespace tvrtool
