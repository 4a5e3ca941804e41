#include "PngFile.h"

#include <png.h>

#include <cstdio>
#include <string>

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

namespace tvrtool {

std::string readPng(const std::string& path, DisplayImage& image) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&png, path.c_str()) == 0) {
    const std::string error = png.message[0] != '\0' ? png.message : "cannot read the PNG";
    png_image_free(&png);
    return error;
  }
  if (png.width > 65535 || png.height > 65535) {
    png_image_free(&png);
    return "the PNG is " + std::to_string(png.width) + "x" + std::to_string(png.height) +
           ": at most 65535 pixels a side";
  }
  png.format = PNG_FORMAT_RGB;
  image.width = png.width;
  image.height = png.height;
  image.channels = 3;
  image.pixels.resize(PNG_IMAGE_SIZE(png));
  const png_color black{0, 0, 0};
  const bool read = png_image_finish_read(&png, &black, image.pixels.data(), 0, nullptr) != 0;
  const std::string error = read ? "" : png.message[0] != '\0' ? png.message : "cannot read the PNG";
  png_image_free(&png);
  return error;
}

}  // namespace tvrtool
