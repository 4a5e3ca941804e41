#include "DeviceFiles.h"

#include <algorithm>
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

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> filesIn(const std::string& dir) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(dir, ignored)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string loggerConfigPath(const char* dir) { return std::string(dir) + "/VEXA_TVR.dat"; }

std::vector<std::string> readMarkers(const std::string& path) {
  const std::string all = readFile(path);
  std::vector<std::string> markers;
  for (std::string::size_type start = 0, end = 0; start < all.size(); start = end) {
    do {
      end = all.find("|0", end);
      end = end == std::string::npos ? all.size() : end + 2;
    } while (end < all.size() && all.compare(end, 2, "B|") != 0 && all.compare(end, 2, "E|") != 0);
    markers.push_back(all.substr(start, end - start));
  }
  return markers;
}

}  // namespace tivora::test
