#include "HostSession.h"

#include <time.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "DlContainer/DlContainer.h"
#include "DlSystem/DlError.h"
#include "MonotonicClock.h"
#include "StatusText.h"

namespace tvrtool {

namespace {

// Flushed at once, so that the lines keep their order with the progress on standard error.
void report(const char* call, tvr_err_t status) {
  std::printf("%s: %s\n", call, statusText(status).c_str());
  std::fflush(stdout);
}

int64_t bootNanoseconds() {
  timespec t{};
  clock_gettime(CLOCK_BOOTTIME, &t);
  return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

tvr_create_param_t createRecord(const HostSettings& settings) {
  tvr_create_param_t create{};
  if (settings.modelPath) {
    std::strncpy(create.dlc_path[0], settings.modelPath->c_str(), sizeof create.dlc_path[0] - 1);
    create.dlc_num = 1;
  }
  create.runtime = settings.runtime;
  create.use_user_buffers = true;
  return create;
}

// The host's record of a frame: NV12, chroma right after the luma rows.
tvr_image_buf_t frameRecord(const Nv12Frame& frame, const tvr_crop_t& crop) {
  tvr_image_buf_t image{};
  // The library reads the frame only; the record's pointer is not const because hosts share it.
  image.buf.p_base = const_cast<uint8_t*>(frame.bytes.data());
  image.buf.buf_size = static_cast<uint32_t>(frame.bytes.size());
  image.format = TVR_FORMAT_NV12;
  image.size = {frame.width, frame.height};
  image.offset[1] = frame.chromaOffset();
  image.stride = frame.stride;
  image.scanline = frame.scanline;
  image.crop = crop;
  return image;
}

// Why setup failed with a model the user named, beyond its status: the system's reason for a file
// that cannot be read, the runtime's own for a container it cannot open (asked again here: the
// release hooks that ran after the failure have overwritten its last error).
std::string setupFailure(tvr_err_t status, const HostSettings& settings) {
  std::string text = "setup failed with " + statusText(status);
  if (!settings.modelPath) return text + " (the plugin's own model)";
  const char* path = settings.modelPath->c_str();
  text += ": model " + *settings.modelPath;
  if (status == TVR_ERR_MODEL_READ) {
    std::FILE* file = std::fopen(path, "rb");
    text += file == nullptr ? std::string(": ") + std::strerror(errno) : "";
    if (file != nullptr) std::fclose(file);
  } else if (status == TVR_ERR_CONTAINER_OPEN) {
    Snpe_DlContainer_Handle_t container = Snpe_DlContainer_Open(path);
    text += container == nullptr ? std::string(": the runtime says: ") + Snpe_ErrorCode_GetLastErrorString() : "";
    if (container != nullptr) Snpe_DlContainer_Delete(container);
  }
  return text;
}

// The output record, zeroed once. Its bytes come from operator new, aligned for any fundamental
// type (an array of std::max_align_t would leave its padding bytes unzeroed).
struct OutputRecord {
  explicit OutputRecord(size_t size) : bytes(std::max<size_t>(size, 1)) {}
  void* data() { return bytes.data(); }
  std::vector<unsigned char> bytes;
};

// The frames; returns the first failed status, or TVR_OK.
tvr_err_t applyFrames(const PluginLibrary& plugin, hvx::IProcessing& processing, const HostSettings& settings,
                      const std::vector<tvr_input_param_t>& inputs, SessionResult& result, Progress& progress,
                      ResultsFile* results, TraceRecorder* trace) {
  OutputRecord output(plugin.outputSize());
  uint8_t debugRecord = 0;  // its presence asks for the debug hook; what it holds is the processing's business
  tivora_stage_time_t stages[FrameTimings::kMaxStages];
  int64_t columns[FrameTimings::kMaxStages] = {};
  char text[512];
  auto describe = [&]() {
    text[0] = '\0';
    if (plugin.describeOutput == nullptr || plugin.describeOutput(output.data(), text, sizeof text) != 0) text[0] = '\0';
    text[sizeof text - 1] = '\0';
  };

  tvr_err_t status = TVR_OK;
  for (uint32_t i = 0; i < settings.frames && status == TVR_OK; ++i) {
    const bool last = i + 1 == settings.frames;
    const bool debug = settings.debug == DebugApplies::Every || (settings.debug == DebugApplies::Last && last);
    if (last) result.lastApplyBootNs = bootNanoseconds();
    const int64_t start = monotonicNanoseconds();
    status = processing.apply(&inputs[i % inputs.size()], output.data(), debug ? &debugRecord : nullptr);
    const int64_t applyNs = monotonicNanoseconds() - start;
    const size_t count =
        status == TVR_OK && plugin.stageTimes != nullptr ? plugin.stageTimes(&processing, stages, FrameTimings::kMaxStages) : 0;
    if (status == TVR_OK) result.timings.add(applyNs, stages, std::min(count, FrameTimings::kMaxStages), columns);
    if (status == TVR_OK && trace != nullptr) trace->addFrame(start, applyNs, stages, std::min(count, FrameTimings::kMaxStages));
    if (results != nullptr) {
      if (status == TVR_OK) describe();
      results->writeHeader(result.timings);
      results->writeLine(i + 1, status, columns, result.timings.columnCount(), applyNs, status == TVR_OK ? text : "");
    }
    if (status == TVR_OK) {
      result.framesApplied = i + 1;
      progress.frameDone(i + 1);
    }
  }
  if (status == TVR_OK) {
    describe();
    result.lastResult = text;
  }
  return status;
}

}  // namespace

SessionResult runHost(const PluginLibrary& plugin, hvx::IProcessing& processing, const HostSettings& settings,
                      const FrameSequence& sequence, Progress& progress, ResultsFile* results, TraceRecorder* trace) {
  SessionResult result(settings.frames);
  const tvr_create_param_t create = createRecord(settings);
  const tvr_err_t setup = processing.setup(&create);
  report("setup", setup);
  if (setup != TVR_OK) result.failure = setupFailure(setup, settings);

  const Nv12Frame& first = sequence.frames.front();
  if (result.failure.empty()) {
    const tvr_static_param_t stream = settings.stream.value_or(
        tvr_static_param_t{{TVR_FORMAT_NV12, {first.width, first.height}, first.stride, first.scanline}});
    const tvr_err_t initialize = processing.initialize(&stream);
    report("initialize", initialize);
    if (initialize != TVR_OK) result.failure = "initialize failed with " + statusText(initialize);
  }

  if (result.failure.empty()) {
    // Every record the frames need, made before the first.
    std::vector<tvr_image_buf_t> records;
    std::vector<tvr_input_param_t> inputs;
    for (size_t i = 0; i < sequence.frames.size(); ++i) {
      const Nv12Frame& frame = sequence.frames[i];
      records.push_back(settings.replayed.empty() ? frameRecord(frame, settings.crop) : settings.replayed[i].source);
      records.back().buf.p_base = const_cast<uint8_t*>(frame.bytes.data());
    }
    for (size_t i = 0; i < records.size(); ++i) {
      inputs.push_back({settings.replayed.empty() ? settings.rotation : settings.replayed[i].rotation, &records[i]});
    }
    const tvr_err_t apply = applyFrames(plugin, processing, settings, inputs, result, progress, results, trace);
    progress.finish();
    if (apply == TVR_OK) {
      std::printf("apply: ok (%u frames)\n", result.framesApplied);
    } else {
      std::printf("apply: %s at frame %u of %u\n", statusText(apply).c_str(), result.framesApplied + 1, settings.frames);
      result.failure = "apply failed at frame " + std::to_string(result.framesApplied + 1) + " with " + statusText(apply);
    }
    std::fflush(stdout);
  }

  report("abort", processing.abort());
  report("finalize", processing.finalize());
  report("teardown", processing.teardown());
  return result;
}

}  // namespace tvrtool
