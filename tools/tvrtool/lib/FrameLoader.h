// The frame `tvrtool run` applies: the built-in chart, an NV12 file or a PNG picture.
#pragma once

#include <optional>
#include <string>

#include "Nv12Frame.h"
#include "RunOptions.h"

namespace tvrtool {

// The frame the options name, and in `description` one line telling what it is. On failure
// returns nothing and `error` is one line for the user.
std::optional<Nv12Frame> loadFrame(const RunOptions& options, std::string& description, std::string& error);

}  // namespace tvrtool
