#include "FrameLoader.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "ColourChart.h"
#include "Nv12File.h"
#include "PngFile.h"
#include "RgbToNv12.h"
#include "Y4mFile.h"

namespace tvrtool {

namespace {

namespace fs = std::filesystem;

std::string sizeText(uint32_t width, uint32_t height) { return std::to_string(width) + "x" + std::to_string(height); }

std::string lowerExtension(const fs::path& path) {
  std::string extension = path.extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension;
}

// NV12 halves both sides for chroma: an odd last column or row of a picture is left out.
void cropToEven(DisplayImage& image) {
  const uint32_t width = image.width & ~1u, height = image.height & ~1u;
  for (uint32_t row = 0; row < height; ++row) {
    std::memmove(image.pixels.data() + size_t{row} * width * 3, image.pixels.data() + size_t{row} * image.width * 3,
                 size_t{width} * 3);
  }
  image.width = width;
  image.height = height;
  image.pixels.resize(size_t{width} * height * 3);
}

// A picture as a sequence of one frame.
std::optional<std::vector<Nv12Frame>> loadPng(const std::string& path, std::string& description, std::string& error) {
  DisplayImage image;
  error = readPng(path, image);
  if (!error.empty()) {
    error = "cannot read it as a PNG picture: " + error;
    return std::nullopt;
  }
  description = "PNG " + sizeText(image.width, image.height);
  if (image.width < 2 || image.height < 2) {
    error = "the picture is " + sizeText(image.width, image.height) + ": it needs at least 2x2 pixels";
    return std::nullopt;
  }
  if ((image.width | image.height) & 1u) {
    cropToEven(image);
    description += " cut to " + sizeText(image.width, image.height);
  }
  std::vector<Nv12Frame> frames;
  frames.push_back(rgbToNv12(image));
  return frames;
}

std::string layoutText(const Nv12Frame& frame) {
  return sizeText(frame.width, frame.height) + " (stride " + std::to_string(frame.stride) + ", scanline " +
         std::to_string(frame.scanline) + ")";
}

// Every *.nv12, *.yuv and *.png file of the folder in name order, the frames of one layout.
std::optional<FrameSequence> loadFolder(const fs::path& dir, const LayoutRequest& request, uint32_t maxFrames,
                                        std::string& error) {
  std::vector<fs::path> files;
  size_t others = 0;
  std::error_code code;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir, code)) {
    const std::string extension = lowerExtension(entry.path());
    const bool frame =
        entry.is_regular_file(code) && (extension == ".nv12" || extension == ".yuv" || extension == ".png");
    if (frame) files.push_back(entry.path());
    others += frame ? 0 : 1;
  }
  if (code) {
    error = dir.string() + ": cannot read the folder: " + code.message();
    return std::nullopt;
  }
  std::sort(files.begin(), files.end());
  FrameSequence sequence;
  for (size_t i = 0; i < files.size() && sequence.frames.size() < maxFrames; ++i) {
    const std::string name = files[i].filename().string();
    std::string unused;
    std::optional<std::vector<Nv12Frame>> frames;
    if (lowerExtension(files[i]) == ".png") {
      frames = loadPng(files[i].string(), unused, error);
    } else {
      frames = readNv12Frames(files[i].string(), request, maxFrames - static_cast<uint32_t>(sequence.frames.size()), error);
    }
    if (!frames) {
      error = (dir / name).string() + ": " + error;
      return std::nullopt;
    }
    const Nv12Frame& first = sequence.frames.empty() ? frames->front() : sequence.frames.front();
    if (layoutText(frames->front()) != layoutText(first)) {
      error = dir.string() + ": frames of mixed sizes: " + files[0].filename().string() + " is " + layoutText(first) +
              " but " + name + " is " + layoutText(frames->front());
      return std::nullopt;
    }
    for (Nv12Frame& frame : *frames) sequence.frames.push_back(std::move(frame));
  }
  if (sequence.frames.empty()) {
    error = dir.string() + ": the folder holds no frames (*.nv12, *.yuv or *.png)";
    return std::nullopt;
  }
  sequence.description = "a folder of " + std::to_string(files.size()) + " frame files" +
                         (others == 0 ? "" : " (" + std::to_string(others) + " other files left out)");
  return sequence;
}

std::optional<FrameSequence> loadFile(const std::string& path, const LayoutRequest& request, uint32_t maxFrames,
                                      std::string& error) {
  FrameSequence sequence;
  const std::string extension = lowerExtension(path);
  std::optional<std::vector<Nv12Frame>> frames;
  if (extension == ".png") {
    frames = loadPng(path, sequence.description, error);
  } else if (extension == ".y4m") {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
      error = fs::exists(path) ? "cannot open it" : "no such file";
    } else {
      frames = readY4m(in, maxFrames, error);
      sequence.description = "Y4M";
    }
  } else {
    frames = readNv12Frames(path, request, maxFrames, error);
    sequence.description = "NV12";
  }
  if (!frames) {
    error = path + ": " + error;
    return std::nullopt;
  }
  sequence.frames = std::move(*frames);
  return sequence;
}

}  // namespace

std::optional<FrameSequence> loadFrames(const std::optional<std::string>& path, const LayoutRequest& request,
                                        uint32_t maxFrames, std::string& error) {
  std::optional<FrameSequence> sequence;
  if (!path) {
    sequence.emplace();
    sequence->frames.push_back(rgbToNv12(colourChart(kChartWidth, kChartHeight)));
    sequence->description = "built-in colour chart";
  } else {
    std::error_code code;
    sequence = fs::is_directory(*path, code) ? loadFolder(*path, request, maxFrames, error)
                                             : loadFile(*path, request, maxFrames, error);
    if (!sequence) return std::nullopt;
    sequence->description = *path + ", " + sequence->description;
  }
  const Nv12Frame& first = sequence->frames.front();
  const size_t count = sequence->frames.size();
  sequence->description += ": " + std::to_string(count) + (count == 1 ? " frame" : " frames") + " of NV12 " +
                           layoutText(first);
  return sequence;
}

}  // namespace tvrtool
