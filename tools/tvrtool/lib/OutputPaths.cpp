#include "OutputPaths.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace tvrtool {

namespace fs = std::filesystem;

std::string checkWritableFile(const std::string& path) {
  std::error_code code;
  if (fs::is_directory(path, code)) return "cannot write " + path + ": it is a folder";
  const bool existed = fs::exists(path, code);
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) return "cannot write " + path + ": " + std::strerror(errno);
  close(fd);
  if (!existed) unlink(path.c_str());
  return "";
}

std::string prepareFolder(const std::string& dir, std::string& absolute) {
  std::error_code code;
  absolute = fs::absolute(dir, code).lexically_normal().string();
  if (absolute.size() > 1 && absolute.back() == '/') absolute.pop_back();
  if (absolute.find(' ') != std::string::npos) return "the folder '" + absolute + "' holds a blank, which the library refuses";
  fs::create_directories(absolute, code);
  if (code) return "cannot create the folder " + absolute + ": " + code.message();
  std::string probe = absolute + "/.tvrtool-XXXXXX";
  const int fd = mkstemp(probe.data());
  if (fd < 0) return "cannot write into the folder " + absolute + ": " + std::strerror(errno);
  close(fd);
  unlink(probe.c_str());
  return "";
}

}  // namespace tvrtool
