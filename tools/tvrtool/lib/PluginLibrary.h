// A processing's plugin library (TivoraPlugin.h), loaded with dlopen and checked before anything
// is created: what `tvrtool run --processing` hosts.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "TivoraPlugin.h"

namespace tvrtool {

struct PluginLibrary {
  std::string path;
  tivora_create_processing_fn create = nullptr;
  tivora_destroy_processing_fn destroy = nullptr;
  tivora_output_size_fn outputSize = nullptr;
  tivora_describe_output_fn describeOutput = nullptr;  // the optional three: null when absent
  tivora_set_option_fn setOption = nullptr;
  tivora_stage_times_fn stageTimes = nullptr;
  std::shared_ptr<void> handle;  // closes the library when the last copy goes
};

// Output records above this are taken for a broken tivora_output_size.
inline constexpr size_t kMaxOutputSize = size_t{64} << 20;

// Loads the library at `path` and finds its functions. On failure returns nothing and `error` is
// one line for the user: not a shared library, no factory, another ABI version.
std::optional<PluginLibrary> loadPlugin(const std::string& path, std::string& error);

using ProcessingPtr = std::unique_ptr<hvx::IProcessing, std::function<void(hvx::IProcessing*)>>;

// A processing of the plugin, given each option in order. Null, with `error` for the user, when
// the factory returns none or the plugin refuses an option (the processing is destroyed again).
ProcessingPtr createProcessing(const PluginLibrary& plugin, uint32_t resourceType,
                               const std::vector<std::pair<std::string, std::string>>& options, std::string& error);

// The sample processing's plugin that comes with tvrtool, looked for relative to the running
// executable: where an installation puts it, then where the build tree has it. Empty, with the
// places looked at in `error`, when it is in neither.
std::string bundledPluginPath(std::string& error);

}  // namespace tvrtool
