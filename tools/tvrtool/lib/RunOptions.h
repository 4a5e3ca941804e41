// The command line of `tvrtool run`, checked as far as it can be without reading the frame.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Arguments.h"

namespace tvrtool {

enum class FrameSource {
  Chart,     // no FILE: the built-in colour chart
  Nv12File,  // any FILE not ending in .png
  PngFile,
};

enum class Runtime { Cpu, Gpu, Dsp, Aip };

struct CropRect {
  uint32_t x = 0, y = 0, width = 0, height = 0;
};

struct RunOptions {
  FrameSource source = FrameSource::Chart;
  std::string sourcePath;
  std::optional<uint32_t> width, height, stride, scanline;  // the NV12 file's, when its name does not tell
  uint32_t rotation = 0;                          // degrees clockwise: 0, 90, 180 or 270
  std::optional<CropRect> crop;                   // default: the whole frame
  uint32_t inputWidth = 224, inputHeight = 224;   // the network's input
  std::optional<std::string> model;               // default: the bundled host model, written to the output
  Runtime runtime = Runtime::Cpu;
  uint32_t frames = 30;
  std::optional<std::string> debugDir;
  std::optional<std::string> traceFile;
  std::string outputDir = "tvrtool-run-out";
  bool help = false;
};

inline constexpr uint32_t kMaxFrames = 1000000;
inline constexpr uint32_t kMaxInputSide = 4096;

const std::vector<OptionDefinition>& runOptionDefinitions();

// Reads `args` into `options`; returns a message for the user when they are wrong, else "".
std::string parseRunOptions(const std::vector<std::string>& args, RunOptions& options);

// "X,Y,W,H" of non-negative numbers, W and H even and at least 2 (the chroma planes halve them).
std::optional<CropRect> parseCrop(const std::string& text);

// "WxH" with even sides from 2 to kMaxInputSide.
bool parseInputSize(const std::string& text, uint32_t& width, uint32_t& height);

}  // namespace tvrtool
