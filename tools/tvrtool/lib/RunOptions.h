// The command line of `tvrtool run`, checked as far as it can be without reading a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Arguments.h"

namespace tvrtool {

enum class Runtime { Cpu, Gpu, Dsp, Aip };

struct CropRect {
  uint32_t x = 0, y = 0, width = 0, height = 0;
};

struct RunOptions {
  std::optional<std::string> processing;  // the plugin; default: the bundled sample
  uint32_t resourceType = 0;
  std::vector<std::pair<std::string, std::string>> pluginOptions;  // --option KEY=VALUE, in order
  std::optional<std::string> source;  // the frames (a file or a folder); default: the built-in chart
  std::optional<std::string> replayDir;  // a device's dump folder: frames with their input records
  std::optional<uint32_t> width, height, stride, scanline;  // NV12 files, when their names do not tell
  uint32_t rotation = 0;                                     // degrees clockwise: 0, 90, 180 or 270
  std::optional<CropRect> crop;                              // default: the whole frame
  std::optional<std::string> model;                          // default: the plugin's own
  Runtime runtime = Runtime::Cpu;
  std::optional<uint32_t> frames;  // default: a sequence once, a single frame kSingleFrameRepeats times
  char logLevel = 'W';             // the logger's threshold: V, D, I, W or E
  std::optional<std::string> debugDir;
  std::optional<std::string> traceFile;
  std::optional<std::string> resultsFile;
  std::optional<std::string> outputDir;
  bool help = false;
};

inline constexpr uint32_t kMaxFrames = 1000000;
inline constexpr uint32_t kSingleFrameRepeats = 30;
inline constexpr uint32_t kMaxResourceType = 7;  // eight types of five network slots each

const std::vector<OptionDefinition>& runOptionDefinitions();

// Reads `args` into `options`; returns a message for the user when they are wrong, else "".
std::string parseRunOptions(const std::vector<std::string>& args, RunOptions& options);

// "X,Y,W,H" of non-negative numbers: X, Y, W and H even (NV12 chroma covers 2x2 pixels), W and H
// at least 2.
std::optional<CropRect> parseCrop(const std::string& text);

}  // namespace tvrtool
