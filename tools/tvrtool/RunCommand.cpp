// `tvrtool run`: plays the camera host for a processing's plugin on a workstation, and shows how
// long each stage took and what it answered.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "DeviceTree.h"
#include "DumpPicture.h"
#include "FileBytes.h"
#include "FrameLoader.h"
#include "HostSession.h"
#include "OutputPaths.h"
#include "PluginLibrary.h"
#include "ReplayFolder.h"
#include "RunOptions.h"
#include "RunReport.h"
#include "Subcommand.h"
#include "TivoraLogPriority.h"
#include "TraceRecorder.h"

namespace tvrtool {

namespace {

namespace fs = std::filesystem;

void printHelp(std::FILE* to) {
  std::fputs(
      "Usage: tvrtool run [OPTION]... [FILE|FOLDER]\n"
      "\n"
      "Play the camera host for a processing: load its plugin, then setup, initialize, apply N\n"
      "frames, abort, finalize and teardown, each status told in words; then the time of each\n"
      "stage per frame and what the processing answered for the last frame.\n"
      "\n"
      "The processing is a plugin library (see TivoraPlugin.h); without --processing, the sample\n"
      "MeanColourProcessing that comes with tvrtool.\n"
      "\n"
      "The frames, all read before the first is applied:\n"
      "  none          a built-in 1920x1080 colour chart\n"
      "  NAME.png      a PNG picture, converted to NV12 (BT.601 video range)\n"
      "  NAME.y4m      a YUV4MPEG2 stream of 4:2:0 frames (as ffmpeg writes it), as NV12\n"
      "  FOLDER        its *.nv12, *.yuv and *.png files in name order, all of one size\n"
      "  any other     NV12 frames back to back: luma rows, then interleaved Cb/Cr rows; the\n"
      "                size from --width/--height/--stride or from a dump's name\n"
      "                (5000000000_src_1920x1080.nv12: stride 1920, height 1080)\n"
      "\n"
      "Options:\n"
      "  -p, --processing=LIB   the processing's plugin library (default: the bundled sample)\n"
      "      --replay=DIR       instead of FILE: a dump folder taken on a device, played again:\n"
      "                         its source frames (<ns>_source_<stride>x<height>.nv12) in time\n"
      "                         order, each with its own input record from DIR/input_param.csv\n"
      "                         (rotation, crop, layout) and initialize's from static_param.csv\n"
      "                         when there is one; compare the dumps with tvrtool compare\n"
      "      --resource-type=N  the resource type it is created for, 0 to 7 (default 0)\n"
      "      --option=KEY=VALUE given to the plugin before setup, in order; it may refuse it.\n"
      "                         The sample takes order=keep|swap and input-size=WxH.\n"
      "      --width=N          width of NV12 frames in pixels (even)\n"
      "      --height=N         height of NV12 frames in rows (even)\n"
      "      --stride=N         bytes from one row to the next (default: the width)\n"
      "      --scanline=N       luma rows allocated before the chroma rows (default: the height)\n"
      "  -r, --rotation=DEG     clockwise turn the host asks for: 0, 90, 180 or 270 (default 0)\n"
      "      --crop=X,Y,W,H     the part of the frame the processing sees, all even\n"
      "                         (default: all of it)\n"
      "  -m, --model=PATH       the model the create record names (default: none, and the plugin\n"
      "                         takes its own)\n"
      "      --runtime=NAME     cpu, gpu, dsp or aip (default cpu; the host stand-in has cpu only)\n"
      "  -n, --frames=N         frames to apply, the sequence again from its start when it ends\n"
      "                         (default: each frame of a sequence once, a single frame 30 times)\n"
      "      --log-level=L      the library's log threshold: V, D, I, W or E (default W); DEBUG\n"
      "                         and VERBOSE records reach standard error too\n"
      "      --debug=DIR        apply every frame with a debug record, and tell the plugin to dump\n"
      "                         into DIR (option debug-dir); tvrtool view reads the dumps\n"
      "  -o, --output=DIR       PNG pictures of the last frame's dumps (debug-dir DIR unless\n"
      "                         --debug gives another; only the last frame is applied with a\n"
      "                         debug record)\n"
      "      --results=FILE     one CSV line per frame: frame, status, stage times, the plugin's\n"
      "                         text of its result\n"
      "      --trace=FILE       a Chrome trace-event JSON of the run (open it at\n"
      "                         https://ui.perfetto.dev): each lifecycle call as the library marks\n"
      "                         it, timed when it was written, the stages inside each apply and\n"
      "                         the frame time\n"
      "  -h, --help             show this help and exit\n"
      "\n"
      "The library's device files are those of this build's TIVORA_PATH_PREFIX: tvrtool run writes\n"
      "the logger's VEXA_TVR.dat into its camera folder (with TivoraTrace=true for --trace).\n"
      "\n"
      "Examples:\n"
      "  tvrtool run\n"
      "  tvrtool run --frames 100 --trace run.json --results run.csv\n"
      "  tvrtool run --width 1920 --height 1080 --rotation 180 --crop 420,0,1080,1080 frames.nv12\n"
      "  tvrtool run --option order=swap -o pictures clip.y4m\n"
      "  tvrtool run --processing build/libmy_processing.so --option threshold=3 captures/\n"
      "  tvrtool run --replay device-dumps --debug host-dumps\n"
      "\n"
      "Exit status:\n"
      "  0  every call succeeded\n"
      "  1  the plugin, the frames or a path was refused, or a call failed (finalize and teardown\n"
      "     still ran)\n"
      "  2  wrong usage, or a --replay folder without source frames\n",
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
  error.clear();
  const CropRect crop = options.crop.value_or(CropRect{0, 0, frame.width, frame.height});
  if (uint64_t{crop.x} + crop.width > frame.width || uint64_t{crop.y} + crop.height > frame.height) {
    error = "the crop " + std::to_string(crop.x) + "," + std::to_string(crop.y) + "," + std::to_string(crop.width) +
            "," + std::to_string(crop.height) + " does not fit the " + std::to_string(frame.width) + "x" +
            std::to_string(frame.height) + " frames";
  }
  return {{static_cast<int32_t>(crop.x), static_cast<int32_t>(crop.y)}, {crop.width, crop.height}};
}

// What a run writes besides standard output, each checked before the first frame.
struct Outputs {
  std::unique_ptr<ResultsFile> results;
  std::string dumpDir;     // absolute; where the plugin is told to dump
  std::string pictureDir;  // absolute; -o
};

std::string prepareOutputs(const RunOptions& options, Outputs& outputs) {
  std::string error;
  if (options.traceFile) error = checkWritableFile(*options.traceFile);
  if (error.empty() && options.resultsFile) outputs.results = ResultsFile::create(*options.resultsFile, error);
  if (error.empty() && options.outputDir) error = prepareFolder(*options.outputDir, outputs.pictureDir);
  if (error.empty() && options.debugDir) error = prepareFolder(*options.debugDir, outputs.dumpDir);
  if (outputs.dumpDir.empty()) outputs.dumpDir = outputs.pictureDir;
  return error;
}

// Each frame: its apply's two markers, its stages and its time; the lifecycle's markers and the
// threads' names besides. Capped, so that a long run does not reserve without bound.
size_t traceCapacity(uint32_t frames) {
  return std::min<size_t>(size_t{frames} * (3 + FrameTimings::kMaxStages) + 64, size_t{1} << 22);
}

std::string writeTrace(const TraceRecorder& trace, const std::string& processName, const std::string& path) {
  std::string error = writeTextFile(
      path, toChromeTraceJson(trace.events(), trace.count(), trace.pid(), processName, trace.startNs()));
  if (error.empty()) {
    std::string lost;
    if (trace.dropped() != 0) lost += ", " + std::to_string(trace.dropped()) + " events beyond its room left out";
    if (trace.rejected() != 0) lost += ", " + std::to_string(trace.rejected()) + " garbled markers left out";
    std::printf("trace: %s (%zu events%s; open it at https://ui.perfetto.dev)\n", path.c_str(), trace.count(),
                lost.c_str());
  }
  return error;
}

// A PNG in `pictureDir` of each dump the last frame made, named as the dump without its stamp.
std::string writeLastFramePictures(const std::string& dumpDir, const std::string& pictureDir, int64_t sinceBootNs) {
  const std::vector<std::string> dumps = dumpsSince(dumpDir, sinceBootNs);
  if (dumps.empty()) std::printf("pictures: none (the processing made no dumps in the last frame)\n");
  for (const std::string& dump : dumps) {
    const std::string name = fs::path(dump).filename().string();
    const std::string target = (fs::path(pictureDir) / fs::path(name.substr(name.find('_') + 1)).replace_extension(".png")).string();
    std::string read;
    const std::string error = writePicture(dump, {}, target, read);
    if (!error.empty()) return dump + ": " + error;
    std::printf("picture: %s (%s)\n", target.c_str(), read.c_str());
  }
  return "";
}

// A replay writes its dumps beside the device's only elsewhere: they would mix.
std::string checkApartFromReplay(const RunOptions& options) {
  std::error_code code;
  for (const auto& dir : {options.debugDir, options.outputDir}) {
    if (dir && std::filesystem::equivalent(*dir, *options.replayDir, code)) {
      return "the run's dumps would mix with those it replays: give --debug and -o another folder than " +
             *options.replayDir;
    }
  }
  return "";
}

int runWith(const RunOptions& options) {
  if (!devicePathsArePrefixed()) {
    return fail("this build has no TIVORA_PATH_PREFIX, so its device paths are this machine's own /data and /sys; "
                "use a preset's build (e.g. build/release)");
  }
  std::string error;
  const std::string pluginPath = options.processing ? *options.processing : bundledPluginPath(error);
  if (pluginPath.empty()) return fail(error);
  const std::optional<PluginLibrary> plugin = loadPlugin(pluginPath, error);
  if (!plugin) return fail(pluginPath + ": " + error);

  HostSettings settings;
  std::optional<FrameSequence> sequence;
  if (options.replayDir) {
    ReplayFailure failure = ReplayFailure::None;
    std::optional<Replay> replay = loadReplay(*options.replayDir, options.frames.value_or(kMaxFrames), failure, error);
    if (failure == ReplayFailure::NoSourceFrames) return usageError("tvrtool run", error);
    if (!replay) return fail(error);
    sequence = std::move(replay->sequence);
    settings.replayed = std::move(replay->records);
    settings.stream = replay->stream;
    error = checkApartFromReplay(options);
    if (!error.empty()) return usageError("tvrtool run", error);
  } else {
    const LayoutRequest request{std::nullopt, options.width, options.height, options.stride, options.scanline};
    sequence = loadFrames(options.source, request, options.frames.value_or(kMaxFrames), error);
    if (!sequence) return fail(error);
    settings.crop = cropOf(options, sequence->frames.front(), error);
    if (!error.empty()) return fail(error);
  }
  const bool once = sequence->frames.size() > 1 || options.replayDir;
  settings.frames = options.frames.value_or(once ? static_cast<uint32_t>(sequence->frames.size()) : kSingleFrameRepeats);
  settings.rotation = rotationOf(options.rotation);
  settings.runtime = runtimeOf(options.runtime);
  settings.modelPath = options.model;
  settings.debug = options.debugDir ? DebugApplies::Every : options.outputDir ? DebugApplies::Last : DebugApplies::None;

  Outputs outputs;
  error = prepareOutputs(options, outputs);
  if (!error.empty()) return fail(error);
  std::vector<std::pair<std::string, std::string>> pluginOptions = options.pluginOptions;
  if (!outputs.dumpDir.empty()) pluginOptions.emplace_back("debug-dir", outputs.dumpDir);

  // The logger reads the device tree once, when the first thing needs it: prepare it first.
  error = prepareDevice({options.logLevel, options.traceFile.has_value()});
  if (!error.empty()) return fail(error);
  tivora::lowerAndroidLogMinimumPriority();
  std::unique_ptr<TraceRecorder> trace;
  if (options.traceFile) trace = std::make_unique<TraceRecorder>(traceCapacity(settings.frames));
  ProcessingPtr processing = createProcessing(*plugin, options.resourceType, pluginOptions, error);
  if (!processing) return fail(pluginPath + ": " + error);

  const std::string processingName = processing->getProcessingName();
  std::printf("processing: %s (%s)\n", processingName.c_str(), pluginPath.c_str());
  std::printf("source: %s\n", sequence->description.c_str());
  const bool replay = !settings.replayed.empty();
  const tvr_crop_t& crop = replay ? settings.replayed[0].source.crop : settings.crop;
  const int turn = replay ? settings.replayed[0].rotation : -1;  // 1, 2, 3: a quarter, half, three quarter turn
  const std::string rotation = !replay ? "rotation " + std::to_string(options.rotation)
                               : turn >= 0 && turn <= 3 ? "rotation " + std::to_string(90 * turn)
                                                        : "rotation value " + std::to_string(turn);
  std::printf("host: resource type %u, %s%s, crop %d,%d %ux%u%s, %s\n", options.resourceType,
              replay ? "each frame's own input record (the first: " : "", rotation.c_str(), crop.pos.x, crop.pos.y,
              crop.size.w, crop.size.h, replay ? ")" : "",
              options.model ? ("model " + *options.model).c_str() : "the plugin's own model");
  std::fflush(stdout);
  Progress progress(stderr, isatty(STDERR_FILENO) != 0, settings.frames);
  const SessionResult result = runHost(*plugin, *processing, settings, *sequence, progress, outputs.results.get(), trace.get());
  processing.reset();

  std::string laterError = outputs.results ? outputs.results->finish() : "";
  if (trace) {
    trace->stop();
    const std::string traceError = writeTrace(*trace, "tvrtool run: " + processingName, *options.traceFile);
    if (laterError.empty()) laterError = traceError;
  }
  if (!result.failure.empty()) return fail(result.failure);
  if (!laterError.empty()) return fail(laterError);

  std::printf("\n%s", timingTable(result.timings).c_str());
  if (!result.lastResult.empty()) std::printf("result: %s\n", result.lastResult.c_str());
  if (options.resultsFile) std::printf("results: %s (%u frames)\n", options.resultsFile->c_str(), result.framesApplied);
  if (options.debugDir) std::printf("dumps: %s (tvrtool view turns them into pictures)\n", outputs.dumpDir.c_str());
  if (options.outputDir) {
    error = writeLastFramePictures(outputs.dumpDir, outputs.pictureDir, result.lastApplyBootNs);
    if (!error.empty()) return fail(error);
  }
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
  return runWith(options);
}

}  // namespace

const Subcommand& runCommand() {
  static const Subcommand command = {"run", "play the camera host for a processing's plugin on frames", run,
                                     printHelp};
  return command;
}

}  // namespace tvrtool
