// Reading input files whose size decides how they are read, and writing small text files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tvrtool {

// The size of the regular file at `path`; else nothing, and `error` says why ("no such file").
std::optional<uint64_t> regularFileSize(const std::string& path, std::string& error);

// Fills `bytes` from the file, which must hold exactly bytes.size() bytes (else it changed since
// its size was taken): false and `error` otherwise.
bool readExactly(const std::string& path, std::vector<uint8_t>& bytes, std::string& error);

// Creates or replaces the file with `text`. Returns a message for the user, or "".
std::string writeTextFile(const std::string& path, const std::string& text);

}  // namespace tvrtool
