// Loads a processing plugin the way a host does (dlopen, dlsym) and plays one frame through it:
// proof that a plugin built against the installed package works, independent of tvrtool. It is
// itself a host program of one's own, linked with the package.
// Usage: load_plugin <libplugin.so>     one line on success, exit status 0
#include <TivoraPlugin.h>
#include <dlfcn.h>
#include <tivorabase.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

int fail(const char* plugin, const std::string& reason) {
  std::fprintf(stderr, "%s: %s\n", plugin, reason.c_str());
  return 1;
}

template <typename Function>
Function find(void* library, const char* name) {
  return reinterpret_cast<Function>(dlsym(library, name));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return fail("load_plugin", "usage: load_plugin <libplugin.so>");
  const char* plugin = argv[1];
  void* library = dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return fail(plugin, dlerror());
  const auto abi = find<tivora_plugin_abi_fn>(library, "tivora_plugin_abi");
  const auto create = find<tivora_create_processing_fn>(library, "tivora_create_processing");
  const auto destroy = find<tivora_destroy_processing_fn>(library, "tivora_destroy_processing");
  const auto outputSize = find<tivora_output_size_fn>(library, "tivora_output_size");
  const auto describe = find<tivora_describe_output_fn>(library, "tivora_describe_output");
  if (!abi || !create || !destroy || !outputSize || !describe) return fail(plugin, "a plugin function is not exported");
  if (abi() != TIVORA_PLUGIN_ABI) return fail(plugin, "ABI version " + std::to_string(abi()));

  // A 64x48 NV12 frame, luma 200 in the crop (16,8) 32x16 and 10 around it: the mean is 200 only
  // when the crop was cut where the record says.
  constexpr uint32_t kWidth = 64, kHeight = 48;
  std::vector<uint8_t> pixels(kWidth * kHeight * 3 / 2, 10);
  for (uint32_t y = 8; y < 24; ++y) std::memset(&pixels[y * kWidth + 16], 200, 32);
  tvr_image_buf_t frame{};
  frame.buf.p_base = pixels.data();
  frame.buf.buf_size = static_cast<uint32_t>(pixels.size());
  frame.format = TVR_FORMAT_NV12;
  frame.size = {kWidth, kHeight};
  frame.offset[1] = kWidth * kHeight;
  frame.stride = kWidth;
  frame.scanline = kHeight;
  frame.crop = {{16, 8}, {32, 16}};
  const tvr_create_param_t createParam{};
  tvr_static_param_t staticParam{};
  staticParam.src_info = {TVR_FORMAT_NV12, {kWidth, kHeight}, kWidth, kHeight};
  tvr_input_param_t input{};
  input.p_src = &frame;

  hvx::IProcessing* processing = create(0);
  if (processing == nullptr) return fail(plugin, "tivora_create_processing returned null");
  std::vector<unsigned char> output(outputSize(), 0);
  const tvr_err_t statuses[] = {processing->setup(&createParam), processing->initialize(&staticParam),
                                processing->apply(&input, output.data(), nullptr), processing->finalize(),
                                processing->teardown()};
  const std::string name = processing->getProcessingName();
  destroy(processing);
  for (const tvr_err_t status : statuses) {
    if (status != TVR_OK) return fail(plugin, "a lifecycle call returned " + std::to_string(status));
  }
  char text[128] = "";
  if (describe(output.data(), text, sizeof text) != 0 || std::strstr(text, "mean luma 200.0") == nullptr) {
    return fail(plugin, std::string("unexpected result: ") + text);
  }
  std::printf("%s\n", tivora::format("%s: %s, %s", plugin, name.c_str(), text).c_str());
  dlclose(library);
  return 0;
}
