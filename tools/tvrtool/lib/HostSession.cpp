#include "HostSession.h"

#include <cstdio>
#include <cstring>

#include "MonotonicClock.h"
#include "StatusText.h"

namespace tvrtool {

namespace {

using tivora::examples::MeanColourOutput;
using tivora::examples::MeanColourProcessing;

constexpr tivora::SNPEMgr::TVRResourceType kResourceType = 0;

// Flushed at once, so that the lines keep their order with the progress on standard error.
void report(const char* call, tvr_err_t status) {
  std::printf("%s: %s\n", call, statusText(status).c_str());
  std::fflush(stdout);
}

tvr_create_param_t createRecord(const HostSettings& settings) {
  tvr_create_param_t create{};
  std::strncpy(create.dlc_path[0], settings.modelPath.c_str(), sizeof create.dlc_path[0] - 1);
  create.dlc_num = 1;
  create.runtime = settings.runtime;
  create.use_user_buffers = true;
  return create;
}

// The host's record of the frame: NV12, chroma right after the luma rows.
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

DisplayImage copyOf(const tvr_image_buf_t& rgb) {
  DisplayImage image;
  image.width = rgb.size.w / 3;
  image.height = rgb.size.h;
  image.channels = 3;
  image.pixels.resize(size_t{rgb.size.w} * rgb.size.h);
  for (uint32_t row = 0; row < rgb.size.h; ++row) {
    std::memcpy(image.pixels.data() + size_t{row} * rgb.size.w, rgb.buf.p_base + size_t{row} * rgb.stride, rgb.size.w);
  }
  return image;
}

// The frames; returns the first failed status, or TVR_OK.
tvr_err_t applyFrames(MeanColourProcessing& processing, const HostSettings& settings, const tvr_image_buf_t& frame,
                      SessionResult& result, Progress& progress) {
  FrameTimes& times = result.times;
  for (std::vector<int64_t>* series : {&times.split, &times.nv12ToRgb, &times.rgbToFloat, &times.execute, &times.apply})
    series->reserve(settings.frames);
  const tvr_input_param_t input{settings.rotation, &frame};
  uint8_t debugRecord = 0;  // the processing's debug record holds nothing; its presence asks for dumps
  void* debug = settings.debug ? &debugRecord : nullptr;

  for (uint32_t i = 0; i < settings.frames; ++i) {
    const int64_t start = monotonicNanoseconds();
    const tvr_err_t status = processing.apply(&input, &result.last, debug);
    const int64_t end = monotonicNanoseconds();
    if (status != TVR_OK) return status;
    const tivora::examples::StageTimes& stages = processing.lastStageTimes();
    times.split.push_back(stages.split);
    times.nv12ToRgb.push_back(stages.nv12ToRgb);
    times.rgbToFloat.push_back(stages.rgbToFloat);
    times.execute.push_back(stages.execute);
    times.apply.push_back(end - start);
    result.framesApplied = i + 1;
    progress.frameDone(i + 1);
  }
  return TVR_OK;
}

}  // namespace

SessionResult runHost(const HostSettings& settings, const Nv12Frame& frame, Progress& progress) {
  SessionResult result;
  MeanColourProcessing processing(kResourceType, settings.config);

  const tvr_create_param_t create = createRecord(settings);
  const tvr_err_t setup = processing.setup(&create);
  report("setup", setup);
  if (setup != TVR_OK) result.failure = "setup failed with " + statusText(setup) + " (model " + settings.modelPath + ")";

  if (result.failure.empty()) {
    const tvr_static_param_t stream{{TVR_FORMAT_NV12, {frame.width, frame.height}, frame.stride, frame.scanline}};
    const tvr_err_t initialize = processing.initialize(&stream);
    report("initialize", initialize);
    if (initialize != TVR_OK) result.failure = "initialize failed with " + statusText(initialize);
  }

  if (result.failure.empty()) {
    const tvr_image_buf_t record = frameRecord(frame, settings.crop);
    const tvr_err_t apply = applyFrames(processing, settings, record, result, progress);
    progress.finish();
    if (apply == TVR_OK) {
      std::printf("apply: ok (%u frames)\n", result.framesApplied);
      std::fflush(stdout);
      if (processing.networkImage() != nullptr) result.networkImage = copyOf(*processing.networkImage());
    } else {
      std::printf("apply: %s at frame %u of %u\n", statusText(apply).c_str(), result.framesApplied + 1, settings.frames);
      result.failure = "apply failed at frame " + std::to_string(result.framesApplied + 1) + " with " + statusText(apply);
    }
  }

  report("abort", processing.abort());
  report("finalize", processing.finalize());
  report("teardown", processing.teardown());
  return result;
}

}  // namespace tvrtool
