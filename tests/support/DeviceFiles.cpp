#include "DeviceFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace tivora::test {

static_assert(sizeof(TIVORA_PATH_PREFIX) > 1, "tests need a device path prefix inside the build tree");

void wipeDevice() {
  std::error_code ignored;
  fs::remove_all(TIVORA_PATH_PREFIX, ignored);
  fs::create_directories(TIVORA_PATH_PREFIX);
}

void writeFile(const std::string& path, const std::string& content) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  ASSERT_TRUE(out.good()) << "cannot write " << path;
}

void createEmptyFile(const std::string& path) { writeFile(path, ""); }

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string loggerConfigPath(const char* dir) { return std::string(dir) + "/VEXA_TVR.dat"; }

std::vector<std::string> readMarkers(const std::string& path) {
  const std::string all = readFile(path);
  std::vector<std::string> markers;
  std::string::size_type start = 0;
  while (start < all.size()) {
    std::string::size_type end = start;
    for (;;) {
      end = all.find("|0", end);
      if (end == std::string::npos) {
        end = all.size();
        break;
      }
      end += 2;
      if (end == all.size() || all.compare(end, 2, "B|") == 0 || all.compare(end, 2, "E|") == 0) break;
    }
    markers.push_back(all.substr(start, end - start));
    start = end;
  }
  return markers;
}

}  // namespace tivora::test
