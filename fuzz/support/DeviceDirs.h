// The fuzz targets' files on the build's test device (TIVORA_PATH_PREFIX), never the machine's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tivora::fuzz {

// Writes exactly `size` bytes to `path`, creating its directories; aborts when it cannot, since
// a harness that silently lost its input would fuzz nothing.
void writeFileOrDie(const std::string& path, const uint8_t* data, size_t size);
void writeFileOrDie(const std::string& path, const std::string& content);

// A scratch directory of this target under the device prefix, created on first use.
std::string scratchDir(const std::string& target);

}  // namespace tivora::fuzz
