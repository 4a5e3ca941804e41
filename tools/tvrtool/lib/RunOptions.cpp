#include "RunOptions.h"

#include <cctype>
#include <cstring>

#include "Layout.h"

namespace tvrtool {

namespace {

// A decimal number from 0 to `max`, digits only.
std::optional<uint32_t> parseNumber(const std::string& text, uint32_t max) {
  if (text == "0") return 0;
  return parseCount(text, max);
}

std::vector<std::string> splitAt(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

bool endsWith(const std::string& path, const char* suffix) {
  const size_t length = std::strlen(suffix);
  if (path.size() < length) return false;
  for (size_t i = 0; i < length; ++i) {
    if (std::tolower(static_cast<unsigned char>(path[path.size() - length + i])) != suffix[i]) return false;
  }
  return true;
}

std::string readNumbers(const Arguments& arguments, RunOptions& options) {
  for (auto [name, into] : {std::pair{"width", &options.width}, {"height", &options.height},
                            {"stride", &options.stride}, {"scanline", &options.scanline}}) {
    if (!arguments.has(name)) continue;
    *into = parseCount(arguments.options.at(name), kMaxDimension);
    if (!*into) return "invalid --" + std::string(name) + ": give a number from 1 to " + std::to_string(kMaxDimension);
  }
  if (arguments.has("frames")) {
    options.frames = parseCount(arguments.options.at("frames"), kMaxFrames);
    if (!options.frames) return "invalid --frames: give a number from 1 to " + std::to_string(kMaxFrames);
  }
  if (arguments.has("rotation")) {
    const auto rotation = parseNumber(arguments.options.at("rotation"), 270);
    if (!rotation || *rotation % 90 != 0) return "invalid --rotation: give 0, 90, 180 or 270";
    options.rotation = *rotation;
  }
  if (arguments.has("resource-type")) {
    const auto type = parseNumber(arguments.options.at("resource-type"), kMaxResourceType);
    if (!type) return "invalid --resource-type: give a number from 0 to " + std::to_string(kMaxResourceType);
    options.resourceType = *type;
  }
  return "";
}

std::string readWords(const Arguments& arguments, RunOptions& options) {
  if (arguments.has("runtime")) {
    const std::string& name = arguments.options.at("runtime");
    const std::pair<const char*, Runtime> known[] = {
        {"cpu", Runtime::Cpu}, {"gpu", Runtime::Gpu}, {"dsp", Runtime::Dsp}, {"aip", Runtime::Aip}};
    bool found = false;
    for (const auto& [word, value] : known) {
      if (name == word) options.runtime = value;
      found = found || name == word;
    }
    if (!found) return "invalid --runtime '" + name + "': give cpu, gpu, dsp or aip";
  }
  if (arguments.has("log-level")) {
    const std::string& level = arguments.options.at("log-level");
    if (level.size() != 1 || std::strchr("VDIWE", level[0]) == nullptr) return "invalid --log-level: give V, D, I, W or E";
    options.logLevel = level[0];
  }
  for (const auto& [name, value] : arguments.given) {
    if (name != "option") continue;
    const std::string::size_type equals = value.find('=');
    if (equals == 0 || equals == std::string::npos) return "invalid --option '" + value + "': give KEY=VALUE";
    options.pluginOptions.emplace_back(value.substr(0, equals), value.substr(equals + 1));
  }
  return "";
}

}  // namespace

const std::vector<OptionDefinition>& runOptionDefinitions() {
  static const std::vector<OptionDefinition> definitions = {
      {"processing", 'p', true}, {"resource-type", 0, true}, {"option", 0, true},   {"width", 0, true},
      {"height", 0, true},       {"stride", 0, true},        {"scanline", 0, true}, {"rotation", 'r', true},
      {"crop", 0, true},         {"model", 'm', true},       {"runtime", 0, true},  {"frames", 'n', true},
      {"log-level", 0, true},    {"debug", 0, true},         {"trace", 0, true},    {"results", 0, true},
      {"output", 'o', true},     {"replay", 0, true},        {"help", 'h', false},
  };
  return definitions;
}

std::optional<CropRect> parseCrop(const std::string& text) {
  const std::vector<std::string> parts = splitAt(text, ',');
  if (parts.size() != 4) return std::nullopt;
  const auto x = parseNumber(parts[0], kMaxDimension), y = parseNumber(parts[1], kMaxDimension);
  const auto w = parseCount(parts[2], kMaxDimension), h = parseCount(parts[3], kMaxDimension);
  if (!x || !y || !w || !h || *w < 2 || *h < 2 || ((*x | *y | *w | *h) & 1u) != 0) return std::nullopt;
  return CropRect{*x, *y, *w, *h};
}

std::string parseRunOptions(const std::vector<std::string>& args, RunOptions& options) {
  Arguments arguments;
  std::string error = parseArguments(args, runOptionDefinitions(), arguments);
  if (!error.empty()) return error;
  options.help = arguments.has("help");
  if (options.help) return "";

  if (arguments.operands.size() > 1) return "give at most one FILE";
  if (!arguments.operands.empty()) options.source = arguments.operands[0];
  error = readNumbers(arguments, options);
  if (error.empty()) error = readWords(arguments, options);
  if (!error.empty()) return error;
  const bool sized = options.width || options.height || options.stride || options.scanline;
  if (arguments.has("replay") && (options.source || sized || arguments.has("crop") || arguments.has("rotation"))) {
    return "--replay takes the frames, their layout, crop and rotation from the dumps";
  }
  if (sized && (!options.source || endsWith(*options.source, ".png") || endsWith(*options.source, ".y4m"))) {
    return "--width, --height, --stride and --scanline describe NV12 frames";
  }
  if (arguments.has("crop")) {
    options.crop = parseCrop(arguments.options.at("crop"));
    if (!options.crop) {
      return "invalid --crop: give X,Y,W,H, all even (NV12 chroma covers 2x2 pixels), W and H at least 2";
    }
  }
  for (auto [name, into] : {std::pair{"processing", &options.processing}, {"model", &options.model},
                            {"replay", &options.replayDir},
                            {"debug", &options.debugDir}, {"trace", &options.traceFile},
                            {"results", &options.resultsFile}, {"output", &options.outputDir}}) {
    if (!arguments.has(name)) continue;
    if (arguments.options.at(name).empty()) return "--" + std::string(name) + " needs a path";
    *into = arguments.options.at(name);
  }
  return "";
}

}  // namespace tvrtool
