#include "Nv12File.h"

#include "DumpName.h"
#include "FileBytes.h"

namespace tvrtool {

std::optional<Nv12Frame> readNv12File(const std::string& path, const LayoutRequest& request, std::string& error) {
  const std::optional<uint64_t> size = regularFileSize(path, error);
  if (!size) return std::nullopt;
  LayoutRequest nv12 = request;
  nv12.format = "nv12";
  const std::optional<Layout> layout = resolveLayout(parseFileName(path), nv12, error);
  if (!layout) return std::nullopt;
  error = checkFileSize(*layout, *size);
  if (!error.empty()) return std::nullopt;

  Nv12Frame frame;
  frame.width = layout->width;
  frame.height = layout->height;
  frame.stride = layout->stride;
  frame.scanline = layout->scanline;
  frame.bytes.resize(*size);
  if (!readExactly(path, frame.bytes, error)) return std::nullopt;
  return frame;
}

}  // namespace tvrtool
