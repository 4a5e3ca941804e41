#include "FrameTimings.h"

#include <cstring>

namespace tvrtool {

FrameTimings::FrameTimings(uint32_t frames) {
  mApply.reserve(frames);
  for (std::vector<int64_t>& column : mColumns) column.reserve(frames);
}

void FrameTimings::add(int64_t applyNs, const tivora_stage_time_t* stages, size_t count,
                       int64_t (&columns)[kMaxStages]) {
  mApply.push_back(applyNs);
  if (mColumnCount == 0) {
    for (size_t i = 0; i < count && i < kMaxStages; ++i) {
      std::strncpy(mNames[i], stages[i].name != nullptr ? stages[i].name : "?", kMaxNameLength);
    }
    mColumnCount = count < kMaxStages ? count : kMaxStages;
  }
  for (size_t column = 0; column < mColumnCount; ++column) {
    columns[column] = -1;
    for (size_t i = 0; i < count; ++i) {
      if (stages[i].name != nullptr && std::strncmp(stages[i].name, mNames[column], kMaxNameLength) == 0) {
        columns[column] = stages[i].duration_ns;
        mColumns[column].push_back(stages[i].duration_ns);
        break;
      }
    }
  }
}

}  // namespace tvrtool
