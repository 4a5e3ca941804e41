// What a file's name tells about its contents.
//
//   5000000000_src_1920x1080.nv12   a buffer dump: <boot time>_<name>_<stride>x<height>.<extension>
//   rgb_640x480.raw                 a sized name:  <anything>_<width>x<height>.<extension>
//   tensor.f32                      a plain name:  the extension only
#pragma once

#include <cstdint>
#include <string>

namespace tvrtool {

enum class NameKind {
  Dump,   // first = stride in samples (bytes, or floats for f32), second = height
  Sized,  // first = width in pixels, second = height
  Plain,  // no dimensions
};

struct FileName {
  NameKind kind = NameKind::Plain;
  std::string extension;  // after the last '.' of the base name; empty when there is none
  uint32_t first = 0;
  uint32_t second = 0;
  std::string name;     // Dump only: between the time stamp and the size ("src"), possibly empty
  uint64_t stamp = 0;   // Dump only: the boot time in ns (0 when it has more than 19 digits)
};

// Reads the base name of `path`. Dimensions are decimal numbers below 2^31, as the library
// prints them; anything else makes a plain name.
FileName parseFileName(const std::string& path);

}  // namespace tvrtool
