// PNG files through libpng.
#pragma once

#include <string>

#include "DisplayImage.h"

namespace tvrtool {

// Writes `image` to `path`, or to standard output for "-". Returns an error message, or an empty
// string; a file that could not be written whole is removed.
std::string writePng(const std::string& path, const DisplayImage& image);

}  // namespace tvrtool
