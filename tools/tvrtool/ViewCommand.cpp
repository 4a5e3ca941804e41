// `tvrtool view`: buffer dumps, raw RGB images and float tensors to PNG pictures.
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Arguments.h"
#include "DumpPicture.h"
#include "Layout.h"
#include "Subcommand.h"

namespace tvrtool {

namespace {

namespace fs = std::filesystem;

const std::vector<OptionDefinition> kOptions = {
    {"format", 'f', true}, {"width", 0, true},    {"height", 0, true},  {"stride", 0, true},
    {"scanline", 0, true}, {"output", 'o', true}, {"help", 'h', false},
};

void printHelp(std::FILE* to) {
  std::fputs(
      "Usage: tvrtool view [OPTION]... FILE...\n"
      "\n"
      "Turn the images that libvexa_tivorabase writes into PNG pictures.\n"
      "\n"
      "FILE is one of:\n"
      "  a buffer dump    <boot time>_<name>_<stride>x<height>.<format>, as written by\n"
      "                   DebugBase::dumpBufferByKey, e.g. 5000000000_src_1920x1080.nv12.\n"
      "                   The name tells the stride and the height; the width is taken to be\n"
      "                   the whole stride unless --width says otherwise.\n"
      "  a raw RGB image  <name>_<width>x<height>.raw, as written by outputRawImage,\n"
      "                   e.g. rgb_640x480.raw.\n"
      "  any other file   described by --format, --width and --height.\n"
      "The PNG goes next to FILE, with the extension replaced by .png, unless -o is given.\n"
      "\n"
      "Formats (the file name's extension, or --format):\n"
      "  nv12   8-bit luma rows, then interleaved Cb/Cr rows for every second luma row (4:2:0)\n"
      "  nv21   as nv12, with Cr before Cb\n"
      "  yuv    read as nv12\n"
      "  y      8-bit luma rows only; written as a gray PNG\n"
      "  rgb    8-bit RGB pixels, rows --stride bytes apart\n"
      "  raw    8-bit RGB pixels in rows of exactly width x 3 bytes (outputRawImage)\n"
      "  f32    32-bit float RGB pixels, rows --stride floats apart; the smallest to the\n"
      "         largest value is stretched over black to white\n"
      "YUV shows through BT.601 video-range coefficients.\n"
      "\n"
      "Options:\n"
      "  -f, --format=FORMAT  the layout of every FILE (default: each file's extension)\n"
      "      --width=N        width in pixels\n"
      "      --height=N       height in rows\n"
      "      --stride=N       distance from one row to the next: bytes, or floats for f32\n"
      "                       (default: from the name, else width x samples per pixel)\n"
      "      --scanline=N     nv12/nv21: luma rows allocated before the chroma rows, when\n"
      "                       more than the height (host frames of 1080 rows in 1088, e.g.)\n"
      "  -o, --output=PNG     where to write the PNG; '-' for standard output; one FILE only\n"
      "  -h, --help           show this help and exit\n"
      "Options override what a file's name says. The file must hold exactly the bytes that the\n"
      "name and options promise (a dump holds the whole allocation: stride x height x 3/2 for\n"
      "nv12); any other file is refused and no PNG is written for it.\n"
      "\n"
      "For each PNG written, a line on standard output names it and the layout read.\n"
      "\n"
      "Examples:\n"
      "  tvrtool view 5000000000_src_1920x1080.nv12\n"
      "  tvrtool view --width 1912 5000000000_src_1920x1080.nv12\n"
      "  tvrtool view --scanline 1088 7000000000_frame_1920x1080.nv21\n"
      "  tvrtool view rgb_640x480.raw -o preview.png\n"
      "  tvrtool view --format f32 --width 224 --height 224 input_tensor.bin\n"
      "  tvrtool view dumps/*.nv12\n"
      "\n"
      "Exit status:\n"
      "  0  every FILE was converted\n"
      "  1  a FILE was refused or its PNG could not be written (the others are still converted)\n"
      "  2  wrong usage: an unknown option, a bad number, no FILE\n",
      to);
}

int usageError(const std::string& message) { return tvrtool::usageError("tvrtool view", message); }

// Reports a refused FILE on one line; the other files go on.
bool refuse(const std::string& path, const std::string& message) {
  std::fprintf(stderr, "tvrtool view: %s: %s\n", path.c_str(), message.c_str());
  return false;
}

// The numeric options; false (and a message) when one is not a count in range.
bool readCounts(const Arguments& arguments, LayoutRequest& request, std::string& error) {
  struct Count {
    const char* name;
    uint32_t max;
    std::optional<uint32_t>* into;
  };
  const Count counts[] = {{"width", kMaxDimension, &request.width},
                          {"height", kMaxDimension, &request.height},
                          {"stride", kMaxStride, &request.stride},
                          {"scanline", kMaxDimension, &request.scanline}};
  for (const Count& count : counts) {
    const auto option = arguments.options.find(count.name);
    if (option == arguments.options.end()) continue;
    *count.into = parseCount(option->second, count.max);
    if (!*count.into) {
      error = "invalid --" + std::string(count.name) + " '" + option->second + "': give a number from 1 to " +
              std::to_string(count.max);
      return false;
    }
  }
  return true;
}

std::string defaultOutput(const std::string& input) { return fs::path(input).replace_extension(".png").string(); }

bool viewOne(const std::string& path, const LayoutRequest& request, const std::optional<std::string>& output) {
  const std::string target = output.value_or(defaultOutput(path));
  std::string read;
  const std::string error = writePicture(path, request, target, read);
  if (!error.empty()) return refuse(path, error);
  std::fprintf(target == "-" ? stderr : stdout, "%s: %s\n", target == "-" ? "(standard output)" : target.c_str(),
               read.c_str());
  return true;
}

int run(const std::vector<std::string>& args) {
  Arguments arguments;
  const std::string error = parseArguments(args, kOptions, arguments);
  if (!error.empty()) return usageError(error);
  if (arguments.has("help")) {
    printHelp(stdout);
    return kExitOk;
  }
  if (arguments.operands.empty()) return usageError("no FILE given");

  LayoutRequest request;
  std::string countError;
  if (!readCounts(arguments, request, countError)) return usageError(countError);
  if (arguments.has("format")) {
    request.format = arguments.options.at("format");
    if (!formatNamed(*request.format)) {
      return usageError("unknown format '" + *request.format + "' (known: " + kFormatNames + ")");
    }
  }
  std::optional<std::string> output;
  if (arguments.has("output")) {
    if (arguments.operands.size() > 1) return usageError("-o/--output takes one FILE only");
    output = arguments.options.at("output");
  }

  bool allConverted = true;
  for (const std::string& path : arguments.operands) allConverted = viewOne(path, request, output) && allConverted;
  return allConverted ? kExitOk : kExitFailed;
}

}  // namespace

const Subcommand& viewCommand() {
  static const Subcommand command = {"view", "turn buffer dumps, raw RGB images and float tensors into PNG pictures",
                                     run, printHelp};
  return command;
}

}  // namespace tvrtool
