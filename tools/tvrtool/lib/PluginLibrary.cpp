#include "PluginLibrary.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>

#include "FileBytes.h"

namespace tvrtool {

namespace fs = std::filesystem;

namespace {

template <typename Function>
Function find(void* handle, const char* name) {
  return reinterpret_cast<Function>(dlsym(handle, name));
}

}  // namespace

std::optional<PluginLibrary> loadPlugin(const std::string& path, std::string& error) {
  if (!regularFileSize(path, error)) return std::nullopt;
  // A name without a slash would be searched for in the library path: take it as a file.
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::string reason = dlerror();
    if (reason.rfind(file + ": ", 0) == 0) reason.erase(0, file.size() + 2);
    error = "not a shared library that can be loaded: " + reason;
    return std::nullopt;
  }
  PluginLibrary plugin;
  plugin.path = path;
  plugin.handle = std::shared_ptr<void>(handle, [](void* h) { dlclose(h); });
  const auto abi = find<tivora_plugin_abi_fn>(handle, "tivora_plugin_abi");
  plugin.create = find<tivora_create_processing_fn>(handle, "tivora_create_processing");
  plugin.destroy = find<tivora_destroy_processing_fn>(handle, "tivora_destroy_processing");
  plugin.outputSize = find<tivora_output_size_fn>(handle, "tivora_output_size");
  const std::pair<const char*, bool> required[] = {{"tivora_plugin_abi", abi != nullptr},
                                                   {"tivora_create_processing", plugin.create != nullptr},
                                                   {"tivora_destroy_processing", plugin.destroy != nullptr},
                                                   {"tivora_output_size", plugin.outputSize != nullptr}};
  for (const auto& [name, present] : required) {
    if (!present) {
      error = std::string("not a processing plugin: it has no ") + name + " (TIVORA_PLUGIN defines it)";
      return std::nullopt;
    }
  }
  if (abi() != TIVORA_PLUGIN_ABI) {
    error = "plugin ABI version " + std::to_string(abi()) + ", but this tvrtool hosts version " +
            std::to_string(TIVORA_PLUGIN_ABI);
    return std::nullopt;
  }
  if (plugin.outputSize() > kMaxOutputSize) {
    error = "tivora_output_size() says " + std::to_string(plugin.outputSize()) + " bytes, more than any output record";
    return std::nullopt;
  }
  plugin.describeOutput = find<tivora_describe_output_fn>(handle, "tivora_describe_output");
  plugin.setOption = find<tivora_set_option_fn>(handle, "tivora_set_option");
  plugin.stageTimes = find<tivora_stage_times_fn>(handle, "tivora_stage_times");
  return plugin;
}

ProcessingPtr createProcessing(const PluginLibrary& plugin, uint32_t resourceType,
                               const std::vector<std::pair<std::string, std::string>>& options, std::string& error) {
  // The deleter keeps the library loaded for as long as the processing lives.
  ProcessingPtr processing(plugin.create(resourceType),
                           [destroy = plugin.destroy, keep = plugin.handle](hvx::IProcessing* p) { destroy(p); });
  if (!processing) {
    error = "tivora_create_processing(" + std::to_string(resourceType) + ") returned no processing";
    return nullptr;
  }
  for (const auto& [key, value] : options) {
    if (plugin.setOption == nullptr || plugin.setOption(processing.get(), key.c_str(), value.c_str()) != 0) {
      error = "the processing refuses the option " + key + "=" + value +
              (plugin.setOption == nullptr ? " (it takes no options: no tivora_set_option)" : "");
      return nullptr;
    }
  }
  return processing;
}

std::string bundledPluginPath(std::string& error) {
  std::error_code code;
  const fs::path executableDir = fs::read_symlink("/proc/self/exe", code).parent_path();
  error = "the bundled sample processing is not where tvrtool looks for it:";
  for (const char* relative : {TVRTOOL_INSTALLED_PLUGIN_DIR, TVRTOOL_BUILD_TREE_PLUGIN_DIR}) {
    const fs::path candidate = (executableDir / relative / TVRTOOL_BUNDLED_PLUGIN).lexically_normal();
    if (fs::is_regular_file(candidate, code)) {
      error.clear();
      return candidate.string();
    }
    error += " " + candidate.string();
  }
  error += "; give --processing";
  return "";
}

}  // namespace tvrtool
