#include "FileBytes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace tvrtool {

namespace fs = std::filesystem;

std::optional<uint64_t> regularFileSize(const std::string& path, std::string& error) {
  std::error_code code;
  const fs::file_status status = fs::status(path, code);
  if (!fs::exists(status)) {
    error = "no such file";
    return std::nullopt;
  }
  if (!fs::is_regular_file(status)) {
    error = "not a regular file";
    return std::nullopt;
  }
  const uintmax_t size = fs::file_size(path, code);
  if (code) {
    error = "cannot read its size: " + code.message();
    return std::nullopt;
  }
  return size;
}

bool readExactly(const std::string& path, std::vector<uint8_t>& bytes, std::string& error) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    error = std::string("cannot open: ") + std::strerror(errno);
    return false;
  }
  const size_t got = std::fread(bytes.data(), 1, bytes.size(), file);
  const bool more = std::fgetc(file) != EOF;  // grown since its size was taken
  std::fclose(file);
  if (got != bytes.size() || more) error = "the file changed while it was read";
  return error.empty();
}

std::string writeTextFile(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  return file ? "" : "cannot write " + path;
}

}  // namespace tvrtool
