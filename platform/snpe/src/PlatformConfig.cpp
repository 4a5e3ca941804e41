#include "DlSystem/PlatformConfig.h"

#include <cstring>

#include "Objects.h"

using namespace snpe_stub::detail;

extern "C" Snpe_PlatformConfig_Handle_t Snpe_PlatformConfig_Create(void) {
  if (enter("Snpe_PlatformConfig_Create")) return nullptr;
  return adopt(std::make_unique<PlatformConfig>());
}

extern "C" Snpe_ErrorCode_t Snpe_PlatformConfig_Delete(Snpe_PlatformConfig_Handle_t config) {
  return deleteObject("Snpe_PlatformConfig_Delete", config, Kind::PlatformConfig);
}

// Takes "keyword:value" with a non-empty keyword and value and no white space; the stand-in knows
// no keywords, so it keeps every well-formed option (networkSettings() shows them).
extern "C" int Snpe_PlatformConfig_SetPlatformOptions(Snpe_PlatformConfig_Handle_t config, const char* options) {
  static constexpr const char* kName = "Snpe_PlatformConfig_SetPlatformOptions";
  if (enter(kName, config, options)) return 0;
  auto* self = find<PlatformConfig>(config);
  if (!self) return fail(kName, "not a platform configuration", 0);
  if (options == nullptr) return fail(kName, "null options", 0);
  const std::string text(options);
  const auto colon = text.find(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == text.size() ||
      text.find_first_of(" \t\r\n") != std::string::npos) {
    return fail(kName, "options '" + text + "' are not of the form keyword:value", 0);
  }
  self->options.push_back(text);
  return 1;
}
