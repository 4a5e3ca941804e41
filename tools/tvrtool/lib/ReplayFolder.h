// A dump folder taken on a device, made into what `tvrtool run --replay` plays again: each source
// frame the processing dumped (<boot ns>_source_<stride>x<height>.nv12, the whole allocation as
// it lay in memory), in time order, with the input record the processing dumped beside it
// (input_param.csv, one "Input parameter," record per debug apply, in the same order), and the
// stream's record for initialize (the last static record of static_param.csv when the folder
// has one, else the first frame's layout).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "FrameLoader.h"
#include "ParameterDumpReader.h"

namespace tvrtool {

struct Replay {
  FrameSequence sequence;            // the source frames' bytes and layouts
  std::vector<DumpedInput> records;  // one per frame, with a source
  tvr_static_param_t stream;
};

enum class ReplayFailure { None, NoSourceFrames, Refused };

// The first `maxFrames` frames of the folder `dir`. On failure returns nothing, sets `failure`,
// and `error` is one line for the user that names the file and the reason.
std::optional<Replay> loadReplay(const std::string& dir, uint32_t maxFrames, ReplayFailure& failure,
                                 std::string& error);

}  // namespace tvrtool
