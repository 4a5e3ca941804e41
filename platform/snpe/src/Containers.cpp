#include <algorithm>
#include <fstream>

#include "DlContainer/DlContainer.h"
#include "Objects.h"

using namespace snpe_stub::detail;

namespace {

Snpe_DlContainer_Handle_t open(const char* function, std::string_view bytes, const std::string& source) {
  std::string error;
  auto model = openModel(bytes, error);
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
  std::ifstream file(filename, std::ios::binary | std::ios::ate);
  if (!file) return fail(kName, std::string(filename) + ": cannot open", nullptr);
  const std::streamoff length = file.tellg();
  if (length > static_cast<std::streamoff>(kMaxModelBytes)) {
    return fail(kName, std::string(filename) + ": larger than a model can be", nullptr);
  }
  std::string bytes(static_cast<size_t>(std::max<std::streamoff>(length, 0)), '\0');
  if (length < 0 || !file.seekg(0) || !file.read(bytes.data(), length)) {
    return fail(kName, std::string(filename) + ": cannot read", nullptr);
  }
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
