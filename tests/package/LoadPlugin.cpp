// A host program of one's own, linked with the installed package: loads a processing plugin the
// way a host does (dlopen, dlsym), sets its processing up and tears it down. (Frames through the
// plugin: the installed tvrtool, scripts/check-install.)
// Usage: load_plugin <libplugin.so>     one line on success, exit status 0
#include <TivoraPlugin.h>
#include <dlfcn.h>
#include <tivorabase.h>

#include <cstdio>

int main(int argc, char** argv) {
  void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (library == nullptr) {
    std::fprintf(stderr, "load_plugin: %s\n", argc == 2 ? dlerror() : "usage: load_plugin <libplugin.so>");
    return 1;
  }
  const auto abi = reinterpret_cast<tivora_plugin_abi_fn>(dlsym(library, "tivora_plugin_abi"));
  const auto create = reinterpret_cast<tivora_create_processing_fn>(dlsym(library, "tivora_create_processing"));
  const auto destroy = reinterpret_cast<tivora_destroy_processing_fn>(dlsym(library, "tivora_destroy_processing"));
  hvx::IProcessing* processing = abi && create && destroy && abi() == TIVORA_PLUGIN_ABI ? create(0) : nullptr;
  const tvr_create_param_t createParam{};
  if (processing == nullptr || processing->setup(&createParam) != TVR_OK || processing->teardown() != TVR_OK) {
    std::fprintf(stderr, "load_plugin: %s: not a plugin of ABI %d whose processing sets up\n", argv[1],
                 TIVORA_PLUGIN_ABI);
    return 1;
  }
  std::printf("%s\n", tivora::format("%s: %s", argv[1], processing->getProcessingName()).c_str());
  destroy(processing);
  dlclose(library);
  return 0;
}
