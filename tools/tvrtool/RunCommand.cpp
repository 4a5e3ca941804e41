// `tvrtool run`: plays the camera host for the sample processing (examples/mean_colour) on a
// workstation, and shows what it saw, how long each stage took and what it answered.
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "DeviceTree.h"
#include "FileBytes.h"
#include "FrameLoader.h"
#include "HostSession.h"
#include "MarkerCollector.h"
#include "PngFile.h"
#include "RunOptions.h"
#include "RunReport.h"
#include "Subcommand.h"

namespace tvrtool {

namespace {

namespace fs = std::filesystem;

void printHelp(std::FILE* to) {
  std::fputs(
      "Usage: tvrtool run [OPTION]... [FILE]\n"
      "\n"
      "Play the camera host for the sample processing MeanColourProcessing: setup, initialize,\n"
      "apply one frame N times, abort, finalize and teardown, each status told in words; then the\n"
      "time of each stage per frame and the mean colour the network computed.\n"
      "\n"
      "FILE is the frame:\n"
      "  none          a built-in 1920x1080 colour chart\n"
      "  NAME.png      a PNG picture, converted to NV12 (BT.601 video range)\n"
      "  any other     an NV12 frame: luma rows, then interleaved Cb/Cr rows, nothing else;\n"
      "                its size from --width/--height/--stride or from a dump's name\n"
      "                (5000000000_src_1920x1080.nv12: stride 1920, height 1080)\n"
      "\n"
      "Options:\n"
      "      --width=N        width of an NV12 FILE in pixels (even)\n"
      "      --height=N       height of an NV12 FILE in rows (even)\n"
      "      --stride=N       bytes from one row to the next (default: the width)\n"
      "      --scanline=N     luma rows allocated before the chroma rows (default: the height)\n"
      "  -r, --rotation=DEG   clockwise turn before the network: 0, 90, 180 or 270 (default 0;\n"
      "                       90 and 270 need a square input size)\n"
      "      --crop=X,Y,W,H   the part of the frame the network sees (default: all of it)\n"
      "      --input-size=WxH the network's input (default 224x224; even sides)\n"
      "  -m, --model=PATH     the model container (default: the bundled host model for the\n"
      "                       input size, written to the output folder)\n"
      "      --runtime=NAME   cpu, gpu, dsp or aip (default cpu; the host stand-in has cpu only)\n"
      "  -n, --frames=N       frames to apply (default 30)\n"
      "      --debug=DIR      switch the processing's dumps on: every frame as the host gave it\n"
      "                       and the picture the network saw go to DIR (tvrtool view reads them)\n"
      "      --trace=FILE     write the library's trace markers as Chrome trace-event JSON\n"
      "                       (open it at https://ui.perfetto.dev)\n"
      "  -o, --output=DIR     where the network's picture and the model go\n"
      "                       (default tvrtool-run-out)\n"
      "  -h, --help           show this help and exit\n"
      "\n"
      "The library's device files are those of this build's TIVORA_PATH_PREFIX: tvrtool run writes\n"
      "the logger's VEXA_TVR.dat (and MeanColourDebug.dat with --debug) into its camera folder and,\n"
      "with --trace, reads the trace_marker there.\n"
      "\n"
      "Examples:\n"
      "  tvrtool run\n"
      "  tvrtool run --frames 100 --trace run.json\n"
      "  tvrtool run --width 1920 --height 1080 --rotation 90 --crop 420,0,1080,1080 frame.nv12\n"
      "  tvrtool run --debug dumps photo.png\n"
      "\n"
      "Exit status:\n"
      "  0  every call succeeded\n"
      "  1  the frame was refused, or a call failed (finalize and teardown still ran)\n"
      "  2  wrong usage\n",
      to);
}

int fail(const std::string& message) {
  std::fprintf(stderr, "tvrtool run: %s\n", message.c_str());
  return kExitFailed;
}

tvr_rotation_t rotationOf(uint32_t degrees) {
  switch (degrees) {
    case 90:
      return TVR_ROTATION_90;
    case 180:
      return TVR_ROTATION_180;
    case 270:
      return TVR_ROTATION_270;
    default:
      return TVR_ROTATION_0;
  }
}

tvr_runtime_t runtimeOf(Runtime runtime) {
  switch (runtime) {
    case Runtime::Gpu:
      return TVR_RUNTIME_GPU;
    case Runtime::Dsp:
      return TVR_RUNTIME_DSP;
    case Runtime::Aip:
      return TVR_RUNTIME_AIP;
    case Runtime::Cpu:
      break;
  }
  return TVR_RUNTIME_CPU;
}

// The crop as the host's record; the whole frame by default. Empty error when it fits.
tvr_crop_t cropOf(const RunOptions& options, const Nv12Frame& frame, std::string& error) {
  const CropRect crop = options.crop.value_or(CropRect{0, 0, frame.width, frame.height});
  if (uint64_t{crop.x} + crop.width > frame.width || uint64_t{crop.y} + crop.height > frame.height) {
    error = "the crop " + std::to_string(crop.x) + "," + std::to_string(crop.y) + "," + std::to_string(crop.width) +
            "," + std::to_string(crop.height) + " does not fit the " + std::to_string(frame.width) + "x" +
            std::to_string(frame.height) + " frame";
  }
  return {{static_cast<int32_t>(crop.x), static_cast<int32_t>(crop.y)}, {crop.width, crop.height}};
}


// The dump folder as the debug configuration needs it: absolute, existing, without a blank.
std::string prepareDumpDir(const std::string& dir, std::string& absolute) {
  std::error_code code;
  absolute = fs::absolute(dir, code).lexically_normal().string();
  if (!absolute.empty() && absolute.back() == '/') absolute.pop_back();
  if (absolute.find(' ') != std::string::npos) return "the debug folder '" + absolute + "' holds a blank, which the library refuses";
  fs::create_directories(absolute, code);
  return code ? "cannot create the debug folder " + absolute + ": " + code.message() : "";
}

std::string writeTrace(const MarkerCollector& collector, const std::string& path) {
  const ParsedMarkers parsed = parseMarkers(collector.text(), collector.reads());
  std::string error = writeTextFile(path, toChromeTraceJson(parsed.events, collector.startTimeNs()));
  if (error.empty()) {
    std::printf("trace: %s (%zu events%s; open it at https://ui.perfetto.dev)\n", path.c_str(), parsed.events.size(),
                parsed.rejected == 0 ? "" : (", " + std::to_string(parsed.rejected) + " garbled markers left out").c_str());
  }
  return error;
}

int runWith(const RunOptions& options) {
  if (!devicePathsArePrefixed()) {
    return fail("this build has no TIVORA_PATH_PREFIX, so its device paths are this machine's own /data and /sys; "
                "use a preset's build (e.g. build/release)");
  }
  std::string description, error;
  const std::optional<Nv12Frame> frame = loadFrame(options, description, error);
  if (!frame) return fail(options.sourcePath + ": " + error);
  HostSettings settings;
  settings.crop = cropOf(options, *frame, error);
  if (!error.empty()) return fail(error);
  settings.rotation = rotationOf(options.rotation);
  settings.runtime = runtimeOf(options.runtime);
  settings.frames = options.frames;
  settings.debug = options.debugDir.has_value();
  settings.config.inputWidth = options.inputWidth;
  settings.config.inputHeight = options.inputHeight;

  std::error_code code;
  fs::create_directories(options.outputDir, code);
  if (code) return fail("cannot create the output folder " + options.outputDir + ": " + code.message());
  const std::string size = std::to_string(options.inputWidth) + "x" + std::to_string(options.inputHeight);
  settings.modelPath = options.model.value_or((fs::path(options.outputDir) / ("mean_colour_" + size + ".dlc")).string());
  if (!options.model) {
    error = writeTextFile(settings.modelPath,
                      tivora::examples::MeanColourProcessing::hostModelText(options.inputWidth, options.inputHeight));
    if (!error.empty()) return fail(error);
  }

  DeviceSetup device;
  device.trace = options.traceFile.has_value();
  std::string dumpDir;
  if (options.debugDir) {
    error = prepareDumpDir(*options.debugDir, dumpDir);
    if (!error.empty()) return fail(error);
    device.dumpDir = dumpDir;
  }
  error = prepareDevice(device);
  if (!error.empty()) return fail(error);
  std::unique_ptr<MarkerCollector> collector;
  if (options.traceFile) {
    collector = MarkerCollector::start(traceMarkerPath(), 2 * size_t{options.frames} + 16, error);
    if (!collector) return fail(error);
  }

  std::printf("source: %s\n", description.c_str());
  std::printf("network: %s input, rotation %u, crop %d,%d %ux%u, model %s\n", size.c_str(), options.rotation,
              settings.crop.pos.x, settings.crop.pos.y, settings.crop.size.w, settings.crop.size.h,
              settings.modelPath.c_str());
  std::fflush(stdout);
  Progress progress(stderr, isatty(STDERR_FILENO) != 0, options.frames);
  const SessionResult result = runHost(settings, *frame, progress);

  std::string traceError;
  if (collector) {
    collector->stop();
    traceError = writeTrace(*collector, *options.traceFile);
  }
  if (!result.failure.empty()) return fail(result.failure);
  if (!traceError.empty()) return fail(traceError);

  std::printf("\n%s\n%s", timingTable(result.times).c_str(), resultText(result.last, settings.config).c_str());
  const std::string picture = (fs::path(options.outputDir) / ("network_input_" + size + ".png")).string();
  error = writePng(picture, result.networkImage);
  if (!error.empty()) return fail("cannot write " + picture + ": " + error);
  std::printf("network input: %s\n", picture.c_str());
  if (options.debugDir) std::printf("dumps: %s (tvrtool view %s/*.nv12 %s/*.rgb)\n", dumpDir.c_str(), dumpDir.c_str(), dumpDir.c_str());
  return kExitOk;
}

int run(const std::vector<std::string>& args) {
  RunOptions options;
  const std::string error = parseRunOptions(args, options);
  if (!error.empty()) return usageError("tvrtool run", error);
  if (options.help) {
    printHelp(stdout);
    return kExitOk;
  }
  // Should the trace FIFO lose its reader, a late marker must not end the process; it is lost.
  signal(SIGPIPE, SIG_IGN);
  return runWith(options);
}

}  // namespace

const Subcommand& runCommand() {
  static const Subcommand command = {"run", "play the camera host for the sample processing on a frame", run,
                                     printHelp};
  return command;
}

}  // namespace tvrtool
