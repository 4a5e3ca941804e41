// Host records read back from the library's parameter dumps (DebugBase::dumpBase*Param), such as
// the input_param.csv a processing appends to on the device, so that a replay can give each frame
// the record the device's host gave it:
//
//   Input parameter,          a heading starts a record
//   ,rotation,0               leading commas give the nesting: this is "rotation"
//   ,p_src
//   ,,buf
//   ,,,p_base,7f12a000        "p_src.buf.p_base"; addresses are not read, they meant
//   ,,,buf_size,3110400       something on the device only
//   ...
//   ,,crop
//   ,,,pos
//   ,,,,x,0                   "p_src.crop.pos.x"
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tvr_types.h"

namespace tvrtool {

struct DumpedInput {
  size_t line;  // where the record's heading is, for messages
  tvr_rotation_t rotation;
  bool hasSource;          // false for ",p_src,NULL"
  tvr_image_buf_t source;  // as dumped, every field but the three addresses (null)
};

struct ParameterDump {
  std::vector<DumpedInput> inputs;
  std::vector<tvr_static_param_t> statics;
};

// Every record of `text` in order: input and static records field by field; create, output and
// debug records are recognised and passed over. Line ends may be LF or CRLF; blank lines are
// skipped. On failure returns nothing, and `error` says at which line what is wrong.
std::optional<ParameterDump> readParameterDump(std::string_view text, std::string& error);

}  // namespace tvrtool
