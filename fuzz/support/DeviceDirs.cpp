#include "DeviceDirs.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "DevicePaths.h"

namespace fs = std::filesystem;

namespace tivora::fuzz {

static_assert(sizeof(TIVORA_PATH_PREFIX) > 1, "the fuzz targets need a device path prefix inside the build tree");

void writeFileOrDie(const std::string& path, const uint8_t* data, size_t size) {
  std::error_code error;
  fs::create_directories(fs::path(path).parent_path(), error);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  out.close();
  if (!out) {
    std::fprintf(stderr, "fuzz harness: cannot write %s\n", path.c_str());
    std::abort();
  }
}

void writeFileOrDie(const std::string& path, const std::string& content) {
  writeFileOrDie(path, reinterpret_cast<const uint8_t*>(content.data()), content.size());
}

std::string scratchDir(const std::string& target) {
  const std::string dir = std::string(TIVORA_PATH_PREFIX) + "/fuzz/" + target;
  std::error_code error;
  fs::create_directories(dir, error);
  return dir;
}

}  // namespace tivora::fuzz
