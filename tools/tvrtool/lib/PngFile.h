// PNG files through libpng.
#pragma once

#include <string>

#include "DisplayImage.h"

namespace tvrtool {

// Writes `image` to `path`, or to standard output for "-". Returns an error message, or an empty
// string; a file that could not be written whole is removed.
std::string writePng(const std::string& path, const DisplayImage& image);

// Reads any PNG as 8-bit RGB (gray is spread to three channels, alpha is dropped over black).
// Returns an error message for the user, or an empty string.
std::string readPng(const std::string& path, DisplayImage& image);

}  // namespace tvrtool
