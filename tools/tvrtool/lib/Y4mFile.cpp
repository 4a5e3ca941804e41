#include "Y4mFile.h"

#include <libyuv/convert_from.h>

#include <sstream>

#include "Arguments.h"
#include "Layout.h"

namespace tvrtool {

namespace {

constexpr size_t kMaxLine = 4096;  // a header or FRAME line; anything longer is not Y4M

// One line without its '\n'; false when the stream ends first or the line is too long.
bool readLine(std::istream& in, std::string& line) {
  line.clear();
  for (int c = in.get(); c != std::char_traits<char>::eof(); c = in.get()) {
    if (c == '\n') return true;
    if (line.size() == kMaxLine) return false;
    line.push_back(static_cast<char>(c));
  }
  return false;
}

// Width and height from the header line; empty when it is a 4:2:0 stream of even sides.
std::string readHeader(const std::string& line, uint32_t& width, uint32_t& height) {
  std::istringstream words(line);
  std::string word, colour = "420jpeg";
  if (!(words >> word) || word != "YUV4MPEG2") return "not a YUV4MPEG2 stream: it does not start with YUV4MPEG2";
  while (words >> word) {
    if (word[0] == 'W' || word[0] == 'H') {
      const std::optional<uint32_t> side = parseCount(word.substr(1), kMaxDimension);
      if (!side) return "invalid header tag " + word;
      (word[0] == 'W' ? width : height) = *side;
    } else if (word[0] == 'C') {
      colour = word.substr(1);
    }
  }
  if (width == 0 || height == 0) return "the header gives no width (W) or height (H)";
  if (colour != "420jpeg" && colour != "420mpeg2" && colour != "420paldv" && colour != "420") {
    return "the frames are C" + colour + ", not 4:2:0 (C420jpeg, C420mpeg2, C420paldv or C420)";
  }
  if (((width | height) & 1u) != 0) {
    return "the frames are " + std::to_string(width) + "x" + std::to_string(height) + ": NV12 needs an even width and height";
  }
  return "";
}

}  // namespace

std::optional<std::vector<Nv12Frame>> readY4m(std::istream& in, uint32_t maxFrames, std::string& error) {
  std::string line;
  uint32_t width = 0, height = 0;
  error = readLine(in, line) ? readHeader(line, width, height) : "not a YUV4MPEG2 stream: no header line";
  if (!error.empty()) return std::nullopt;

  const size_t luma = size_t{width} * height, chroma = luma / 4, frameBytes = luma + 2 * chroma;
  std::vector<uint8_t> planar(frameBytes);
  std::vector<Nv12Frame> frames;
  while (frames.size() < maxFrames && in.peek() != std::char_traits<char>::eof()) {
    const std::string frame = "frame " + std::to_string(frames.size() + 1);
    if (!readLine(in, line) || line.rfind("FRAME", 0) != 0 || (line.size() > 5 && line[5] != ' ')) {
      error = frame + " does not start with a FRAME line";
      return std::nullopt;
    }
    in.read(reinterpret_cast<char*>(planar.data()), static_cast<std::streamsize>(frameBytes));
    if (static_cast<size_t>(in.gcount()) != frameBytes) {
      error = frame + " holds " + std::to_string(in.gcount()) + " of its " + std::to_string(frameBytes) +
              " bytes (truncated)";
      return std::nullopt;
    }
    Nv12Frame& nv12 = frames.emplace_back(Nv12Frame{width, height, width, height, std::vector<uint8_t>(frameBytes)});
    const uint8_t* cb = planar.data() + luma;
    libyuv::I420ToNV12(planar.data(), static_cast<int>(width), cb, static_cast<int>(width / 2), cb + chroma,
                       static_cast<int>(width / 2), nv12.bytes.data(), static_cast<int>(width), nv12.bytes.data() + luma,
                       static_cast<int>(width), static_cast<int>(width), static_cast<int>(height));
  }
  if (frames.empty()) error = "the stream holds no frames";
  return frames.empty() ? std::nullopt : std::optional(std::move(frames));
}

}  // namespace tvrtool
