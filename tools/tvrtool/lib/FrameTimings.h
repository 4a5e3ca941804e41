// The time of every frame's apply and of each stage the processing reports in it
// (tivora_stage_times), gathered without allocating once the frames run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "TivoraPlugin.h"

namespace tvrtool {

class FrameTimings {
 public:
  static constexpr size_t kMaxStages = 8;
  static constexpr size_t kMaxNameLength = 47;  // longer stage names are cut

  // Reserves room for `frames` frames.
  explicit FrameTimings(uint32_t frames);

  // One frame: its whole apply, and the stages the processing reported. The first frame that
  // reports stages names the columns, in its order; a later stage of another name is left out.
  // Fills `columns` with each column's duration in this frame, -1 where the frame has none.
  void add(int64_t applyNs, const tivora_stage_time_t* stages, size_t count, int64_t (&columns)[kMaxStages]);

  size_t columnCount() const { return mColumnCount; }
  const char* columnName(size_t column) const { return mNames[column]; }
  const std::vector<int64_t>& column(size_t column) const { return mColumns[column]; }
  const std::vector<int64_t>& apply() const { return mApply; }

 private:
  size_t mColumnCount = 0;
  char mNames[kMaxStages][kMaxNameLength + 1] = {};
  std::vector<int64_t> mColumns[kMaxStages];
  std::vector<int64_t> mApply;
};

}  // namespace tvrtool
