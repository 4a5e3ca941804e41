// Whole-file reading, raw RGB output for inspection, and clip.
#include <cstdio>
#include <cstdlib>

#include "DevicePaths.h"
#include "TivoraUtil.h"
#include "log/Log.h"

namespace tivora {

namespace {

constexpr char kClassName[] = "TivoraUtil";

// Closes the file on every path out of readFromFile.
struct FileCloser {
  std::FILE* file;
  ~FileCloser() { std::fclose(file); }
};

}  // namespace

tvr_err_t readFromFile(const char* path, unsigned char** data, int* size) {
  static constexpr char kFunction[] = "readFromFile";
  std::FILE* file = std::fopen(path, "rb");
  if (file == nullptr) {
    TVR_LOG(processLogger(), ERROR, kClassName, kFunction, "Cannot open file(%s)", path);
    return TVR_ERR_FILE_READ;
  }
  const FileCloser closer{file};
  if (std::fseek(file, 0, SEEK_END) != 0) {
    TVR_LOG(processLogger(), ERROR, kClassName, kFunction, "Buffer is null");
    return TVR_ERR_FILE_READ;
  }
  const long length = std::ftell(file);
  if (static_cast<uint32_t>(length) == UINT32_MAX) {
    TVR_LOG(processLogger(), ERROR, kClassName, kFunction, "ftell error");
    return TVR_ERR_FILE_READ;
  }
  *size = static_cast<int>(length);
  // One byte more for the terminator, so a text file can be used as a string.
  auto* buffer = static_cast<unsigned char*>(std::malloc(static_cast<size_t>(length) + 1u));
  *data = buffer;
  if (buffer == nullptr) {
    TVR_LOG(processLogger(), ERROR, kClassName, kFunction, "Buffer is null");
    return TVR_ERR_FILE_READ;
  }
  std::rewind(file);
  unsigned char* end = buffer;
  size_t remaining = static_cast<size_t>(length);
  // The file may shrink while it is read: the terminator goes after what was really read.
  for (size_t got = std::fread(end, 1, remaining, file); got > 0; got = std::fread(end, 1, remaining, file)) {
    end += got;
    remaining -= got;
  }
  *end = 0;
  return TVR_OK;
}

void outputRawImage(const char* name, const unsigned char* rgb, unsigned int width, unsigned int height) {
  static constexpr char kFunction[] = "outputRawImage";
  char path[256];
  if (name != nullptr) {
    std::snprintf(path, sizeof(path), "%s/%s", paths::kVendorCameraDir, name);
  } else {
    std::snprintf(path, sizeof(path), "%s/rgb_%dx%d.raw", paths::kVendorCameraDir, width, height);
  }
  const unsigned int rowBytes = width * 3u;
  if (rgb == nullptr && rowBytes != 0 && height != 0) {
    TVR_LOG(processLogger(), ERROR, kClassName, kFunction, "Image(%p) is null", static_cast<const void*>(rgb));
    return;
  }
  std::FILE* file = std::fopen(path, "wb");
  if (file == nullptr) {
    TVR_LOG(processLogger(), ERROR, kClassName, kFunction, "Cannot open file.");
    return;
  }
  if (rowBytes != 0 && height != 0) {
    for (unsigned int row = 0; row < height; ++row) {
      const unsigned char* pixel = rgb + static_cast<size_t>(row) * rowBytes;
      for (unsigned int x = 0; x < rowBytes; x += 3u) std::fwrite(pixel + x, 1, 3, file);
    }
  }
  std::fclose(file);
}

float clip(float value, float low, float high) {
  if (value > high) return high;
  if (value < low) return low;
  return value;
}

}  // namespace tivora
