#include "Nv12File.h"

#include <fstream>

#include "DumpName.h"
#include "FileBytes.h"

namespace tvrtool {

std::optional<std::vector<Nv12Frame>> readNv12Frames(const std::string& path, const LayoutRequest& request,
                                                     uint32_t maxFrames, std::string& error) {
  const std::optional<uint64_t> size = regularFileSize(path, error);
  if (!size) return std::nullopt;
  LayoutRequest nv12 = request;
  nv12.format = "nv12";
  const std::optional<Layout> layout = resolveLayout(parseFileName(path), nv12, error);
  if (!layout) return std::nullopt;
  const uint64_t frameBytes = byteSize(*layout);
  if (*size == 0 || *size % frameBytes != 0) {
    error = *size == 0 ? "the file is empty"
                       : "the file has " + std::to_string(*size) + " bytes, not a whole number of " +
                             std::to_string(frameBytes) + "-byte frames (" + describe(*layout) + ")";
    return std::nullopt;
  }

  std::ifstream in(path, std::ios::binary);
  std::vector<Nv12Frame> frames(static_cast<size_t>(std::min<uint64_t>(*size / frameBytes, maxFrames)));
  for (Nv12Frame& frame : frames) {
    frame = {layout->width, layout->height, layout->stride, layout->scanline, std::vector<uint8_t>(frameBytes)};
    in.read(reinterpret_cast<char*>(frame.bytes.data()), static_cast<std::streamsize>(frameBytes));
  }
  if (!in) {
    error = "the file cannot be read, or changed while it was read";
    return std::nullopt;
  }
  return frames;
}

}  // namespace tvrtool
