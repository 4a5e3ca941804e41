#include "PngFile.h"

#include <png.h>

#include <cstdio>

namespace tvrtool {

std::string writePng(const std::string& path, const DisplayImage& image) {
  // libpng's simplified interface reports errors in the record instead of jumping out of C++ frames.
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = image.width;
  png.height = image.height;
  png.format = image.channels == 1 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
  const int written = path == "-" ? png_image_write_to_stdio(&png, stdout, 0, image.pixels.data(), 0, nullptr)
                                  : png_image_write_to_file(&png, path.c_str(), 0, image.pixels.data(), 0, nullptr);
  std::string error;
  if (written == 0) error = png.message[0] != '\0' ? png.message : "cannot write the PNG";
  if (path == "-" && written != 0 && std::fflush(stdout) != 0) error = "cannot write to standard output";
  png_image_free(&png);
  return error;
}

}  // namespace tvrtool
