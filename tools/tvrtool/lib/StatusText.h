// Lifecycle statuses in words, for people reading tvrtool's output.
#pragma once

#include <string>

#include "tvr_types.h"

namespace tvrtool {

// "ok" for 0, else the number and its meaning: "12 (invalid argument)".
std::string statusText(tvr_err_t status);

}  // namespace tvrtool
