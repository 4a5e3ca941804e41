#include "RunOptions.h"

#include <cctype>

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

bool endsWithPng(const std::string& path) {
  if (path.size() < 4) return false;
  std::string tail = path.substr(path.size() - 4);
  for (char& c : tail) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return tail == ".png";
}

std::string readNumbers(const Arguments& arguments, RunOptions& options) {
  for (auto [name, into] : {std::pair{"width", &options.width}, {"height", &options.height},
                            {"stride", &options.stride}, {"scanline", &options.scanline}}) {
    if (!arguments.has(name)) continue;
    *into = parseCount(arguments.options.at(name), kMaxDimension);
    if (!*into) return "invalid --" + std::string(name) + ": give a number from 1 to " + std::to_string(kMaxDimension);
  }
  if (arguments.has("frames")) {
    const auto frames = parseCount(arguments.options.at("frames"), kMaxFrames);
    if (!frames) return "invalid --frames: give a number from 1 to " + std::to_string(kMaxFrames);
    options.frames = *frames;
  }
  if (arguments.has("rotation")) {
    const auto rotation = parseNumber(arguments.options.at("rotation"), 270);
    if (!rotation || *rotation % 90 != 0) return "invalid --rotation: give 0, 90, 180 or 270";
    options.rotation = *rotation;
  }
  return "";
}

std::string readRuntime(const std::string& name, Runtime& runtime) {
  const std::pair<const char*, Runtime> known[] = {
      {"cpu", Runtime::Cpu}, {"gpu", Runtime::Gpu}, {"dsp", Runtime::Dsp}, {"aip", Runtime::Aip}};
  for (const auto& [word, value] : known) {
    if (name == word) {
      runtime = value;
      return "";
    }
  }
  return "invalid --runtime '" + name + "': give cpu, gpu, dsp or aip";
}

}  // namespace

const std::vector<OptionDefinition>& runOptionDefinitions() {
  static const std::vector<OptionDefinition> definitions = {
      {"width", 0, true},     {"height", 0, true}, {"stride", 0, true},  {"scanline", 0, true}, {"rotation", 'r', true},
      {"crop", 0, true},      {"input-size", 0, true}, {"model", 'm', true}, {"runtime", 0, true},
      {"frames", 'n', true},  {"debug", 0, true},  {"trace", 0, true},   {"output", 'o', true},
      {"help", 'h', false},
  };
  return definitions;
}

std::optional<CropRect> parseCrop(const std::string& text) {
  const std::vector<std::string> parts = splitAt(text, ',');
  if (parts.size() != 4) return std::nullopt;
  const auto x = parseNumber(parts[0], kMaxDimension), y = parseNumber(parts[1], kMaxDimension);
  const auto w = parseCount(parts[2], kMaxDimension), h = parseCount(parts[3], kMaxDimension);
  if (!x || !y || !w || !h || *w < 2 || *h < 2 || *w % 2 != 0 || *h % 2 != 0) return std::nullopt;
  return CropRect{*x, *y, *w, *h};
}

bool parseInputSize(const std::string& text, uint32_t& width, uint32_t& height) {
  const std::vector<std::string> parts = splitAt(text, 'x');
  if (parts.size() != 2) return false;
  const auto w = parseCount(parts[0], kMaxInputSide), h = parseCount(parts[1], kMaxInputSide);
  if (!w || !h || *w < 2 || *h < 2 || *w % 2 != 0 || *h % 2 != 0) return false;
  width = *w;
  height = *h;
  return true;
}

std::string parseRunOptions(const std::vector<std::string>& args, RunOptions& options) {
  Arguments arguments;
  std::string error = parseArguments(args, runOptionDefinitions(), arguments);
  if (!error.empty()) return error;
  options.help = arguments.has("help");
  if (options.help) return "";

  if (arguments.operands.size() > 1) return "give at most one FILE";
  if (!arguments.operands.empty()) {
    options.sourcePath = arguments.operands[0];
    options.source = endsWithPng(options.sourcePath) ? FrameSource::PngFile : FrameSource::Nv12File;
  }
  error = readNumbers(arguments, options);
  if (!error.empty()) return error;
  const bool sized = options.width || options.height || options.stride || options.scanline;
  if (sized && options.source != FrameSource::Nv12File) {
    return "--width, --height, --stride and --scanline describe an NV12 FILE";
  }

  if (arguments.has("crop")) {
    options.crop = parseCrop(arguments.options.at("crop"));
    if (!options.crop) return "invalid --crop: give X,Y,W,H with an even W and H of at least 2";
  }
  if (arguments.has("input-size") &&
      !parseInputSize(arguments.options.at("input-size"), options.inputWidth, options.inputHeight)) {
    return "invalid --input-size: give WxH with even sides from 2 to " + std::to_string(kMaxInputSide);
  }
  if (options.rotation % 180 != 0 && options.inputWidth != options.inputHeight) {
    return "--rotation 90 and 270 need a square --input-size (the sample processing turns square inputs only)";
  }
  if (arguments.has("runtime")) {
    error = readRuntime(arguments.options.at("runtime"), options.runtime);
    if (!error.empty()) return error;
  }
  for (auto [name, into] : {std::pair{"model", &options.model}, {"debug", &options.debugDir},
                            {"trace", &options.traceFile}}) {
    if (!arguments.has(name)) continue;
    if (arguments.options.at(name).empty()) return "--" + std::string(name) + " needs a path";
    *into = arguments.options.at(name);
  }
  if (arguments.has("output")) options.outputDir = arguments.options.at("output");
  if (options.outputDir.empty()) return "--output needs a folder";
  return "";
}

}  // namespace tvrtool
