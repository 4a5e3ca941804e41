#include <fstream>
#include <iterator>

#include "DlContainer/DlContainer.h"
#include "Objects.h"

using namespace snpe_stub::detail;

namespace {

Snpe_DlContainer_Handle_t open(const char* function, std::string_view bytes, const std::string& source) {
  std::string error;
  auto model = parseModel(bytes, error);
  if (!model) return fail(function, source + ": " + error, nullptr);
  auto container = std::make_unique<Container>();
  container->model = std::move(model);
  return adopt(std::move(container));
}

}  // namespace

extern "C" Snpe_DlContainer_Handle_t Snpe_DlContainer_Open(const char* filename) {
  static constexpr const char* kName = "Snpe_DlContainer_Open";
  if (enter(kName, filename)) return nullptr;
  if (filename == nullptr) return fail(kName, "null file name", nullptr);
  std::ifstream file(filename, std::ios::binary);
  if (!file) return fail(kName, std::string(filename) + ": cannot open", nullptr);
  std::string bytes;
  // Read one byte past the limit so that an oversized file is recognised without reading it all.
  bytes.resize(kMaxContainerBytes + 1);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (file.bad()) return fail(kName, std::string(filename) + ": cannot read", nullptr);
  bytes.resize(static_cast<size_t>(file.gcount()));
  return open(kName, bytes, filename);
}

extern "C" Snpe_DlContainer_Handle_t Snpe_DlContainer_OpenBuffer(const uint8_t* buffer, const size_t size) {
  static constexpr const char* kName = "Snpe_DlContainer_OpenBuffer";
  if (enter(kName, Memory{buffer}, size)) return nullptr;
  if (buffer == nullptr) return fail(kName, "null buffer", nullptr);
  return open(kName, std::string_view(reinterpret_cast<const char*>(buffer), size), "buffer");
}

extern "C" Snpe_ErrorCode_t Snpe_DlContainer_Delete(Snpe_DlContainer_Handle_t container) {
  return deleteObject("Snpe_DlContainer_Delete", container, Kind::Container);
}
