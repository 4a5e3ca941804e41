// The sample processing as a plugin (see TivoraPlugin.h): the library that tvrtool run loads by
// default, and the model of how any processing becomes one.
//
// Options (tivora_set_option, before setup):
//   order=keep|swap   the channel order of the network's input: RGB, or BGR
//   input-size=WxH    the network's input, even sides from 2 to 4096 (default: the model's)
//   debug-dir=DIR     every dump on, into DIR (absolute, without a blank), for debug applies
// A create record without a model (dlc_num 0) makes setup take the plugin's own: the ONNX model
// beside the plugin (kBundledModel, made by the build where the NN runtime runs ONNX, 224x224),
// or, where there is none or input-size asks for a size of its own, the NN runtime stand-in's text
// model for that size (default 224x224), from a temporary file that is gone again when setup
// returns. A model the host names decides the size itself; input-size must then agree with it.
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "MeanColourProcessing.h"
#include "TivoraPlugin.h"

namespace tivora::examples {

namespace {

constexpr uint32_t kTextModelSide = 224;
constexpr char kBundledModel[] = "mean_colour.onnx";

// The bundled ONNX model's path, beside this plugin's file; empty when it is not there.
std::string bundledModel() {
  Dl_info self{};
  if (dladdr(reinterpret_cast<void*>(&bundledModel), &self) == 0 || self.dli_fname == nullptr) return {};
  const std::string path = (std::filesystem::path(self.dli_fname).parent_path() / kBundledModel).string();
  return access(path.c_str(), R_OK) == 0 ? path : std::string();
}

class MeanColourPlugin : public MeanColourProcessing {
 public:
  explicit MeanColourPlugin(SNPEMgr::TVRResourceType resourceType) : MeanColourProcessing(resourceType) {}

 protected:
  tvr_err_t setupImpl(const void* createParam) override {
    const auto* create = static_cast<const tvr_create_param_t*>(createParam);
    if (create->dlc_num > 0) return MeanColourProcessing::setupImpl(createParam);
    const std::string onnx = config().inputWidth == 0 ? bundledModel() : std::string();
    if (!onnx.empty()) return setupWith(*create, onnx);
    std::error_code code;
    std::string path = (std::filesystem::temp_directory_path(code) / "mean_colour_XXXXXX.dlc").string();
    const int fd = code ? -1 : mkstemps(path.data(), 4);
    if (fd < 0) return TVR_ERR_MODEL_READ;
    const uint32_t width = config().inputWidth != 0 ? config().inputWidth : kTextModelSide;
    const uint32_t height = config().inputHeight != 0 ? config().inputHeight : kTextModelSide;
    const std::string text = hostModelText(width, height);
    const bool written = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(fd);
    const tvr_err_t status = written ? setupWith(*create, path) : TVR_ERR_MODEL_READ;
    unlink(path.c_str());
    return status;
  }

 private:
  tvr_err_t setupWith(const tvr_create_param_t& create, const std::string& model) {
    tvr_create_param_t withModel = create;
    std::snprintf(withModel.dlc_path[0], sizeof withModel.dlc_path[0], "%s", model.c_str());
    withModel.dlc_num = 1;
    return MeanColourProcessing::setupImpl(&withModel);
  }
};

// An even decimal side from 2 to MeanColourProcessing::kMaxInputSide; moves `text` past its digits.
bool readSide(const char*& text, uint32_t& side) {
  const char* start = text;
  side = 0;
  while (*text >= '0' && *text <= '9' && text - start < 5) side = side * 10 + static_cast<uint32_t>(*text++ - '0');
  return text != start && side >= 2 && side <= MeanColourProcessing::kMaxInputSide && side % 2 == 0;
}

// "WxH", both sides as readSide takes them.
bool parseSize(const char* text, MeanColourConfig& config) {
  uint32_t width = 0, height = 0;
  if (!readSide(text, width) || *text++ != 'x' || !readSide(text, height) || *text != '\0') return false;
  config.inputWidth = width;
  config.inputHeight = height;
  return true;
}

// Applies one option to the configuration; false when the key or the value is not known.
bool applyOption(MeanColourPlugin& plugin, const std::string& key, const char* value, MeanColourConfig& config) {
  if (key == "order" && (std::strcmp(value, "keep") == 0 || std::strcmp(value, "swap") == 0)) {
    config.order = value[0] == 'k' ? TivoraBase::RGB_ORDER_KEEP : TivoraBase::RGB_ORDER_REVERSE;
    return true;
  }
  if (key == "input-size") return parseSize(value, config);
  if (key == "debug-dir" && value[0] == '/' && std::strchr(value, ' ') == nullptr) {
    plugin.setDumpDirectory(value);
    return true;
  }
  return false;
}

}  // namespace

}  // namespace tivora::examples

TIVORA_PLUGIN(tivora::examples::MeanColourPlugin, tivora::examples::MeanColourOutput)

using tivora::examples::MeanColourConfig;
using tivora::examples::MeanColourPlugin;

extern "C" TIVORA_PLUGIN_EXPORT int tivora_set_option(hvx::IProcessing* processing, const char* key,
                                                      const char* value) {
  auto& plugin = *static_cast<MeanColourPlugin*>(processing);
  MeanColourConfig config = plugin.config();
  if (!tivora::examples::applyOption(plugin, key, value, config)) return 1;
  plugin.setConfig(config);
  return 0;
}

// "mean_rgb 0.4912 0.4912 -0.3290 = colour 191 191 86 (#BFBF56), sharpness 0.0123": the network's
// answer, the colour it means in 0..255 under the default normalisation, and the sharpness when
// the model tells it.
extern "C" TIVORA_PLUGIN_EXPORT int tivora_describe_output(const void* output, char* text, size_t size) {
  const auto& result = *static_cast<const tivora::examples::MeanColourOutput*>(output);
  if (result.frame == 0) return 1;
  const MeanColourConfig defaults;
  unsigned colour[3];
  for (int i = 0; i < 3; ++i) {
    const double value = std::round(static_cast<double>(result.mean_rgb[i]) * defaults.divisor + defaults.mean);
    colour[i] = static_cast<unsigned>(std::isnan(value) ? 0 : std::clamp(value, 0.0, 255.0));
  }
  const int length = std::snprintf(text, size, "mean_rgb %.4f %.4f %.4f = colour %u %u %u (#%02X%02X%02X)",
                                   result.mean_rgb[0], result.mean_rgb[1], result.mean_rgb[2], colour[0], colour[1],
                                   colour[2], colour[0], colour[1], colour[2]);
  if (!std::isnan(result.sharpness) && length > 0 && static_cast<size_t>(length) < size)
    std::snprintf(text + length, size - static_cast<size_t>(length), ", sharpness %.4g", result.sharpness);
  return 0;
}

extern "C" TIVORA_PLUGIN_EXPORT size_t tivora_stage_times(hvx::IProcessing* processing, tivora_stage_time_t* stages,
                                                          size_t capacity) {
  const tivora::examples::StageTimes& t = static_cast<MeanColourPlugin*>(processing)->lastStageTimes();
  const tivora_stage_time_t all[] = {{"split", t.splitStart, t.split},
                                     {"NV12 to RGB", t.nv12ToRgbStart, t.nv12ToRgb},
                                     {"RGB to float", t.rgbToFloatStart, t.rgbToFloat},
                                     {"execute", t.executeStart, t.execute}};
  const size_t count = std::min(capacity, sizeof all / sizeof all[0]);
  std::copy(all, all + count, stages);
  return count;
}
